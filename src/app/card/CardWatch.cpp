#include "app/card/CardWatch.h"

#include <algorithm>
#include <cmath>

#include "engine/document/fields/DocumentFields.h"

namespace corvana::app {
namespace {

using nlohmann::ordered_json;

constexpr double kDecimals = 1e4;

double rounded(double value) {
  return std::round(value * kDecimals) / kDecimals;
}

ordered_json placeOf(const platform::CGRect& box) {
  return {std::round(box.x), std::round(box.y), std::round(box.width), std::round(box.height)};
}

ordered_json fieldsOf(const corvana::FieldCheck& check) {
  ordered_json fields{{"name", engine::nameOf(check.name)},
                      {"source", engine::nameOf(check.against)},
                      {"agreement", engine::nameOf(check.agreement)},
                      {"confidence", rounded(check.confidence)}};
  if (check.place) fields["place"] = placeOf(*check.place);
  return fields;
}

}  // namespace

void CardWatch::happened(const engine::RecorderEvent& event) {
  if (event.kind != engine::RecorderEvent::Kind::call || event.name != "retry") return;
  // The next run reads the card anew.
  front_.reset();
  back_.reset();
  told_.clear();
}

void CardWatch::cardRead(const corvana::DetectedData& side) {
  (side.side == corvana::DocumentSide::back ? back_ : front_) = side;
  auto telling = ordered_json::array();
  for (const corvana::FieldCheck& check : engine::checkSides(sides())) {
    ordered_json fields = fieldsOf(check);
    // Confidence and place of the same field differ from picture to picture.
    telling.push_back({fields["name"], fields["source"], fields["agreement"]});
    const bool isNew = std::find(told_.begin(), told_.end(), telling.back()) == told_.end();
    if (isNew) events_.add("field", fields);
  }
  told_ = std::move(telling);
}

std::vector<const corvana::DetectedData*> CardWatch::sides() const {
  std::vector<const corvana::DetectedData*> sides;
  for (const auto* side : {&front_, &back_}) {
    if (*side) sides.push_back(&**side);
  }
  return sides;
}

std::vector<DocumentHint> CardWatch::hints() const {
  return hintsOf(sides(), engine::checkSides(sides()), rules_);
}

}  // namespace corvana::app
