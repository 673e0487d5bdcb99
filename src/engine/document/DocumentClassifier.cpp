#include "engine/document/DocumentClassifier.h"

#include <algorithm>
#include <functional>
#include <numeric>
#include <string_view>
#include <utility>

#include "engine/document/fields/Transliteration.h"

namespace corvana::engine {
namespace {

constexpr std::string_view kIdentityCard = "IDENTITY_CARD";
constexpr std::string_view kDrivingLicence = "DRIVING_LICENCE";
constexpr std::string_view kResidencePermit = "RESIDENCE_PERMIT";
constexpr std::string_view kPassportCard = "PASSPORT_CARD";

using Word = std::pair<std::string_view, std::string_view>;

/// What cards other than identity cards call themselves in the languages of the European Union and
/// its neighbours, as far as they are written in Latin letters; without blanks and accents.
constexpr Word kWords[] = {
    {"PASSPORTCARD", kPassportCard},
    {"RESIDENCEPERMIT", kResidencePermit},
    {"RESIDENCECARD", kResidencePermit},
    {"PERMANENTRESIDENT", kResidencePermit},
    {"AUFENTHALTSTITEL", kResidencePermit},
    {"AUFENTHALTSKARTE", kResidencePermit},
    {"TITREDESEJOUR", kResidencePermit},
    {"PERMESSODISOGGIORNO", kResidencePermit},
    {"PERMISODERESIDENCIA", kResidencePermit},
    {"AUTORIZACAODERESIDENCIA", kResidencePermit},
    {"VERBLIJFSTITEL", kResidencePermit},
    {"DOKUMENTPOBYTU", kResidencePermit},
    {"KARTAPOBYTU", kResidencePermit},
    {"OPPHOLDSTILLATELSE", kResidencePermit},
    {"OPPHOLDSKORT", kResidencePermit},
    {"OPHOLDSTILLADELSE", kResidencePermit},
    {"OPHOLDSKORT", kResidencePermit},
    {"UPPEHALLSTILLSTAND", kResidencePermit},
    {"UPPEHALLSKORT", kResidencePermit},
    {"OLESKELULUPA", kResidencePermit},
    {"DVALARLEYFI", kResidencePermit},
    {"ELAMISLUBA", kResidencePermit},
    {"UZTURESANASATLAUJA", kResidencePermit},
    {"LEIDIMASGYVENTI", kResidencePermit},
    {"POVOLENIKPOBYTU", kResidencePermit},
    {"POVOLENIENAPOBYT", kResidencePermit},
    {"TARTOZKODASIENGEDELY", kResidencePermit},
    {"DOVOLJENJEZAPREBIVANJE", kResidencePermit},
    {"DOZVOLABORAVKA", kResidencePermit},
    {"PERMISDESEDERE", kResidencePermit},
    {"IKAMETIZNI", kResidencePermit},
    {"DRIVINGLICENCE", kDrivingLicence},
    {"DRIVINGLICENSE", kDrivingLicence},
    {"DRIVERLICENSE", kDrivingLicence},
    {"DRIVERLICENCE", kDrivingLicence},
    {"DRIVERSLICENSE", kDrivingLicence},
    {"DRIVERSLICENCE", kDrivingLicence},
    {"FUHRERSCHEIN", kDrivingLicence},
    {"FUEHRERSCHEIN", kDrivingLicence},
    {"PERMISDECONDUIRE", kDrivingLicence},
    {"PATENTEDIGUIDA", kDrivingLicence},
    {"PERMISODECONDUCCION", kDrivingLicence},
    {"CARTADECONDUCAO", kDrivingLicence},
    {"RIJBEWIJS", kDrivingLicence},
    {"PRAWOJAZDY", kDrivingLicence},
    {"FORERKORT", kDrivingLicence},
    {"KOREKORT", kDrivingLicence},
    {"KORKORT", kDrivingLicence},
    {"AJOKORTTI", kDrivingLicence},
    {"OKUSKIRTEINI", kDrivingLicence},
    {"JUHILUBA", kDrivingLicence},
    {"VADITAJAAPLIECIBA", kDrivingLicence},
    {"VAIRUOTOJOPAZYMEJIMAS", kDrivingLicence},
    {"RIDICSKYPRUKAZ", kDrivingLicence},
    {"VODICSKYPREUKAZ", kDrivingLicence},
    {"VEZETOIENGEDELY", kDrivingLicence},
    {"VOZNISKODOVOLJENJE", kDrivingLicence},
    {"VOZACKADOZVOLA", kDrivingLicence},
    {"PERMISDECONDUCERE", kDrivingLicence},
    {"SURUCUBELGESI", kDrivingLicence},
};

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

std::optional<std::string_view> familyByWords(const std::vector<std::string>& lines) {
  const std::string text = lettersOf(lines);
  for (const auto& [word, family] : kWords) {
    if (editsToFind(word, text) <= word.size() / kLettersPerError) return family;
  }
  return std::nullopt;
}

/// The document code's first letter is the kind, the second the issuing state's choice, except for
/// these.
std::optional<std::string_view> familyByCode(const std::string& code) {
  if (code == "IP") return kPassportCard;
  if (code == "IR" || code == "AR") return kResidencePermit;
  if (code.front() == 'D') return kDrivingLicence;
  return std::nullopt;
}

bool isLicenceRecord(const std::map<std::string, std::string>& barcode) {
  return barcode.count("DAQ") != 0 || barcode.count("DCA") != 0;
}

/// What zone and barcode say.
std::optional<std::string_view> familyByRecord(const DocumentFeatures& features) {
  if (features.mrz) {
    if (const auto family = familyByCode(features.mrz->documentCode)) return family;
  }
  if (features.barcode && isLicenceRecord(*features.barcode)) return kDrivingLicence;
  return std::nullopt;
}

std::optional<corvana::DocumentSide> sideOf(const DocumentFeatures& features) {
  // Zones of two lines stand on the side of the photo, those of three on the other.
  const bool hasPhotosZone = features.mrz && features.mrz->lines.size() == 2;
  if (features.hasFace && hasPhotosZone) return corvana::DocumentSide::front;
  if (features.mrz || features.barcode) return corvana::DocumentSide::back;
  if (features.hasFace) return corvana::DocumentSide::front;
  if (features.hasMrzBand) return corvana::DocumentSide::back;
  return std::nullopt;
}

}  // namespace

std::string documentFamily(const DocumentFeatures& features) {
  if (const auto family = familyByRecord(features)) return std::string(*family);
  return std::string(familyByWords(features.lines).value_or(kIdentityCard));
}

FamilyMatches familyMatches(const DocumentFeatures& features) {
  const std::string text = lettersOf(features.lines);
  std::map<std::string_view, float> shares;
  for (const auto& [word, family] : kWords) {
    const auto missing = static_cast<float>(editsToFind(word, text));
    float& share = shares[family];
    share = std::max(share, 1 - missing / static_cast<float>(word.size()));
  }
  if (const auto family = familyByRecord(features)) shares[*family] = 1;
  FamilyMatches matches(shares.begin(), shares.end());
  std::ranges::stable_sort(matches, std::greater(), &FamilyMatches::value_type::second);
  return matches;
}

void classify(const DocumentFeatures& features, corvana::DetectedData& data) {
  data.side = sideOf(features);
  if (!data.side) return;
  const bool isFront = *data.side == corvana::DocumentSide::front;
  const std::string family = documentFamily(features);
  data.type = family + (isFront ? "_FRONT" : "_BACK");
  data.shouldHavePhoto = isFront;
  data.shouldHaveMrz = !isFront && family != kDrivingLicence;
  data.shouldHaveBarcode = !isFront && family == kDrivingLicence && !features.mrz;
}

}  // namespace corvana::engine
