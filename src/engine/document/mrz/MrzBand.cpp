#include "engine/document/mrz/MrzBand.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <vector>

#include <opencv2/imgproc.hpp>

namespace corvana::engine {
namespace {

// Sizes as fractions of the card's width. The standard's own are: letters 0.0297 apart (2.54 mm),
// lines 0.049 apart, capitals about 0.028 high; prints and made cards differ by a fifth.
constexpr double kLeastLineDistance = 0.030;
constexpr double kMostLineDistance = 0.065;
constexpr double kLeastCapOfDistance = 0.36;
constexpr double kMostCapOfDistance = 0.80;
/// The zone lies in the card's lower part.
constexpr double kTopOfCard = 0.42;

constexpr int kBlocks = 100;  ///< across the card, when rows are looked for
constexpr double kMostSlope = 0.035;
constexpr double kSlopeStep = 0.0025;
constexpr float kInkThreshold = 14;
constexpr double kLeastRowContrast = 0.45;

using Profile = std::vector<double>;

/// Which tenths of a hundredth of each row hold print, bridging the gaps between letters.
cv::Mat filledBlocks(const cv::Mat& ink) {
  cv::Mat blocks;
  cv::resize(ink, blocks, cv::Size(kBlocks, ink.rows), 0, 0, cv::INTER_AREA);
  cv::blur(blocks, blocks, cv::Size(5, 1));
  cv::Mat filled;
  cv::threshold(blocks, filled, kInkThreshold, 1, cv::THRESH_BINARY);
  return filled;
}

/// For each height, the filled share of the row that starts there and has this slope.
Profile coverage(const cv::Mat& filled, double slope, int cardWidth) {
  Profile profile(static_cast<std::size_t>(filled.rows), 0.0);
  for (int x = 3; x < kBlocks - 3; ++x) {
    const int dy = static_cast<int>(std::lround(slope * (x + 0.5) * cardWidth / kBlocks));
    for (int y = 0; y < filled.rows; ++y) {
      const int source = y + dy;
      if (source < 0 || source >= filled.rows) continue;
      profile[static_cast<std::size_t>(y)] += filled.at<float>(source, x);
    }
  }
  for (double& value : profile)
    value /= kBlocks - 6;
  return profile;
}

double sharpnessOf(const Profile& profile, int top) {
  double sum = 0;
  for (std::size_t y = static_cast<std::size_t>(top) + 1; y < profile.size(); ++y) {
    sum += (profile[y] - profile[y - 1]) * (profile[y] - profile[y - 1]);
  }
  return sum;
}

double slopeOf(const cv::Mat& filled, int cardWidth) {
  double best = 0;
  double bestSharpness = -1;
  for (double slope = -kMostSlope; slope <= kMostSlope; slope += kSlopeStep) {
    const double sharpness =
        sharpnessOf(coverage(filled, slope, cardWidth), static_cast<int>(filled.rows * kTopOfCard));
    if (sharpness > bestSharpness) {
      bestSharpness = sharpness;
      best = slope;
    }
  }
  return best;
}

/// Of what is not below zero. Rows are sought at so many places that a call of the library's costs
/// more than all else.
double rounded(double position) {
  return static_cast<double>(static_cast<int>(position + 0.5));
}

/// Sums over stretches of a profile in constant time.
class Sums {
 public:
  explicit Sums(const Profile& profile) : sums_(profile.size() + 1, 0.0) {
    std::partial_sum(profile.begin(), profile.end(), sums_.begin() + 1);
  }
  double total(double from, double to) const { return at(to) - at(from); }
  double mean(double from, double to) const {
    return total(from, to) / std::max(1.0, rounded(to) - rounded(from));
  }

 private:
  double at(double position) const {
    const double last = static_cast<double>(sums_.size() - 1);
    return sums_[static_cast<std::size_t>(std::clamp(rounded(position), 0.0, last))];
  }

