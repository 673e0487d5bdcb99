#include "Design.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <map>
#include <system_error>

#include <nlohmann/json.hpp>

namespace corvana::photos {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using session::MrzFormat;

struct FormatSize {
  cv::Size2d card;
  double zone;  ///< height of the zone's place at the lower edge
};

const FormatSize& sizeOf(MrzFormat format) {
  static const std::map<MrzFormat, FormatSize> kSizes = {{MrzFormat::td1, {{85.60, 53.98}, 23.2}},
                                                         {MrzFormat::td2, {{105.0, 74.0}, 23.2}},
                                                         {MrzFormat::td3, {{125.0, 88.0}, 23.2}}};
  return kSizes.at(format);
}

cv::Scalar colour(const json& value) {
  const auto text = value.get<std::string>();
  const unsigned long number = std::stoul(text.substr(1), nullptr, 16);
  return {static_cast<double>(number >> 16), static_cast<double>((number >> 8) & 255),
          static_cast<double>(number & 255)};
}

std::vector<cv::Scalar> colours(const json& list) {
  std::vector<cv::Scalar> all;
  std::transform(list.begin(), list.end(), std::back_inserter(all), colour);
  return all;
}

cv::Point2d point(const json& list) {
  return {list.at(0).get<double>(), list.at(1).get<double>()};
}

cv::Rect2d box(const json& list) {
  return {list.at(0).get<double>(), list.at(1).get<double>(), list.at(2).get<double>(),
          list.at(3).get<double>()};
}

std::optional<cv::Rect2d> optionalBox(const json& side, const char* key) {
  return side.contains(key) ? std::optional(box(side.at(key))) : std::nullopt;
}

FontName font(const json& value) {
  return {value.at("file").get<std::string>(), value.at("package").get<std::string>()};
}

Writing writing(const json& value, const cv::Scalar& ink) {
  return {value.at("text").get<std::string>(),
          point(value.at("at")),
          value.at("size").get<double>(),
          value.at("room").get<double>(),
          value.value("align", "left"),
          value.contains("colour") ? colour(value.at("colour")) : ink,
          value.value("upward", false)};
}

FieldPlace field(const json& value) {
  return {value.at("field").get<std::string>(), value.at("label").get<std::string>(),
          point(value.at("at")), value.at("room").get<double>(), value.value("size", 0.0)};
}

SideDesign side(const json& value, const cv::Scalar& ink) {
  SideDesign side;
  for (const json& band : value.value("bands", json::array()))
    side.bands.push_back({box(band.at("place")), colour(band.at("colour"))});
  for (const json& words : value.value("writings", json::array()))
    side.writings.push_back(writing(words, ink));
  for (const json& one : value.at("fields"))
    side.fields.push_back(field(one));
  side.photo = optionalBox(value, "photo");
  side.ghost = optionalBox(value, "ghost");
  side.signature = optionalBox(value, "signature");
  side.emblem = optionalBox(value, "emblem");
  side.chip = optionalBox(value, "chip");
  side.code = optionalBox(value, "code");
  side.zone = value.value("zone", false);
  return side;
}

void readLooks(const json& value, Design& design) {
  const json& fonts = value.at("fonts");
  design.labelFont = font(fonts.at("label"));
  design.valueFont = font(fonts.at("value"));
  design.titleFont = font(fonts.at("title"));
  design.labelSize = value.at("labelSize").get<double>();
  design.valueSize = value.at("valueSize").get<double>();
  design.labels = value.at("labels") == "before" ? LabelPlace::before : LabelPlace::above;
  design.labelRoom = value.value("labelRoom", 0.0);
  design.pattern = value.at("pattern").get<std::string>();
  design.emblem = value.value("emblem", design.emblem);
  const json& inks = value.at("colours");
  design.groundColours = colours(inks.at("ground"));
  design.patternColours = colours(inks.at("pattern"));
  design.ink = colour(inks.at("ink"));
  design.labelInk = colour(inks.at("label"));
  design.greyPhoto = value.value("greyPhoto", false);
  design.front = side(value.at("front"), design.labelInk);
  if (value.contains("back")) design.back = side(value.at("back"), design.labelInk);
}

Design design(const json& value, const std::string& name) {
  static const std::map<std::string, MrzFormat> kFormats = {
      {"TD1", MrzFormat::td1}, {"TD2", MrzFormat::td2}, {"TD3", MrzFormat::td3}};
  Design design;
  design.name = name;
  design.kind = value.at("kind").get<std::string>();
  design.unseen = value.value("unseen", false);
  design.format = kFormats.at(value.at("format").get<std::string>());
  if (value.contains("size")) design.otherSize = cv::Size2d(point(value.at("size")));
  design.book = value.value("book", false);
  design.documentCode = value.at("documentCode").get<std::string>();
  design.stateName = value.at("stateName").get<std::string>();
  design.nationality = value.value("nationality", "");
  design.numberPattern = value.at("numberPattern").get<std::string>();
  design.dateFormat = value.at("dateFormat").get<std::string>();
  design.capitals = value.at("capitals").get<bool>();
  design.yearsValid = value.at("yearsValid").get<int>();
  design.authority = value.at("authority").get<std::string>();
  design.languages = value.at("languages").get<std::vector<std::string>>();
  design.grounds = value.at("grounds").get<std::vector<std::string>>();
  readLooks(value, design);
  return design;
}

}  // namespace

cv::Size2d Design::size() const {
  return otherSize.value_or(sizeOf(format).card);
}

Result<Design> readDesign(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  const std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  try {
    return design(json::parse(text), file.stem().string());
  } catch (const std::exception& error) {  // of the JSON library, or of a table without the name
    return fault("The design " + file.string() + " cannot be used: " + error.what() +
                 "; compare it with the other designs.");
  }
}

Result<std::vector<Design>> readDesigns(const fs::path& folder) {
  std::vector<fs::path> files;
  std::error_code error;
  for (const auto& entry : fs::directory_iterator(folder, error))
    if (entry.path().extension() == ".json") files.push_back(entry.path());
  if (files.empty())
    return fault("There is no design in " + folder.string() + ": correct --design-folder.");
  std::sort(files.begin(), files.end());
  std::vector<Design> designs;
  for (const fs::path& file : files) {
    auto one = readDesign(file);
    if (!one) return fault(one.error());
    designs.push_back(std::move(*one));
  }
  return designs;
}

cv::Rect2d fieldBox(const Design& design, const FieldPlace& field) {
  const double size = field.size > 0 ? field.size : design.valueSize;
  const double top = field.at.y - design.labelSize;
  if (design.labels == LabelPlace::before)
    return {field.at.x, field.at.y - size, field.room, 1.3 * size};
  return {field.at.x, top, field.room, design.labelSize + 1.45 * size};
}

cv::Rect2d zoneBox(const Design& design) {
  const double height = sizeOf(design.format).zone;
  return {0.0, design.size().height - height, design.size().width, height};
}

std::vector<cv::Rect2d> contentsOf(const Design& design, const SideDesign& side) {
  std::vector<cv::Rect2d> boxes;
  for (const FieldPlace& field : side.fields)
    boxes.push_back(fieldBox(design, field));
  if (side.photo) boxes.push_back(*side.photo);
  if (side.code) boxes.push_back(*side.code);
  if (side.zone) {
    const cv::Rect2d zone = zoneBox(design);
    // The card's margin around the letters may be covered, the letters may not.
    boxes.emplace_back(zone.x + 3.5, zone.y + 2.0, zone.width - 7.0, zone.height - 5.5);
  }
  return boxes;
}

}  // namespace corvana::photos
