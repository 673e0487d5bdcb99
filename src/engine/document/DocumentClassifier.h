#pragma once

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "corvana/DetectedData.h"

namespace corvana::engine {

/// What was found on one side of a card.
struct DocumentFeatures {
  std::vector<std::string> lines{};
  std::optional<corvana::MRZResult> mrz{};
  /// Rows that look like a machine-readable zone, read or not.
  bool hasMrzBand = false;
  std::optional<std::map<std::string, std::string>> barcode{};
  bool hasFace = false;
};

/// Names the document and the side, and what such a side should carry: fills `type`, `side` and the
/// `should` flags of the data. A zone or barcode marks a back, a face alone or with a zone of
/// two lines a front; with none of
/// them side and type stay absent. Front and back of one card come into the same family: what names
/// none is an identity card. Pure.
void classify(const DocumentFeatures& features, corvana::DetectedData& data);

/// The family alone, as "DRIVING_LICENCE".
std::string documentFamily(const DocumentFeatures& features);

using FamilyMatches = std::vector<std::pair<std::string, float>>;

/// How well the card speaks for each family but the identity card, which is what remains and has no
/// measure; best first. The share of the letters of a family's name that its print holds, 0 to 1 (a
/// name counts from about 0.86 on), and 1 for what zone or barcode say. For tuning. Pure.
FamilyMatches familyMatches(const DocumentFeatures& features);

}  // namespace corvana::engine