  std::vector<double> sums_;
};

/// How much fuller the weakest of three rows is than the fullest gap beside and between them.
double rowContrast(const Sums& rows, double firstMiddle, double distance, double cap) {
  double weakest = 1;
  double fullest = 0;
  for (int line = 0; line < kMrzLines; ++line) {
    const double middle = firstMiddle + line * distance;
    weakest = std::min(weakest, rows.mean(middle - cap / 2, middle + cap / 2));
    if (line + 1 < kMrzLines) {
      const double gap = middle + distance / 2;
      fullest =
          std::max(fullest, rows.mean(gap - (distance - cap) / 3, gap + (distance - cap) / 3));
    }
  }
  const double above = firstMiddle - cap / 2 - (distance - cap) / 2;
  const double below = firstMiddle + 2 * distance + cap / 2 + (distance - cap) / 2;
  fullest = std::max(fullest, 0.7 * rows.mean(above - 2, above + 2));
  fullest = std::max(fullest, 0.7 * rows.mean(below - 2, below + 2));
  return weakest - fullest;
}

struct ThreeRows {
  double contrast = kLeastRowContrast;
  double firstMiddle = 0;
  double distance = 0;
  double capHeight = 0;  ///< 0 while none is clear enough
};

/// Moves three rows of that distance and height down the card; `best` becomes the clearest place
/// if it is clearer.
void takeClearest(const Sums& rows, int cardHeight, double distance, double cap, ThreeRows& best) {
  const double lastMiddle = cardHeight - 2 * distance - cap / 2;
  for (double middle = kTopOfCard * cardHeight; middle <= lastMiddle; middle += 1) {
    // Of equally clear fits the tallest rows: they take the letters in whole.
    const double contrast = rowContrast(rows, middle, distance, cap) + 0.002 * cap;
    if (contrast > best.contrast) best = {contrast, middle, distance, cap};
  }
}

/// The ink of one row, added up from its top to its bottom, for each column.
Profile columnsOf(const cv::Mat& ink, const MrzBand& band, std::size_t line) {
  Profile columns(static_cast<std::size_t>(ink.cols), 0.0);
  for (int x = 0; x < ink.cols; ++x) {
    const double middle = band.middle[line] + band.slope * x;
    const int top = std::max(0, static_cast<int>(std::lround(middle - band.capHeight * 0.5)));
    const int bottom =
        std::min(ink.rows, static_cast<int>(std::lround(middle + band.capHeight * 0.5)));
    for (int y = top; y < bottom; ++y) {
      columns[static_cast<std::size_t>(x)] += ink.at<std::uint8_t>(y, x);
    }
  }
  return columns;
}

/// How well thirty cells fit: print inside, none beside them, and little on the cells' edges.
double fitOf(const Sums& ink, double left, double pitch, double edge) {
  const double right = left + kMrzColumns * pitch;
  const double inside = ink.total(left, right);
  const double outside = ink.total(left - pitch, left) + ink.total(right, right + pitch);
  double onEdges = 0;
  for (int k = 0; k <= kMrzColumns; ++k) {
    onEdges += ink.total(left + k * pitch - edge, left + k * pitch + edge);
  }
  const double edgeShare = onEdges / (kMrzColumns + 1) / (2 * edge);
  const double insideShare = inside / (kMrzColumns * pitch);
  return insideShare - 0.8 * outside / (2 * pitch) - 1.2 * edgeShare;
}

struct Search {
  double firstLeft;
  double lastLeft;
  double leftStep;
  double firstPitch;
  double lastPitch;
  double pitchStep;
};

/// The best-fitting left edge and pitch in the range.
MrzCells bestFit(const Sums& ink, double width, const Search& search) {
  MrzCells best;
  double bestFit = -1e9;
  for (double pitch = search.firstPitch; pitch <= search.lastPitch; pitch += search.pitchStep) {
    const double last = std::min(search.lastLeft, width - kMrzColumns * pitch);
    for (double left = search.firstLeft; left <= last; left += search.leftStep) {
      const double fit = fitOf(ink, left, pitch, 0.1 * pitch);
      if (fit > bestFit) {
        bestFit = fit;
        best = {left, pitch};
      }
    }
  }
  return best;
}

}  // namespace

cv::Rect MrzBand::rect(cv::Size card) const {
  const double margin = 0.6 * capHeight;
  const double drop = slope * card.width;
  const double top = std::min(middle.front(), middle.front() + drop) - margin;
  const double bottom = std::max(middle.back(), middle.back() + drop) + margin;
  const cv::Rect band(0, static_cast<int>(std::floor(top)), card.width,
                      static_cast<int>(std::ceil(bottom - top)));
  return band & cv::Rect(cv::Point(), card);
}

cv::Mat inkOf(const cv::Mat& gray) {
  const int side = std::max(5, gray.cols / 70 | 1);  // wider than a stroke, narrower than a letter
  cv::Mat smooth;
  cv::GaussianBlur(gray, smooth, cv::Size(3, 3), 0);
  cv::Mat ink;
  cv::morphologyEx(smooth, ink, cv::MORPH_BLACKHAT,
                   cv::getStructuringElement(cv::MORPH_RECT, cv::Size(side, side)));
  return ink;
}

std::optional<MrzBand> findMrzBand(const cv::Mat& ink) {
  cv::Mat deep;
  ink.convertTo(deep, CV_32F);
  const cv::Mat filled = filledBlocks(deep);
  MrzBand band;
  band.slope = slopeOf(filled, ink.cols);
  const Sums rows(coverage(filled, band.slope, ink.cols));
  const double width = ink.cols;
  ThreeRows best;
  for (double distance = kLeastLineDistance * width; distance <= kMostLineDistance * width;
       distance += 0.5) {
    for (double cap = kLeastCapOfDistance * distance; cap <= kMostCapOfDistance * distance;
         cap += 2) {
      takeClearest(rows, ink.rows, distance, cap, best);
    }
  }
  if (best.capHeight == 0) return std::nullopt;
  band.capHeight = best.capHeight;
  for (int line = 0; line < kMrzLines; ++line) {
    band.middle[static_cast<std::size_t>(line)] = best.firstMiddle + line * best.distance;
  }
  return band;
}

std::optional<MrzGrid> fitMrzGrid(const cv::Mat& ink, const MrzBand& band) {
  const double width = ink.cols;
  std::array<Profile, kMrzLines> columns;
  Profile all(static_cast<std::size_t>(ink.cols), 0.0);
  for (std::size_t line = 0; line < columns.size(); ++line) {
    columns[line] = columnsOf(ink, band, line);
    for (std::size_t x = 0; x < all.size(); ++x)
      all[x] += columns[line][x];
  }
  const MrzCells common =
      bestFit(Sums(all), width, {0, width, 1, 0.0255 * width, 0.0330 * width, 0.0001 * width});
  if (common.pitch == 0) return std::nullopt;
  MrzGrid grid;
  for (std::size_t line = 0; line < grid.size(); ++line) {
    const double slack = 0.12 * common.pitch;
    const MrzCells own = bestFit(Sums(columns[line]), width,
                                 {common.first - slack, common.first + slack, 0.5,
                                  common.pitch - 0.15, common.pitch + 0.15, 0.03});
    const MrzCells& best = own.pitch == 0 ? common : own;
    grid[line] = {best.first + best.pitch / 2, best.pitch};
  }
  return grid;
}

}  // namespace corvana::engine
