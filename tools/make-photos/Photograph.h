#pragma once

#include <array>

#include "Conditions.h"
#include "Result.h"
#include "Sheet.h"

namespace corvana::photos {

struct Photograph {
  cv::Mat picture;  ///< RGB
  /// The card's upper left, upper right, lower right and lower left corner, as it is read.
  std::array<cv::Point2f, 4> corners{};
  bool cut = false;
};

/// Takes the photograph.
session::Result<Photograph> takePhotograph(const Sheet& sheet, const Conditions& conditions,
                                           session::Random& random);

}  // namespace corvana::photos
