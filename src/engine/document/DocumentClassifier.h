#pragma once

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "corvana/DetectedData.h"
#include "engine/document/kinds/DocumentKinds.h"

namespace corvana::engine {

/// What was found on one side of a card.
struct DocumentFeatures {
  std::vector<std::string> lines{};
  std::optional<corvana::MRZResult> mrz{};
  /// Of a zone that is there but could not be read, as glimpsedMrz() tells.
  std::optional<corvana::MRZResult> glimpsedMrz{};
  /// Rows that look like a machine-readable zone, read or not.
  bool hasMrzBand = false;
  std::optional<std::map<std::string, std::string>> barcode{};
  bool hasFace = false;
  /// The kind as which a front without a title was captured earlier, if one was.
  const DocumentKind* known = nullptr;
};

/// Names the document and the side, and what such a side should carry: fills `type`, `side` and the
/// `should` flags of the data. A zone that was only glimpsed beside the photo makes the document
/// one of a kind that has such a zone there, which it then should have. A zone or barcode marks a
/// back, unless the kind has it beside the photo; a face marks a front. With neither, only the
/// backs of kinds that have no mark are known, by the kind's name; else side and type stay absent.
/// Front and back of one card come into the same kind: what names none is the remainder, an
/// identity card, or a front of the kind that is known. Pure.
void classify(const DocumentFeatures& features, const DocumentKinds& kinds,
              corvana::DetectedData& data);

/// The kind alone.
const DocumentKind& documentKind(const DocumentFeatures& features, const DocumentKinds& kinds);

using FamilyMatches = std::vector<std::pair<std::string, float>>;

/// How well the card speaks for each kind that has a name or that its zone or barcode name; best
/// first. The share of the letters of a kind's name that its print holds, 0 to 1 (a name counts
/// from about 0.86 on), and 1 for what zone or barcode say. For tuning. Pure.
FamilyMatches familyMatches(const DocumentFeatures& features, const DocumentKinds& kinds);

}  // namespace corvana::engine
