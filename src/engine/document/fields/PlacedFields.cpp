#include "engine/document/fields/PlacedFields.h"

#include <algorithm>
#include <optional>
#include <string>

namespace corvana::engine {
namespace {

using corvana::DocumentField;
using platform::CGRect;

bool holds(const CGRect& place, const CGRect& box) {
  return box.midX() >= place.minX() && box.midX() <= place.maxX() && box.midY() >= place.minY() &&
         box.midY() <= place.maxY();
}

/// In reading order: row by row, each from left to right.
std::vector<const TextLine*> linesIn(const CGRect& place, const std::vector<TextLine>& lines) {
  std::vector<const TextLine*> found;
  for (const TextLine& line : lines) {
    if (holds(place, line.box)) found.push_back(&line);
  }
  std::ranges::sort(found, {}, [](const TextLine* line) { return line->box.midY(); });
  for (auto row = found.begin(); row != found.end();) {
    const double bottom = (*row)->box.maxY();
    const auto next = std::find_if(row, found.end(),
                                   [&](const TextLine* line) { return line->box.midY() > bottom; });
    std::sort(row, next,
              [](const TextLine* a, const TextLine* b) { return a->box.midX() < b->box.midX(); });
    row = next;
  }
  return found;
}

CGRect around(const CGRect& a, const CGRect& b) {
  const double left = std::min(a.minX(), b.minX());
  const double top = std::min(a.minY(), b.minY());
  return {left, top, std::max(a.maxX(), b.maxX()) - left, std::max(a.maxY(), b.maxY()) - top};
}

std::optional<DocumentField> fieldIn(const PlacedField& place, const std::vector<TextLine>& lines,
                                     const FieldLabels& labels, const ValueReader& read) {
  std::string text;
  DocumentField field{place.name, {}, corvana::FieldSource::print, 1, false, std::nullopt};
  for (const TextLine* line : linesIn(place.place, lines)) {
    const auto label = labels.labelledText(line->text);
    const std::string& part = label && label->hasWords ? label->rest : line->text;
    if (part.empty()) continue;
    const bool isAddress = place.name == corvana::FieldName::address;
    text += (text.empty() ? "" : isAddress ? ", " : " ") + part;
    field.confidence = std::min(field.confidence, static_cast<float>(line->confidence));
    field.place = field.place ? around(*field.place, line->box) : line->box;
  }
  auto value = text.empty() ? std::nullopt : read(place.name, text);
  if (!value) return std::nullopt;
  field.value = *std::move(value);
  return field;
}

}  // namespace

std::vector<DocumentField> placedFields(const std::vector<TextLine>& lines,
                                        const std::vector<PlacedField>& places,
                                        const FieldLabels& labels, const ValueReader& read) {
  std::vector<DocumentField> fields;
  for (const PlacedField& place : places) {
    if (auto field = fieldIn(place, lines, labels, read)) fields.push_back(*std::move(field));
  }
  return fields;
}

}  // namespace corvana::engine
