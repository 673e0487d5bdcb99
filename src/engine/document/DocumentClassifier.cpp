#include "engine/document/DocumentClassifier.h"

#include <algorithm>
#include <functional>
#include <numeric>
#include <string_view>

#include "engine/document/fields/Transliteration.h"

namespace corvana::engine {
namespace {

/// One letter in so many may be misread.
constexpr std::size_t kLettersPerError = 7;

/// The fewest edits that turn some stretch of the text into the word.
std::size_t editsToFind(std::string_view word, std::string_view text) {
  std::vector<std::size_t> row(word.size() + 1);
  std::iota(row.begin(), row.end(), 0U);
  std::size_t fewest = row.back();
  for (const char c : text) {
    std::size_t diagonal = row[0];
    for (std::size_t i = 1; i <= word.size(); ++i) {
      const std::size_t above = row[i];
      row[i] = std::min({diagonal + (word[i - 1] == c ? 0U : 1U), above + 1, row[i - 1] + 1});
      diagonal = above;
    }
    fewest = std::min(fewest, row.back());
  }
  return fewest;
}

/// Capitals of ASCII only, all lines in one.
std::string lettersOf(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines)
    text += plainLetters(line);
  std::erase_if(text, [](char c) { return c < 'A' || c > 'Z'; });
  return text;
}

/// The kind with the longest of the names that the print holds: "passport card" says more than
/// "passport".
const DocumentKind* kindByName(const std::vector<std::string>& lines, const DocumentKinds& kinds) {
  const std::string text = lettersOf(lines);
  const DocumentKind* best = nullptr;
  std::size_t longest = 0;
  for (const DocumentKind& kind : kinds.all()) {
    for (const KindName& name : kind.names) {
      const std::string& letters = name.letters;
      if (letters.size() <= longest) continue;
      if (editsToFind(letters, text) > letters.size() / kLettersPerError) continue;
      best = &kind;
      longest = letters.size();
    }
  }
  return best;
}

/// A kind that asks for zones of one format also asks for the photo beside them: on the other side
/// stands another document's zone.
bool maySpeakFor(const DocumentKind& kind, ZoneFormat format, bool hasFace) {
  if (kind.zoneFormat != format) return false;
  const bool isOnFront = kind.front.zone && kind.front.zone->format == format;
  return !isOnFront || !kind.back || hasFace;
}

/// The document code's first letter is the kind, the second the issuing state's choice, except for
/// those that kinds claim whole.
const DocumentKind* kindByZone(const corvana::MRZResult& zone, bool hasFace,
                               const DocumentKinds& kinds) {
  const auto format = formatOf(zone);
  const DocumentKind* best = nullptr;
  std::size_t longest = 0;
  for (const DocumentKind& kind : kinds.all()) {
    if (kind.zoneFormat && !(format && maySpeakFor(kind, *format, hasFace))) continue;
    for (const std::string& code : kind.zoneCodes) {
      const std::size_t weight = 2 * code.size() + (kind.zoneFormat ? 1 : 0);
      if (weight <= longest || !zone.documentCode.starts_with(code)) continue;
      best = &kind;
      longest = weight;
    }
  }
  return best;
}

/// What could not be read may still be of a format that only one kind has beside its photo: taken
/// for another kind the side would lack nothing.
const DocumentKind* kindByGlimpse(const corvana::MRZResult& zone, const DocumentKinds& kinds) {
  constexpr bool kHasFace = true;
  const DocumentKind* kind = kindByZone(zone, kHasFace, kinds);
  return kind && kind->zoneFormat && kind->front.zone ? kind : nullptr;
}

const DocumentKind* kindByCode(const std::map<std::string, std::string>& barcode,
                               const DocumentKinds& kinds) {
  const auto holdsOneOf = [&](const std::vector<std::string>& elements) {
    return std::ranges::any_of(elements, [&](const auto& e) { return barcode.contains(e); });
  };
  const auto kind = std::ranges::find_if(kinds.all(), holdsOneOf, &DocumentKind::codeElements);
  return kind == kinds.all().end() ? nullptr : &*kind;
}

/// What zone and barcode say.
const DocumentKind* kindByRecord(const DocumentFeatures& features, const DocumentKinds& kinds) {
  const DocumentKind* kind = nullptr;
  if (features.mrz) kind = kindByZone(*features.mrz, features.hasFace, kinds);
  if (!kind && features.barcode) kind = kindByCode(*features.barcode, kinds);
  if (!kind && !features.mrz && features.glimpsedMrz && features.hasFace) {
    kind = kindByGlimpse(*features.glimpsedMrz, kinds);
  }
  return kind;
}

/// Where a document of unknown makeup has its zone: those of two lines stand on the side of the
/// photo, those of three on the other.
bool isFrontsZone(const corvana::MRZResult& zone, const DocumentKind& kind) {
  const auto format = formatOf(zone);
  const auto hasIt = [&](const KindSide& side) {
    return side.zone && format && side.zone->format == *format;
  };
  const bool isOnFront = hasIt(kind.front);
  const bool isOnBack = kind.back && hasIt(*kind.back);
  return isOnFront == isOnBack ? zone.lines.size() == 2 : isOnFront;
}

std::optional<corvana::DocumentSide> sideOf(const DocumentFeatures& features,
                                            const DocumentKind& kind) {
  using corvana::DocumentSide;
  const bool hasFrontsCode = features.barcode && kind.front.code;
  if (features.hasFace && features.mrz && isFrontsZone(*features.mrz, kind)) {
    return DocumentSide::front;
  }
  if (features.hasFace && hasFrontsCode) return DocumentSide::front;
  if (features.mrz || features.barcode) return DocumentSide::back;
  if (features.hasFace) return DocumentSide::front;
  // Nothing marks a bare back but its kind's name.
  const bool isBareBack = kind.back && !kind.back->zone && !kind.back->code && !kind.isRemainder;
  if (features.hasMrzBand || isBareBack) return DocumentSide::back;
  return std::nullopt;
}

/// Nothing but a title tells such a front, which may be covered or in no list.
bool mayBeUntitled(const DocumentFeatures& front, const DocumentKind& kind) {
  const bool hasRecord = front.mrz || front.glimpsedMrz || front.barcode;
  return front.hasFace && !hasRecord && kind.back && !kind.front.zone && !kind.front.code;
}

}  // namespace

