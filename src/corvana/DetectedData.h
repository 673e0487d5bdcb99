#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "corvana/DocumentField.h"
#include "platform/geometry/Geometry.h"
#include "platform/uikit/UIImage.h"

namespace corvana {

enum class DocumentSide { front, back };

/// The machine-readable zone of a card: its lines as read, check digits verified. Two are equal
/// when every line is.
struct MRZResult {
  /// Upper case, digits and '<'; three lines of 30 (TD1), two of 36 (TD2) or two of 44 (TD3).
  std::vector<std::string> lines;
  std::string documentCode;
  std::string issuingState;
  std::string documentNumber;
  std::string birthDate;   ///< YYMMDD as printed
  std::string sex;         ///< "M", "F" or "<"
  std::string expiryDate;  ///< YYMMDD as printed
  std::string nationality;
  std::string surname;
  std::string givenNames;

  bool operator==(const MRZResult& other) const { return lines == other.lines; }
};

/// How much a picture of a card looks like the card itself or like a copy of it, each 0 to 1.
struct RealnessScores {
  float photocopyScore = 0;  ///< on paper
  float realScore = 0;
  float screenScore = 0;  ///< on a display
};

/// What was read of one side of a card.
struct DetectedData {
  /// Family and side, as "IDENTITY_CARD_FRONT" and "IDENTITY_CARD_BACK"; absent while unknown.
  std::optional<std::string> type;
  std::optional<DocumentSide> side;
  /// Lines of printed text in reading order; absent when the side was not read.
  std::optional<std::vector<std::string>> ocrStrings;
  std::optional<MRZResult> mrz;
  std::optional<std::map<std::string, std::string>> barcode;
  /// The portrait on the card, cropped for the face matcher; null when none was found.
  platform::UIImageRef faceImage;
  /// The straightened card; null when only an outline was found.
  platform::UIImageRef image;
  bool isPhotoPresent = false;
  bool shouldHavePhoto = false;
  bool shouldHaveMrz = false;
  bool shouldHaveBarcode = false;
  /// Whether the card is an original rather than a copy or a screen; absent when not judged.
  std::optional<bool> isReal;
  /// Of what `isReal` was judged; absent as it is.
  std::optional<RealnessScores> realness;
  /// What zone, code and print say of holder and document, each by itself; absent when not read.
  std::optional<std::vector<DocumentField>> fields;
  /// What lines of print may say as well, as far as their reader was unsure of letters.
  std::vector<std::string> doubtfulStrings;
};

/// Raw measurements of document analysis, for tuning.
struct DebugData {
  std::optional<platform::CGSize> fullSize;  ///< of the camera picture, pixels
  platform::CGRect documentLocation;         ///< in the camera picture
  std::optional<platform::CGRect> faceLocation;
  std::optional<RealnessScores> realnessScores;
  std::optional<std::vector<std::pair<std::string, float>>> topClassifierResults;
};

}  // namespace corvana
