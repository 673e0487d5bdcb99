#pragma once

#include "Conditions.h"
#include "View.h"

namespace corvana::photos {

/// Light, shadow and glare as they fall on what lies before the camera. RGB, changed in place.
void shine(cv::Mat& picture, const Conditions& conditions, const View& view);

/// What lens, hand and sensor make of it: blur, smear and noise.
void expose(cv::Mat& picture, const Conditions& conditions, session::Random& random);

}  // namespace corvana::photos
