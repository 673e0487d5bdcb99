#pragma once

#include <cstdint>

#include <opencv2/core.hpp>

namespace corvana::session {

/// A security background as identity cards have: pale bands of fine waves and a rosette over a soft
/// gradient, light enough that text on it stays easy to read. `seed` shifts the pattern.
cv::Mat guilloche(cv::Size size, std::uint64_t seed);

}  // namespace corvana::session
