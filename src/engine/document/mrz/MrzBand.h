#pragma once

#include <array>
#include <optional>

#include <opencv2/core.hpp>

/// Where the machine-readable zone of an ID-1 card lies: three lines of thirty letters (TD1).
namespace corvana::engine {

inline constexpr int kMrzLines = 3;
inline constexpr int kMrzColumns = 30;

/// The three lines of print as rows across the straightened card, in its pixels.
struct MrzBand {
  double slope = 0;                        ///< of all rows: pixels down per pixel to the right
  std::array<double, kMrzLines> middle{};  ///< a row's middle, at the picture's left edge
  double capHeight = 0;

  cv::Rect rect(cv::Size card) const;
};

/// One line's cells: the n-th one's centre lies at `first + n * pitch`.
struct MrzCells {
  double first = 0;
  double pitch = 0;
};

using MrzGrid = std::array<MrzCells, kMrzLines>;

/// How much darker than its ground each pixel is, as brightness; shadows and patterns wider than a
/// letter vanish.
cv::Mat inkOf(const cv::Mat& gray);

/// Looks for three evenly spaced rows that are filled with print over the card's width.
std::optional<MrzBand> findMrzBand(const cv::Mat& ink);

/// Fits thirty cells of one pitch into each row, so that the print falls between the cells' edges.
std::optional<MrzGrid> fitMrzGrid(const cv::Mat& ink, const MrzBand& band);

}  // namespace corvana::engine
