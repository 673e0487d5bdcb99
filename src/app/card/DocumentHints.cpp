#include "app/card/DocumentHints.h"

#include <algorithm>

#include "engine/document/fields/DocumentFields.h"
#include "engine/document/fields/ValueAgreement.h"

namespace corvana::app {
namespace {

using corvana::DetectedData;
using corvana::DocumentField;
using corvana::FieldAgreement;

constexpr const char* kConflict = "conflict";

std::vector<DocumentField> allFields(const std::vector<const DetectedData*>& sides) {
  std::vector<DocumentField> fields;
  for (const DetectedData* side : sides) {
    if (side->fields) fields.insert(fields.end(), side->fields->begin(), side->fields->end());
  }
  return fields;
}

}  // namespace

std::vector<DocumentHint> hintsOf(const std::vector<const DetectedData*>& sides,
                                  const std::vector<corvana::FieldCheck>& checks,
                                  const DocumentRules& rules) {
  std::vector<DocumentHint> hints;
  for (const corvana::FieldCheck& check : checks) {
    if (check.agreement == FieldAgreement::conflicts) hints.push_back({kConflict, check});
  }
  for (const auto finding : engine::checkDates(allFields(sides), rules.today, rules.leastAge)) {
    hints.push_back({engine::nameOf(finding), std::nullopt});
  }
  const bool isReal =
      std::ranges::none_of(sides, [](const DetectedData* side) { return side->isReal == false; });
  if (!isReal) hints.push_back({kSuspectCopy, std::nullopt});
  return hints;
}

std::vector<DocumentHint> unreadHintsOf(const std::vector<corvana::FieldCheck>& checks) {
  std::vector<DocumentHint> hints;
  for (const corvana::FieldCheck& check : checks) {
    if (check.isDoubtful) {
      hints.push_back({kDoubtful, check});
    } else if (check.agreement == FieldAgreement::unread && engine::isSearched(check.name)) {
      hints.push_back({kUnread, check});
    }
  }
  return hints;
}

nlohmann::ordered_json hintsToJson(const std::vector<DocumentHint>& hints) {
  auto list = nlohmann::ordered_json::array();
  for (const DocumentHint& hint : hints) {
    nlohmann::ordered_json object{{"name", hint.name}};
    if (hint.check) {
      object["field"] = engine::nameOf(hint.check->name);
      object["source"] = engine::nameOf(hint.check->against);
    }
    list.push_back(std::move(object));
  }
  return list;
}

bool hasHint(const nlohmann::ordered_json& hints, const std::string& name) {
  return std::ranges::any_of(hints, [&name](const auto& hint) { return hint.at("name") == name; });
}

std::string describe(const DocumentHint& hint, const DocumentRules& rules) {
  if (hint.check) {
    const std::string name = std::string("the ") + engine::nameOf(hint.check->name);
    const std::string against = std::string("the ") + engine::nameOf(hint.check->against);
    if (hint.name == kDoubtful) {
      return name + " in print was not read for sure, and may be another than in " + against;
    }
    if (hint.name == kUnread) return name + " in " + against + " was not found in print";
    return name + " in print conflicts with the one in " + against;
  }
  if (hint.name == kSuspectCopy) return "the card looks like a copy";
  if (hint.name == kUntitled) {
    return "no name of such a document was read on the front; its kind is what the back tells";
  }
  if (hint.name == kVoiceWithoutLips) return "a voice was heard while the lips rested";
  const std::string day = " on " + engine::isoDate(rules.today);
  if (hint.name == engine::nameOf(engine::DateFinding::expired))
    return "the card had expired" + day;
  if (hint.name == engine::nameOf(engine::DateFinding::notYetValid)) {
    return "the card was not yet valid" + day;
  }
  return "the holder was younger than " + std::to_string(rules.leastAge) + day;
}

}  // namespace corvana::app
