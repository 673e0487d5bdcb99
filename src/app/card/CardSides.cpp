#include "app/card/CardSides.h"

#include <algorithm>

#include "corvana/DocumentField.h"
#include "engine/document/fields/FieldAgreement.h"

namespace corvana::app {
namespace {

using corvana::DetectedData;
using corvana::FieldName;

/// Whether the print of one side has what zone or barcode of the other say of the holder.
bool areOfOneHolder(const Reference& reference) {
  constexpr FieldName kTelling[] = {FieldName::surname, FieldName::givenNames,
                                    FieldName::documentNumber, FieldName::birthDate};
  return std::ranges::any_of(engine::checkSides(sidesOf(reference)),
                             [&](const corvana::FieldCheck& check) {
                               return check.agreement == corvana::FieldAgreement::agrees &&
                                      std::ranges::find(kTelling, check.name) != std::end(kTelling);
                             });
}

std::string saysNothing(const std::filesystem::path& picture, const char* side,
                        const char* otherSide, const std::string& stem) {
  return "By its " + std::string(otherSide) + " the card is a " + stem +
         ", but no name of such a document was read on " + inQuotes(picture) + ", its " + side +
         "; take a sharper picture that shows all of the " + side +
         " and its title, or describe a document with another title in a folder for --documents.";
}

}  // namespace

std::vector<const DetectedData*> sidesOf(const Reference& reference) {
  std::vector<const DetectedData*> sides{&reference.front};
  if (reference.back) sides.push_back(&*reference.back);
  return sides;
}

std::string sidesFault(const Reference& reference, const engine::DocumentKinds& kinds,
                       const std::filesystem::path& front, const std::filesystem::path& back) {
  if (!reference.back || !reference.front.type || !reference.back->type) return {};
  const auto* ofFront = kinds.ofType(*reference.front.type);
  const auto* ofBack = kinds.ofType(*reference.back->type);
  if (!ofFront || !ofBack || ofFront == ofBack) return {};
  if (areOfOneHolder(reference)) {
    // What nothing names is the remainder: a title that was cut off, or is in no list.
    if (ofFront->isRemainder) return saysNothing(front, "front", "back", ofBack->stem);
    if (ofBack->isRemainder) return saysNothing(back, "back", "front", ofFront->stem);
  }
  return "Front and back are not of one card: " + *reference.front.type + " and " +
         *reference.back->type + "; give both sides of the same card.";
}

}  // namespace corvana::app
