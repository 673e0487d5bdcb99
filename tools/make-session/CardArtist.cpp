#include "CardArtist.h"

#include <cmath>
#include <cstdint>
#include <string>
#include <utility>

#include <opencv2/imgproc.hpp>

#include "Guilloche.h"
#include "Mrz.h"
#include "Painting.h"

namespace corvana::session {
namespace {

// All lengths below are millimetres on the card; `px` brings them into the picture.
constexpr double kLabelSize = 2.0;
constexpr double kValueSize = 3.3;
constexpr double kValueDrop = 3.9;
constexpr double kCornerRadius = 3.18;
constexpr double kMachinePitch = 2.54;  // OCR-B size 1: ten characters an inch
constexpr double kPhotoLeft = 4.2;
constexpr double kPhotoTop = 12.6;
constexpr double kPhotoWidth = 26.0;

const cv::Scalar kInk(22, 24, 34);
const cv::Scalar kLabelInk(58, 76, 110);
const cv::Scalar kTitleInk(24, 48, 104);
const cv::Scalar kPen(34, 44, 120);

double px(double millimetres) {
  return millimetres * CardArtist::kPixelsPerMillimetre;
}

int whole(double millimetres) {
  return static_cast<int>(std::lround(px(millimetres)));
}

cv::Size cardSize() {
  return {whole(CardArtist::kWidth), whole(CardArtist::kHeight)};
}

/// 1984-08-12 as 12.08.1984.
std::string printedDate(const std::string& date) {
  return date.substr(8, 2) + "." + date.substr(5, 2) + "." + date.substr(0, 4);
}

void drawPhoto(cv::Mat& picture, const cv::Mat& photo) {
  const cv::Rect place(whole(kPhotoLeft), whole(kPhotoTop), whole(kPhotoWidth),
                       whole(kPhotoWidth / CardArtist::kPhotoAspect));
  cv::Mat printed;
  cv::resize(photo, printed, place.size(), 0, 0,
             photo.cols > place.width ? cv::INTER_AREA : cv::INTER_CUBIC);
  // Print neither reaches the screen's black nor its white.
  printed.convertTo(picture(place), -1, 0.92, 12.0);
  cv::rectangle(picture, place, cv::Scalar(120, 130, 150), whole(0.15), cv::LINE_AA);
}

}  // namespace

CardArtist::CardArtist(Typeface regular, Typeface bold, Typeface machine)
    : regular_(std::move(regular)), bold_(std::move(bold)), machine_(std::move(machine)) {}

Result<CardArtist> CardArtist::create() {
  auto regular = Typeface::load("DejaVuSans.ttf", "fonts-dejavu-core");
  if (!regular) return fault(regular.error());
  auto bold = Typeface::load("DejaVuSans-Bold.ttf", "fonts-dejavu-core");
  if (!bold) return fault(bold.error());
  auto machine = Typeface::load("OCRB.otf", "fonts-ocr-b");
  if (!machine) return fault(machine.error());
  return CardArtist(std::move(*regular), std::move(*bold), std::move(*machine));
}

void CardArtist::field(cv::Mat& picture, const std::string& label, const std::string& value,
                       cv::Point2d place, double room) const {
  regular_.draw(picture, label, {px(place.x), px(place.y)}, px(kLabelSize), kLabelInk);
  const double size = regular_.fittingSize(value, px(kValueSize), px(room));
  regular_.draw(picture, value, {px(place.x), px(place.y + kValueDrop)}, size, kInk);
}

void CardArtist::title(cv::Mat& picture, const CardData& card) const {
  drawEmblem(picture, {7.4, 6.4}, 3.0, CardArtist::kPixelsPerMillimetre, kTitleInk);
  const std::string heading = "IDENTITY CARD";
  const double headingWidth = bold_.width(heading, px(3.6));
  bold_.draw(picture, heading, {px(kWidth - 4.6) - headingWidth, px(7.7)}, px(3.6), kTitleInk);
  const double room = px(kWidth - 4.6 - 12.4 - 3.0) - headingWidth;
  bold_.draw(picture, card.stateName, {px(12.4), px(7.7)},
             bold_.fittingSize(card.stateName, px(3.6), room), kTitleInk);
  cv::line(picture, {whole(4.2), whole(10.6)}, {whole(kWidth - 4.2), whole(10.6)}, kTitleInk,
           whole(0.2), cv::LINE_AA);
}

cv::Mat CardArtist::front(const CardData& card, const cv::Mat& photo) const {
  cv::Mat picture = guilloche(cardSize(), seedOf(card.stateName));
  title(picture, card);
  drawPhoto(picture, photo);
  field(picture, "Surname", card.surname, {33.4, 14.6}, 48.0);
  field(picture, "Given names", card.givenNames, {33.4, 22.2}, 48.0);
  field(picture, "Nationality", card.nationality, {33.4, 29.8}, 22.0);
  field(picture, "Date of birth", printedDate(card.dateOfBirth), {58.4, 29.8}, 23.0);
  field(picture, "Document no.", card.documentNumber, {33.4, 37.4}, 22.0);
  field(picture, "Date of expiry", printedDate(card.dateOfExpiry), {58.4, 37.4}, 23.0);
  cv::line(picture, {whole(33.4), whole(48.4)}, {whole(58.4), whole(48.4)}, kLabelInk, whole(0.12),
           cv::LINE_AA);
  drawSignature(picture, card.surname + card.givenNames, {35.4, 46.6}, 19.0, 1.0,
                kPixelsPerMillimetre, kPen);
  regular_.draw(picture, "Signature", {px(33.4), px(50.8)}, px(kLabelSize), kLabelInk);
  return withRoundedCorners(picture, whole(kCornerRadius));
}

void CardArtist::machineReadableZone(cv::Mat& picture, const CardData& card) const {
  cv::Mat zone = picture.rowRange(whole(30.8), picture.rows);
  // The standard wants the zone free of pattern that a reader could take for print.
  cv::addWeighted(zone, 0.25, cv::Mat(zone.size(), zone.type(), cv::Scalar(246, 246, 244)), 0.75,
                  0.0, zone);
  const double size = px(kMachinePitch) / machine_.width("0", 1000.0) * 1000.0;
  double baseline = 37.0;
  for (const std::string& line : mrzLines(card)) {
    const double left = 0.5 * (kWidth - kMachinePitch * static_cast<double>(line.size()));
    machine_.drawInCells(picture, line, {px(left), px(baseline)}, size, px(kMachinePitch), kInk);
    baseline += 5.8;
  }
}

cv::Mat CardArtist::back(const CardData& card) const {
  cv::Mat picture = guilloche(cardSize(), seedOf(card.stateName) + 1);
  field(picture, "Place of birth", card.placeOfBirth, {5.0, 5.6}, 48.0);
  field(picture, "Date of issue", printedDate(card.dateOfIssue), {58.4, 5.6}, 23.0);
  field(picture, "Address", card.address, {5.0, 13.4}, 75.0);
  field(picture, "Height", card.height, {5.0, 21.2}, 14.0);
  field(picture, "Sex", card.sex, {22.0, 21.2}, 8.0);
  field(picture, "Authority", card.authority, {33.4, 21.2}, 47.0);
  machineReadableZone(picture, card);
  return withRoundedCorners(picture, whole(kCornerRadius));
}

}  // namespace corvana::session
