#include "app/card/CardSides.h"

#include <algorithm>
#include <initializer_list>

#include "corvana/DocumentField.h"
#include "engine/document/fields/FieldAgreement.h"

namespace corvana::app {
namespace {

using corvana::DetectedData;
using corvana::FieldName;

using Checks = std::vector<corvana::FieldCheck>;

bool agrees(const Checks& checks, std::initializer_list<FieldName> names) {
  return std::ranges::any_of(checks, [&](const corvana::FieldCheck& check) {
    return check.agreement == corvana::FieldAgreement::agrees &&
           std::ranges::find(names, check.name) != names.end();
  });
}

/// Whether print has what zone or barcode say of the holder.
bool areOfOneHolder(const Checks& checks) {
  return agrees(checks, {FieldName::surname, FieldName::givenNames, FieldName::documentNumber,
                         FieldName::birthDate});
}

/// What zone or barcode of the back say against the print of the front alone: a back may have some
/// of it in print too.
Checks checkFrontByBack(const Reference& reference) {
  DetectedData back = *reference.back;
  back.ocrStrings.reset();
  back.doubtfulStrings.clear();
  if (back.fields) {
    std::erase_if(*back.fields, [](const corvana::DocumentField& field) {
      return field.source == corvana::FieldSource::print;
    });
  }
  return engine::checkSides({&reference.front, &back});
}

/// Whether both sides are of one document, not only of one holder: its number tells, or the day on
/// which it expires.
bool areOfOneDocument(const Reference& reference) {
  const Checks checks = checkFrontByBack(reference);
  return agrees(checks, {FieldName::documentNumber, FieldName::expiryDate}) &&
         areOfOneHolder(checks) &&
         std::ranges::none_of(checks, [](const corvana::FieldCheck& check) {
           return check.agreement == corvana::FieldAgreement::conflicts;
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

bool takeKindOfBack(Reference& reference, const engine::DocumentKinds& kinds) {
  if (!reference.back || !reference.front.type || !reference.back->type) return false;
  const auto* ofFront = kinds.ofType(*reference.front.type);
  const auto* ofBack = kinds.ofType(*reference.back->type);
  if (!ofFront || !ofBack || !ofFront->isRemainder || ofBack->isRemainder) return false;
  // Such a front would have been known by them.
  if (ofBack->front.zone || ofBack->front.code || !areOfOneDocument(reference)) return false;
  reference.front.type = ofBack->stem + "_FRONT";
  return true;
}

std::string sidesFault(const Reference& reference, const engine::DocumentKinds& kinds,
                       const std::filesystem::path& front, const std::filesystem::path& back) {
  if (!reference.back || !reference.front.type || !reference.back->type) return {};
  const auto* ofFront = kinds.ofType(*reference.front.type);
  const auto* ofBack = kinds.ofType(*reference.back->type);
  if (!ofFront || !ofBack || ofFront == ofBack) return {};
  if (areOfOneHolder(engine::checkSides(sidesOf(reference)))) {
    // What nothing names is the remainder: a title that was cut off, or is in no list.
    if (ofFront->isRemainder) return saysNothing(front, "front", "back", ofBack->stem);
    if (ofBack->isRemainder) return saysNothing(back, "back", "front", ofFront->stem);
  }
  return "Front and back are not of one card: " + *reference.front.type + " and " +
         *reference.back->type + "; give both sides of the same card.";
}

}  // namespace corvana::app
