#pragma once

#include <string>
#include <vector>

#include <opencv2/core.hpp>

#include "Random.h"
#include "Result.h"

namespace corvana::photos {

/// The names of all grounds on which a card can lie.
const std::vector<std::string>& groundNames();

/// A ground seen from straight above: RGB, `pixelsPerMillimetre` fine. Colours and threads are
/// drawn anew each time.
session::Result<cv::Mat> paintGround(const std::string& name, cv::Size size,
                                     double pixelsPerMillimetre, session::Random& random);

}  // namespace corvana::photos
