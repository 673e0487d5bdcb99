#pragma once

#include <array>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <opencv2/core.hpp>

#include "Mrz.h"
#include "Result.h"

namespace corvana::photos {

using session::fault;
using session::Result;

/// A font file, and the package that has it.
struct FontName {
  std::string file;
  std::string package;
};

/// Words that are the same on every card of a design. `align` is left, middle or right of `at`.
struct Writing {
  std::string text;  ///< {documentNumber} in it stands for the card's own
  cv::Point2d at;
  double size = 3.0;
  double room = 40.0;
  std::string align = "left";
  cv::Scalar colour;
  bool upward = false;  ///< a quarter turn to the left, read from the lower end
};

/// One datum of the holder: its label, where it stands and how wide it may become.
struct FieldPlace {
  std::string field;
  std::string label;
  cv::Point2d at;  ///< left end of the label's baseline
  double room = 40.0;
  double size = 0.0;  ///< of the value; 0: that of the design
};

struct ColourBand {
  cv::Rect2d place;
  cv::Scalar colour;
};

/// One side of a card. Lengths are millimetres from its upper left corner.
struct SideDesign {
  std::vector<ColourBand> bands;
  std::vector<Writing> writings;
  std::vector<FieldPlace> fields;
  std::optional<cv::Rect2d> photo;
  std::optional<cv::Rect2d> ghost;  ///< the photo once more, small and pale
  std::optional<cv::Rect2d> signature;
  std::optional<cv::Rect2d> emblem;
  std::optional<cv::Rect2d> chip;
  std::optional<cv::Rect2d> code;  ///< PDF417
  bool zone = false;
};

enum class LabelPlace { above, before };

/// How the cards of one kind look: all that differs between kinds, and nothing about a holder.
struct Design {
  std::string name;
  std::string kind;  ///< identityCard, residencePermit, drivingLicence or passport
  bool unseen = false;
  session::MrzFormat format = session::MrzFormat::td1;
  std::optional<cv::Size2d> otherSize;  ///< millimetres, where it is not that of the format
  bool book = false;                    ///< another page hangs on the upper edge, as in a passport
  std::string documentCode;
  std::string stateName;
  std::string nationality;  ///< empty: the holder's own
  std::string numberPattern;
  std::string dateFormat;
  bool capitals = true;
  bool greyPhoto = false;
  int yearsValid = 10;
  std::string authority;
  std::vector<std::string> languages;  ///< of the holders
  std::vector<std::string> grounds;    ///< on which its cards are photographed
  FontName labelFont, valueFont, titleFont;
  double labelSize = 2.0, valueSize = 3.3;
  LabelPlace labels = LabelPlace::above;
  double labelRoom = 0.0;  ///< at least, of a label before its value: values begin in a column
  /// waves, rosettes, mesh, scales, rays, honeycomb, ripples, braid or links
  std::string pattern;
  std::string emblem = "star";  ///< or shield, ring, sprig, sun
  std::vector<cv::Scalar> groundColours, patternColours;
  cv::Scalar ink, labelInk;
  SideDesign front;
  std::optional<SideDesign> back;

  /// Width and height in millimetres.
  cv::Size2d size() const;
};

/// Reads one design. A key that is missing or of the wrong kind is an error.
Result<Design> readDesign(const std::filesystem::path& file);

/// All designs of a folder, in the order of their names.
Result<std::vector<Design>> readDesigns(const std::filesystem::path& folder);

/// Where label and value of a field stand.
cv::Rect2d fieldBox(const Design& design, const FieldPlace& field);

/// Where the machine-readable zone stands, below everything else.
cv::Rect2d zoneBox(const Design& design);

/// All that must be seen of a side for it to be read: fields, photo, zone and code.
std::vector<cv::Rect2d> contentsOf(const Design& design, const SideDesign& side);

}  // namespace corvana::photos
