#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <string>
#include <vector>

#include <opencv2/imgproc.hpp>

#include "GroundLight.h"
#include "GroundPainters.h"
#include "People.h"

namespace corvana::photos {
namespace {

using session::Random;

cv::Mat sheetOf(cv::Size2d millimetres, double scale, const cv::Scalar& colour) {
  return {pixels(millimetres.height * scale), pixels(millimetres.width * scale), CV_8UC3, colour};
}

/// Lines that end anywhere within the place, as long as there is room below.
void writeLines(cv::Mat& sheet, const cv::Rect2d& place, double scale, Random& random) {
  const double letter = random.uniform(1.6, 2.4);
  const cv::Scalar ink = cv::Scalar::all(random.uniform(30.0, 110.0));
  const cv::Rect area(place.tl() * scale, place.br() * scale);
  cv::Mat lines = sheet(area & cv::Rect({}, sheet.size()));
  for (double y = letter; y < place.height; y += 1.9 * letter) {
    const double share = random.uniform(0.35, 1.0);
    const auto letters = static_cast<std::size_t>(share * place.width / (0.9 * letter));
    cv::putText(lines, words(letters, random), cv::Point2d(0.0, y * scale),
                cv::FONT_HERSHEY_SIMPLEX, letter * scale / 21.0, ink, pixels(0.2 * scale),
                cv::LINE_AA);
  }
}

/// With a window or an address, and a stamp or none.
cv::Mat envelope(double scale, Random& random) {
  static const std::vector<cv::Scalar> kPapers = {
      {244, 244, 242}, {212, 180, 128}, {204, 202, 192}, {206, 220, 236}, {226, 200, 166}};
  static const std::vector<cv::Scalar> kStamps = {{160, 52, 60}, {56, 96, 140}, {70, 120, 84}};
  const cv::Size2d size(random.uniform(162.0, 229.0), random.uniform(104.0, 125.0));
  const cv::Scalar paper = drawFrom(kPapers, random);
  cv::Mat sheet = sheetOf(size, scale, paper);
  const cv::Point2d corner(random.uniform(16.0, 30.0), 0.5 * size.height);
  if (random.uniform(0.0, 1.0) < 0.6)
    cv::rectangle(sheet, corner * scale, (corner + cv::Point2d(90.0, 40.0)) * scale,
                  cv::Scalar(236, 238, 240), cv::FILLED);
  writeLines(sheet, {corner.x + 4.0, corner.y + 5.0, 70.0, 24.0}, scale, random);
  if (random.uniform(0.0, 1.0) < 0.6) {
    const cv::Point2d stamp(size.width - 34.0, 8.0);
    const cv::Point2d far = stamp + cv::Point2d(22.0, 28.0);
    cv::rectangle(sheet, stamp * scale, far * scale, drawFrom(kStamps, random), cv::FILLED);
    cv::rectangle(sheet, stamp * scale, far * scale, cv::Scalar(240, 240, 236),
                  pixels(1.4 * scale));
  }
  return sheet;
}

/// A bar for a head, then paragraphs.
cv::Mat letter(double scale, Random& random) {
  static const std::vector<cv::Scalar> kHeads = {
      {30, 60, 120}, {170, 40, 44}, {20, 110, 90}, {226, 150, 40}, {60, 60, 66}};
  const double white = random.uniform(226.0, 250.0);
  const cv::Size2d size(random.uniform(148.0, 210.0), random.uniform(99.0, 210.0));
  cv::Mat sheet = sheetOf(size, scale, {white, white, white * random.uniform(0.94, 1.0)});
  cv::rectangle(sheet, cv::Point2d(14.0, 8.0) * scale,
                cv::Point2d(random.uniform(40.0, 130.0), 15.0) * scale, drawFrom(kHeads, random),
                cv::FILLED);
  for (double y = 24.0; y < size.height - 12.0;) {
    const double height = std::min(random.uniform(8.0, 36.0), size.height - 8.0 - y);
    writeLines(sheet, {14.0, y, size.width - 28.0, height}, scale, random);
    y += height + random.uniform(3.0, 8.0);
  }
  return sheet;
}

/// A strip of thermal paper: what was bought at the left, prices at the right.
cv::Mat receipt(double scale, Random& random) {
  const cv::Size2d size(random.uniform(57.0, 80.0), random.uniform(120.0, 240.0));
  cv::Mat sheet = sheetOf(size, scale, {240, 240, 244});
  writeLines(sheet, {4.0, 6.0, size.width - 24.0, size.height - 12.0}, scale, random);
  writeLines(sheet, {size.width - 16.0, 20.0, 12.0, size.height - 40.0}, scale, random);
  return sheet;
}

/// Turned by `angle` about its middle, with its shadow.
void lay(cv::Mat& picture, const cv::Mat& sheet, cv::Point2d middle, double angle, double scale) {
  const cv::Point2d shadow(0.5 * scale, 0.9 * scale);
  const cv::RotatedRect spot(middle, sheet.size(), static_cast<float>(-angle));
  cv::Rect taken = spot.boundingRect();
  taken += cv::Size(pixels(shadow.x) + 1, pixels(shadow.y) + 1);
  taken &= cv::Rect({}, picture.size());
  if (taken.empty()) return;
  cv::Mat part = picture(taken);
  const cv::Point2d half(0.5 * sheet.cols, 0.5 * sheet.rows);
  cv::Mat turn = cv::getRotationMatrix2D(half, angle, 1.0);
  const auto move = [&](cv::Point2d way) {
    turn.at<double>(0, 2) += way.x;
    turn.at<double>(1, 2) += way.y;
  };
  move(middle - half - cv::Point2d(taken.tl()) + shadow);
  cv::Mat fallen;
  cv::warpAffine(cv::Mat(sheet.size(), CV_8UC1, cv::Scalar(255)), fallen, turn, part.size());
  cv::Mat(0.62 * part).copyTo(part, fallen);
  move(-shadow);
  cv::warpAffine(sheet, part, turn, part.size(), cv::INTER_LINEAR, cv::BORDER_TRANSPARENT);
}

/// Where a point of a floor of blocks laid in herringbone lies within its block. Lengths are widths
/// of a block, of which its length has `ratio`.
struct BlockPlace {
  cv::Point block;  ///< the cell with which it begins
  bool isUpright;
  double along, across;
};

BlockPlace blockAt(double x, double y, int ratio) {
  const int column = static_cast<int>(x), row = static_cast<int>(y);
  const int round = 2 * ratio;
  // Cells along a row: the blocks that lie along it, then those that cross it.
  const int step = ((column - row) % round + round) % round;
  if (step < ratio) return {{column - step, row}, false, step + x - column, y - row};
  const int down = round - 1 - step;
  return {{column, row - down}, true, down + y - row, x - column};
}

}  // namespace

/// The post on a hall table: envelopes, letters and receipts over each other.
cv::Mat letters(cv::Size size, double scale, Random& random) {
  static const std::vector<cv::Scalar> kTables = {
      {120, 84, 58}, {64, 60, 62}, {214, 208, 200}, {88, 104, 96}};
  static const std::array<cv::Mat (*)(double, Random&), 3> kKinds = {envelope, letter, receipt};
  cv::Mat picture = coloured(1.0 + 0.06 * unevenness(size, 0.6 * scale, 30.0 * scale, random),
                             drawFrom(kTables, random));
  const double lie = random.uniform(0.0, 360.0);
  const double sheets = 4.0 + size.area() / (random.uniform(5000.0, 12000.0) * scale * scale);
  for (int i = 0; i < sheets; ++i) {
    const auto kind = static_cast<std::size_t>(random.uniform(0.0, 3.0));
    const cv::Point2d middle(random.uniform(0.0, size.width), random.uniform(0.0, size.height));
    lay(picture, kKinds.at(kind)(scale, random), middle, lie + 30.0 * random.normal(), scale);
  }
  return lit(picture, 1.0 + 0.02 * unevenness(size, 25.0 * scale, 40.0 * scale, random));
}

/// Parquet: blocks in herringbone, each with a shade and grain of its own, and dark joints.
cv::Mat parquet(cv::Size size, double scale, Random& random) {
  static const std::vector<cv::Scalar> kWoods = {
      {188, 142, 92}, {128, 84, 54}, {156, 78, 50}, {202, 190, 172}, {86, 70, 60}};
  const cv::Scalar wood = drawFrom(kWoods, random);
  const double width = random.uniform(16.0, 45.0) * scale;
  const int ratio = static_cast<int>(random.uniform(3.0, 7.0));
  const double joint = random.uniform(0.2, 0.5) * scale / width;
  std::vector<double> shades(61);
  std::generate(shades.begin(), shades.end(), [&] { return random.uniform(0.78, 1.16); });
  const int longest = std::max(size.width, size.height);
  const cv::Mat grain = 0.06 * unevenness({longest, longest}, 0.4 * scale, 24.0 * scale, random) +
                        0.07 * unevenness({longest, longest}, 3.0 * scale, 60.0 * scale, random);
  cv::Mat light(size, CV_32FC1);
  for (int row = 0; row < size.height; ++row)
    for (int column = 0; column < size.width; ++column) {
      const BlockPlace at = blockAt(column / width, row / width, ratio);
      const int which = std::abs(17 * at.block.x + 29 * at.block.y + (at.isUpright ? 7 : 0));
      // Each block is cut from another part of the grain.
      const int across = (at.isUpright ? column : row) + 137 * which;
      const int along = at.isUpright ? row : column;
      const double edge = std::min({at.along, ratio - at.along, at.across, 1.0 - at.across});
      const double shade = shades[static_cast<std::size_t>(which) % shades.size()] +
                           grain.at<float>(across % longest, along);
      light.at<float>(row, column) = static_cast<float>(edge < joint ? 0.5 * shade : shade);
    }
  return coloured(light, wood);
}

/// A bench of painted sheet metal with rows of holes, through which the dark floor shows.
cv::Mat grille(cv::Size size, double scale, Random& random) {
  static const std::vector<cv::Scalar> kPaints = {{30, 92, 76}, {186, 48, 44}, {224, 224, 220},
                                                  {70, 74, 80}, {42, 90, 150}, {236, 180, 52}};
  const double pitch = random.uniform(5.0, 13.0) * scale;
  const double hole = random.uniform(0.24, 0.38) * pitch;
  const double slot = random.uniform(0.0, 1.0) < 0.3 ? 0.9 * pitch : 0.0;
  const bool isSquare = random.uniform(0.0, 1.0) < 0.3;
  const cv::Size2d step(pitch + slot, random.uniform(0.86, 1.1) * pitch);
  const double rim = 0.6 * scale;
  cv::Mat light = 1.0 + 0.03 * unevenness(size, 30.0 * scale, 50.0 * scale, random) +
                  0.015 * unevenness(size, 0.5 * scale, 0.5 * scale, random);
  cv::Mat holes(size, CV_8UC1, cv::Scalar(0));
  for (int row = 0; row < size.height; ++row)
    for (int column = 0; column < size.width; ++column) {
      const int line = static_cast<int>(row / step.height);
      const double set = line % 2 == 0 ? 0.0 : 0.5 * step.width;
      const double x = std::fmod(column + set, step.width) - 0.5 * step.width;
      const double y = row - (line + 0.5) * step.height;
      const double beside = std::max(0.0, std::abs(x) - 0.5 * slot);
      const double far = isSquare ? std::max(beside, std::abs(y)) : std::hypot(beside, y);
      if (far < hole)
        holes.at<uchar>(row, column) = 255;
      else if (far < hole + rim)  // bent inwards: lit below, in the shade above
        light.at<float>(row, column) *= y > 0.0 ? 1.2F : 0.75F;
    }
  const cv::Mat metal = coloured(light, drawFrom(kPaints, random));
  cv::Mat picture = coloured(1.0 + 0.25 * unevenness(size, 3.0 * scale, 3.0 * scale, random),
                             cv::Scalar::all(random.uniform(18.0, 70.0)));
  metal.copyTo(picture, holes == 0);
  return picture;
}

}  // namespace corvana::photos
