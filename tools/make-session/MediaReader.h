#pragma once

#include <filesystem>
#include <vector>

#include <opencv2/core.hpp>

#include "Result.h"

namespace session {

/// The first picture of a JPEG or PNG file, as 8-bit RGB.
Result<cv::Mat> readPicture(const std::filesystem::path& file);

/// All of a sound file, one channel of the given samples per second, −1 to 1.
Result<std::vector<float>> readSound(const std::filesystem::path& file, int rate);

/// Writes an 8-bit RGB picture as PNG.
Result<void> writePng(const std::filesystem::path& file, const cv::Mat& picture);

}  // namespace session