const DocumentKind& documentKind(const DocumentFeatures& features, const DocumentKinds& kinds) {
  if (const auto* kind = kindByRecord(features, kinds)) return *kind;
  if (const auto* kind = kindByName(features.lines, kinds)) return *kind;
  if (features.known && mayBeUntitled(features, *features.known)) return *features.known;
  return kinds.remainder();
}

FamilyMatches familyMatches(const DocumentFeatures& features, const DocumentKinds& kinds) {
  const std::string text = lettersOf(features.lines);
  const DocumentKind* recorded = kindByRecord(features, kinds);
  FamilyMatches matches;
  for (const DocumentKind& kind : kinds.all()) {
    if (kind.names.empty() && &kind != recorded) continue;
    float share = &kind == recorded ? 1 : 0;
    for (const KindName& name : kind.names) {
      const auto missing = static_cast<float>(editsToFind(name.letters, text));
      share = std::max(share, 1 - missing / static_cast<float>(name.letters.size()));
    }
    matches.emplace_back(kind.stem, share);
  }
  std::ranges::stable_sort(matches, std::greater(), &FamilyMatches::value_type::second);
  return matches;
}

void classify(const DocumentFeatures& features, const DocumentKinds& kinds,
              corvana::DetectedData& data) {
  const DocumentKind& kind = documentKind(features, kinds);
  data.side = sideOf(features, kind);
  if (!data.side) return;
  // What has one side only shows that.
  if (!kind.back) data.side = corvana::DocumentSide::front;
  const bool isFront = *data.side == corvana::DocumentSide::front;
  const KindSide& side = isFront ? kind.front : *kind.back;
  data.type = kind.stem + (isFront ? "_FRONT" : "_BACK");
  data.shouldHavePhoto = side.photo.has_value();
  data.shouldHaveMrz = side.zone.has_value();
  data.shouldHaveBarcode = side.code && !features.mrz;
}

}  // namespace corvana::engine
