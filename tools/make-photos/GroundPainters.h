#pragma once

#include <algorithm>
#include <cstddef>
#include <string>

#include <opencv2/core.hpp>

#include "Random.h"

/// The painters of those grounds that have files of their own; as paintGround, whose names they
/// bear.
namespace corvana::photos {

/// A length in whole pixels: no line is thinner than one.
inline int pixels(double length) {
  return std::max(1, static_cast<int>(length));
}

/// Words that no language has.
std::string words(std::size_t letters, session::Random& random);

// Out of doors.
cv::Mat bricks(cv::Size size, double scale, session::Random& random);
cv::Mat grass(cv::Size size, double scale, session::Random& random);
cv::Mat mosaic(cv::Size size, double scale, session::Random& random);

// In rooms and on laps.
cv::Mat denim(cv::Size size, double scale, session::Random& random);
cv::Mat keyboard(cv::Size size, double scale, session::Random& random);
cv::Mat cardboard(cv::Size size, double scale, session::Random& random);

// On desks, counters and garden tables.
cv::Mat notebook(cv::Size size, double scale, session::Random& random);
cv::Mat steel(cv::Size size, double scale, session::Random& random);
cv::Mat wicker(cv::Size size, double scale, session::Random& random);

// Spread on tables and beds.
cv::Mat atlas(cv::Size size, double scale, session::Random& random);
cv::Mat oilcloth(cv::Size size, double scale, session::Random& random);
cv::Mat quilt(cv::Size size, double scale, session::Random& random);

// In halls and waiting rooms.
cv::Mat letters(cv::Size size, double scale, session::Random& random);
cv::Mat parquet(cv::Size size, double scale, session::Random& random);
cv::Mat grille(cv::Size size, double scale, session::Random& random);

// What covers desks, sideboards and trestles.
cv::Mat calendar(cv::Size size, double scale, session::Random& random);
cv::Mat lace(cv::Size size, double scale, session::Random& random);
cv::Mat strandboard(cv::Size size, double scale, session::Random& random);

}  // namespace corvana::photos
