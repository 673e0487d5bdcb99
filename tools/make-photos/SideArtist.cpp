#include "SideArtist.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <map>
#include <utility>

#include <ZXing/BarcodeFormat.h>
#include <ZXing/BitMatrix.h>
#include <ZXing/MultiFormatWriter.h>
#include <opencv2/imgproc.hpp>

#include "AamvaRecord.h"
#include "Ornaments.h"
#include "Painting.h"
#include "Pattern.h"

namespace corvana::photos {
namespace {

using session::CardData;
using session::Typeface;

constexpr double kCornerRadius = 3.18;  // millimetres, as all below
constexpr double kMachinePitch = 2.54;  // OCR-B size 1: ten characters an inch

double px(double millimetres) {
  return millimetres * SideArtist::kPixelsPerMillimetre;
}

int whole(double millimetres) {
  return static_cast<int>(std::lround(px(millimetres)));
}

cv::Rect whole(const cv::Rect2d& box) {
  return {whole(box.x), whole(box.y), whole(box.width), whole(box.height)};
}

void drawEmblem(cv::Mat& picture, const cv::Rect2d& place, const std::string& shape,
                const cv::Scalar& colour) {
  if (shape != "star") return drawShape(picture, whole(place), shape, colour);
  const cv::Point2d centre(place.x + 0.5 * place.width, place.y + 0.5 * place.height);
  session::drawEmblem(picture, centre, 0.5 * place.width, SideArtist::kPixelsPerMillimetre, colour);
}

void drawSignature(cv::Mat& picture, const cv::Rect2d& place, const std::string& name) {
  const cv::Point2d start(place.x + 0.05 * place.width, place.y + 0.55 * place.height);
  session::drawSignature(picture, name, start, 0.85 * place.width, 0.18 * place.height,
                         SideArtist::kPixelsPerMillimetre, cv::Scalar(34, 44, 110));
}

void drawPhoto(cv::Mat& picture, const cv::Rect& place, const cv::Mat& photo, bool grey) {
  cv::Mat printed;
  cv::resize(photo, printed, place.size(), 0, 0,
             photo.cols > place.width ? cv::INTER_AREA : cv::INTER_CUBIC);
  if (grey) {
    cv::cvtColor(printed, printed, cv::COLOR_RGB2GRAY);
    cv::cvtColor(printed, printed, cv::COLOR_GRAY2RGB);
  }
  // Print neither reaches the screen's black nor its white.
  printed.convertTo(picture(place), -1, 0.9, 14.0);
}

void drawGhost(cv::Mat& picture, const cv::Rect& place, const cv::Mat& photo) {
  cv::Mat pale;
  cv::resize(photo, pale, place.size(), 0, 0, cv::INTER_AREA);
  cv::addWeighted(picture(place), 0.65, pale, 0.35, 0.0, picture(place));
}

/// PDF417 on white, as large as the place lets it be.
void drawCode(cv::Mat& picture, const cv::Rect& place, const std::string& text) {
  const ZXing::BitMatrix code =
      ZXing::MultiFormatWriter(ZXing::BarcodeFormat::PDF417).setMargin(2).encode(text, 0, 0);
  cv::Mat modules(code.height(), code.width(), CV_8UC3);
  for (int row = 0; row < modules.rows; ++row)
    for (int column = 0; column < modules.cols; ++column)
      modules.at<cv::Vec3b>(row, column) =
          code.get(column, row) ? cv::Vec3b(20, 20, 22) : cv::Vec3b(246, 246, 242);
  cv::Mat scaled;
  cv::resize(modules, scaled, place.size(), 0, 0, cv::INTER_NEAREST);
  scaled.copyTo(picture(place));
}

std::string replaced(std::string text, const std::string& mark, const std::string& value) {
  if (const auto at = text.find(mark); at != std::string::npos)
    text.replace(at, mark.size(), value);
  return text;
}

std::string printedDate(const std::string& format, const std::string& date) {
  static const std::array<const char*, 12> kMonths = {"JAN", "FEB", "MAR", "APR", "MAY", "JUN",
                                                      "JUL", "AUG", "SEP", "OCT", "NOV", "DEC"};
  const auto month = static_cast<std::size_t>(std::stoi(date.substr(5, 2)) - 1);
  std::string text = replaced(format, "YYYY", date.substr(0, 4));
  text = replaced(text, "MON", kMonths.at(month));
  text = replaced(text, "MM", date.substr(5, 2));
  return replaced(text, "DD", date.substr(8, 2));
}

}  // namespace

std::string plainValue(const CardData& card, const std::string& field) {
  static const std::map<std::string, std::string CardData::*> kMembers = {
      {"surname", &CardData::surname},
      {"givenNames", &CardData::givenNames},
      {"nationality", &CardData::nationality},
      {"dateOfBirth", &CardData::dateOfBirth},
      {"sex", &CardData::sex},
      {"documentNumber", &CardData::documentNumber},
      {"dateOfIssue", &CardData::dateOfIssue},
      {"dateOfExpiry", &CardData::dateOfExpiry},
      {"placeOfBirth", &CardData::placeOfBirth},
      {"address", &CardData::address},
      {"height", &CardData::height},
      {"authority", &CardData::authority},
  };
  const auto found = kMembers.find(field);
  return found == kMembers.end() ? std::string() : card.*found->second;
}

std::string printedValue(const Design& design, const CardData& card, const std::string& field) {
  const std::string value = plainValue(card, field);
  return field.rfind("dateOf", 0) == 0 ? printedDate(design.dateFormat, value) : value;
}

SideArtist::SideArtist(const Design& design, Typeface label, Typeface value, Typeface title,
                       Typeface machine)
    : design_(design),
      label_(std::move(label)),
      value_(std::move(value)),
      title_(std::move(title)),
      machine_(std::move(machine)) {}

Result<SideArtist> SideArtist::create(const Design& design) {
  std::vector<Typeface> faces;
  for (const FontName& name : {design.labelFont, design.valueFont, design.titleFont,
                               FontName{"OCRB.otf", "fonts-ocr-b"}}) {
    auto face = Typeface::load(name.file, name.package);
    if (!face) return fault(face.error());
    faces.push_back(std::move(*face));
  }
  return SideArtist(design, faces[0], faces[1], faces[2], faces[3]);
}

void SideArtist::write(cv::Mat& picture, const Writing& writing) const {
  const double size = title_.fittingSize(writing.text, px(writing.size), px(writing.room));
  const double width = title_.width(writing.text, size);
  double left = px(writing.at.x);
  if (writing.align == "right") left -= width;
  if (writing.align == "middle") left -= 0.5 * width;
  title_.draw(picture, writing.text, {left, px(writing.at.y)}, size, writing.colour);
}

void SideArtist::writeUpward(cv::Mat& picture, Writing writing) const {
  writing.at = {design_.size().height - writing.at.y, writing.at.x};
  cv::Mat turned;
  cv::rotate(picture, turned, cv::ROTATE_90_CLOCKWISE);
  write(turned, writing);
  cv::rotate(turned, picture, cv::ROTATE_90_COUNTERCLOCKWISE);
}

void SideArtist::field(cv::Mat& picture, const FieldPlace& place, const std::string& value) const {
  const double full = px(place.size > 0 ? place.size : design_.valueSize);
  cv::Point2d at(px(place.at.x), px(place.at.y));
  double room = px(place.room);
  const double labelSize = label_.fittingSize(place.label, px(design_.labelSize), room);
  label_.draw(picture, place.label, at, labelSize, design_.labelInk);
  if (design_.labels == LabelPlace::before) {
    const double taken =
        std::max(label_.width(place.label, labelSize) + px(1.0), px(design_.labelRoom));
    at.x += taken;
    room -= taken;
  } else {
    at.y += 1.18 * full;
  }
  value_.draw(picture, value, at, value_.fittingSize(value, full, room), design_.ink);
}

void SideArtist::zone(cv::Mat& picture, const CardData& card) const {
  const cv::Rect2d place = zoneBox(design_);
  cv::Mat area = picture(whole(place) & cv::Rect({0, 0}, picture.size()));
  // The standard wants the zone free of pattern that a reader could take for print.
  cv::addWeighted(area, 0.25, cv::Mat(area.size(), area.type(), cv::Scalar(246, 246, 244)), 0.75,
                  0.0, area);
  const double size = px(kMachinePitch) / machine_.width("0", 1000.0) * 1000.0;
  const auto lines = session::mrzLines(card, design_.format);
  const double spacing = lines.size() == 3 ? 5.8 : 6.35;
  double baseline = place.y + place.height - 5.4 - spacing * static_cast<double>(lines.size() - 1);
  for (const std::string& line : lines) {
    const double left = 0.5 * (place.width - kMachinePitch * static_cast<double>(line.size()));
    machine_.drawInCells(picture, line, {px(left), px(baseline)}, size, px(kMachinePitch),
                         cv::Scalar(22, 24, 34));
    baseline += spacing;
  }
}

cv::Mat SideArtist::paint(const SideDesign& side, const CardData& print, const CardData& coded,
                          const cv::Mat& photo) const {
  const cv::Size size(whole(design_.size().width), whole(design_.size().height));
  cv::Mat picture =
      printedGround(design_, size, session::seedOf(design_.name) + (side.zone ? 1 : 0));
  for (const ColourBand& band : side.bands)
    cv::rectangle(picture, whole(band.place), band.colour, cv::FILLED);
  const cv::Scalar pale(236, 238, 246);
  if (side.emblem)
    drawEmblem(picture, *side.emblem, design_.emblem, side.bands.empty() ? design_.labelInk : pale);
  if (side.chip) drawChip(picture, whole(*side.chip));
  for (Writing writing : side.writings) {
    writing.text = replaced(writing.text, "{documentNumber}", print.documentNumber);
    if (writing.upward)
      writeUpward(picture, writing);
    else
      write(picture, writing);
  }
  if (side.photo) drawPhoto(picture, whole(*side.photo), photo, design_.greyPhoto);
  if (side.ghost) drawGhost(picture, whole(*side.ghost), photo);
  if (side.signature) drawSignature(picture, *side.signature, print.surname + print.givenNames);
  for (const FieldPlace& place : side.fields)
    field(picture, place, printedValue(design_, print, place.field));
  if (side.zone) zone(picture, coded);
  if (side.code) drawCode(picture, whole(*side.code), aamvaRecord(coded));
  return session::withRoundedCorners(picture, whole(kCornerRadius));
}

}  // namespace corvana::photos
