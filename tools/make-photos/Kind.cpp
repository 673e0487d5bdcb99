#include "Kind.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include <opencv2/imgproc.hpp>

#include "SideArtist.h"

namespace corvana::photos {
namespace {

using session::CardData;
using session::Random;

struct Range {
  double least, most;
  double draw(Random& random) const { return random.uniform(least, most); }
};

/// How copies are made. Lengths are millimetres, depths shares of the brightness.
struct Copier {
  Range paperMargin;    ///< around a photocopy
  Range tonerTint;      ///< of a photocopy: red over blue
  Range displayMargin;  ///< lit, around the picture
  Range displayPitch;   ///< of its points
  Range displayPointDepth;
  Range bandWidth;  ///< of the bands that points and sensor make
  Range bandDepth;
  Range bandLean;
  Range bandBend;  ///< by which they bend from one side to the other, in bands
  Range bandStep;  ///< from one colour to the next, radians
  Range printMargin;
  Range printSaturation;
  Range printBlack;  ///< in steps of 255
};

const Copier kUsualCopier{.paperMargin = {6.0, 34.0},
                          .tonerTint = {0.0, 0.0},
                          .displayMargin = {1.0, 9.0},
                          .displayPitch = {0.20, 0.29},
                          .displayPointDepth = {0.10, 0.28},
                          .bandWidth = {3.0, 11.0},
                          .bandDepth = {0.03, 0.10},
                          .bandLean = {-0.6, 0.6},
                          .bandBend = {0.0, 0.0},
                          .bandStep = {0.9, 0.9},
                          .printMargin = {1.5, 14.0},
                          .printSaturation = {0.6, 0.9},
                          .printBlack = {44.0, 44.0}};
/// Set aside with the designs on which nothing is tuned: toner that is not quite grey, finer points
/// with paler bands that bend, prints of better ink and cut along the card's edge.
const Copier kUnseenCopier{.paperMargin = {0.5, 20.0},
                           .tonerTint = {-0.03, 0.03},
                           .displayMargin = {0.0, 20.0},
                           .displayPitch = {0.08, 0.20},
                           .displayPointDepth = {0.05, 0.20},
                           .bandWidth = {2.0, 16.0},
                           .bandDepth = {0.015, 0.06},
                           .bandLean = {-3.0, 3.0},
                           .bandBend = {-3.0, 3.0},
                           .bandStep = {0.5, 2.2},
                           .printMargin = {0.0, 8.0},
                           .printSaturation = {0.75, 1.05},
                           .printBlack = {22.0, 50.0}};

/// Millimetres of paper or display around what is copied.
struct Margins {
  double left, top, right, bottom;
};

Margins drawMargins(Random& random, const Range& range) {
  return {range.draw(random), range.draw(random), range.draw(random), range.draw(random)};
}

/// The sheet set into the middle of a larger one of the given colour.
Sheet framed(const Sheet& sheet, const Margins& margins, const cv::Scalar& colour) {
  const double scale = sheet.pixelsPerMillimetre();
  const auto px = [&](double millimetres) {
    return static_cast<int>(std::lround(millimetres * scale));
  };
  Sheet larger = sheet;
  larger.picture.create(sheet.picture.rows + px(margins.top) + px(margins.bottom),
                        sheet.picture.cols + px(margins.left) + px(margins.right), CV_8UC4);
  larger.picture.setTo(cv::Scalar(colour[0], colour[1], colour[2], 255));
  cv::Mat inside =
      larger.picture({px(margins.left), px(margins.top), sheet.picture.cols, sheet.picture.rows});
  std::vector<cv::Mat> channels;
  cv::split(sheet.picture, channels);
  sheet.picture.copyTo(inside, channels[3] > 127);
  larger.place = {sheet.place.x - margins.left, sheet.place.y - margins.top,
                  larger.picture.cols / scale, larger.picture.rows / scale};
  return larger;
}

template <typename Change>
void forEachPixel(cv::Mat& picture, Change change) {
  for (int row = 0; row < picture.rows; ++row)
    for (int column = 0; column < picture.cols; ++column)
      change(picture.at<cv::Vec4b>(row, column), row, column);
}

/// Grey, its contrast too strong, with specks of toner.
Sheet photocopied(const Sheet& sheet, const Copier& copier, Random& random) {
  Sheet copy = framed(sheet, drawMargins(random, copier.paperMargin), cv::Scalar::all(250));
  const double tint = copier.tonerTint.draw(random);
  const double contrast = random.uniform(1.1, 1.6);
  const double light = random.uniform(0.0, 24.0);
  forEachPixel(copy.picture, [&](cv::Vec4b& pixel, int, int) {
    const double grey = 0.30 * pixel[0] + 0.59 * pixel[1] + 0.11 * pixel[2];
    double toner = (grey - 128.0) * contrast + 128.0 + light + 4.0 * random.normal();
    if (random.uniform(0.0, 1.0) < 0.0006) toner -= 120.0;
    const auto value = cv::saturate_cast<std::uint8_t>(std::clamp(toner, 26.0, 246.0));
    pixel = cv::Vec4b(cv::saturate_cast<std::uint8_t>(value * (1.0 + tint)), value,
                      cv::saturate_cast<std::uint8_t>(value * (1.0 - tint)), pixel[3]);
  });
  return copy;
}

/// A display: its own light, black that glows, rows and columns of points, and the bands that they
/// make together with a sensor's.
Sheet displayed(const Sheet& sheet, const Copier& copier, Random& random) {
  const double shade = random.uniform(4.0, 60.0);
  Sheet shown = framed(sheet, drawMargins(random, copier.displayMargin), cv::Scalar::all(shade));
  const double scale = shown.pixelsPerMillimetre();
  const double pitch = copier.displayPitch.draw(random) * scale;
  const double band = copier.bandWidth.draw(random) * scale;
  const double lean = copier.bandLean.draw(random);
  const double depth = copier.displayPointDepth.draw(random);
  const double bandDepth = copier.bandDepth.draw(random);
  const double bend = copier.bandBend.draw(random);
  const double step = copier.bandStep.draw(random);
  const double gamma = random.uniform(0.9, 1.25);
  const double black = random.uniform(10.0, 26.0);
  forEachPixel(shown.picture, [&](cv::Vec4b& pixel, int row, int column) {
    const double rows = 0.5 + 0.5 * std::cos(2.0 * CV_PI * row / pitch);
    const double across = static_cast<double>(column) / shown.picture.cols;
    const double place = (column + lean * row) / band + bend * across * across;
    for (int channel = 0; channel < 3; ++channel) {
      const double columns = 0.5 + 0.5 * std::cos(2.0 * CV_PI * (column / pitch - channel / 3.0));
      const double bands = std::cos(2.0 * CV_PI * place + step * channel);
      double value = 255.0 * std::pow(pixel[channel] / 255.0, gamma);
      value = black + value * (1.0 - black / 255.0);
      value *= (1.0 - depth * rows) * (1.0 - depth * columns) * (1.06 + bandDepth * bands);
      pixel[channel] = cv::saturate_cast<std::uint8_t>(value * (channel == 2 ? 1.06 : 1.0));
    }
  });
  return framed(shown, drawMargins(random, {4.0, 9.0}), cv::Scalar(18, 18, 20));
}

/// Dull colours in dots, on paper that was cut by hand.
Sheet printed(const Sheet& sheet, const Copier& copier, Random& random) {
  Sheet print = framed(sheet, drawMargins(random, copier.printMargin), cv::Scalar(244, 244, 238));
  const double saturation = copier.printSaturation.draw(random);
  const double black = copier.printBlack.draw(random);
  const double dots = random.uniform(0.16, 0.26) * print.pixelsPerMillimetre();
  const double depth = random.uniform(0.05, 0.14);
  forEachPixel(print.picture, [&](cv::Vec4b& pixel, int row, int column) {
    const double grey = 0.30 * pixel[0] + 0.59 * pixel[1] + 0.11 * pixel[2];
    const double dot = std::cos(2.0 * CV_PI * (row + column) / dots) *
                       std::cos(2.0 * CV_PI * (row - column) / dots);
    for (int channel = 0; channel < 3; ++channel) {
      double value = grey + saturation * (pixel[channel] - grey);
      value = black + value * (248.0 - black) / 255.0;
      value += depth * dot * std::min(value, 255.0 - value);
      pixel[channel] = cv::saturate_cast<std::uint8_t>(value);
    }
  });
  return print;
}

char otherDigit(char digit, Random& random) {
  return static_cast<char>('0' + (digit - '0' + static_cast<int>(random.uniform(1.0, 10.0))) % 10);
}

/// Another digit in place of one of the digits at `places`.
void changeDigit(std::string& text, const std::vector<std::size_t>& places, Random& random) {
  char& digit = text[drawFrom(places, random)];
  digit = otherDigit(digit, random);
}

std::vector<std::size_t> digitsOf(const std::string& text) {
  std::vector<std::size_t> places;
  for (std::size_t i = 0; i < text.size(); ++i)
    if (text[i] >= '0' && text[i] <= '9') places.push_back(i);
  return places;
}

void changeName(std::string& name, const std::vector<NameList>& names, bool inCapitals,
                Random& random) {
  const std::string before = name;
  while (name == before) {
    const NameList& list = names.front();
    name = drawFrom(list.surnames, random);
    if (inCapitals) name = capitals(name, list.language);
  }
}

}  // namespace

const std::vector<std::string>& kindNames() {
  static const std::vector<std::string> kNames = {"original", "altered", "photocopy",
                                                  "screen",   "print",   "scan"};
  return kNames;
}

std::string alter(CardData& print, const Design& design, const std::vector<NameList>& names,
                  Random& random) {
  std::vector<std::string> fields;
  for (const FieldPlace& place : design.front.fields)
    for (const char* coded : {"surname", "documentNumber", "dateOfBirth", "dateOfExpiry"})
      if (place.field == coded) fields.emplace_back(coded);
  std::string field = drawFrom(fields, random);
  if (field == "surname") changeName(print.surname, names, design.capitals, random);
  if (field == "documentNumber")
    changeDigit(print.documentNumber, digitsOf(print.documentNumber), random);
  // The last digit of the year, so that it stays a date.
  if (field == "dateOfBirth") changeDigit(print.dateOfBirth, {3}, random);
  if (field == "dateOfExpiry") changeDigit(print.dateOfExpiry, {3}, random);
  return field;
}

Sheet copied(const Sheet& original, Kind kind, bool unseen, Random& random) {
  const Copier& copier = unseen ? kUnseenCopier : kUsualCopier;
  if (kind == Kind::photocopy) return photocopied(original, copier, random);
  if (kind == Kind::screen) return displayed(original, copier, random);
  if (kind == Kind::print) return printed(original, copier, random);
  return original;
}

Conditions scanConditions() {
  Conditions conditions;
  conditions.ground = "plain";
  conditions.cardWidth = 1150.0;
  conditions.aspect = 4.0 / 3.0;
  conditions.fill = 0.8;
  conditions.quality = 92;
  return conditions;
}

}  // namespace corvana::photos
