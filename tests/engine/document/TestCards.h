#pragma once

#include <array>
#include <string>

#include <opencv2/core.hpp>

#include "Script.h"
#include "platform/geometry/Geometry.h"
#include "platform/media/PixelBuffer.h"

/// Fictitious cards of several designs, and pictures of them as a hand holds them before a person.
namespace corvana::tests {

/// Where the screen asks for the card, pixels of a picture.
inline constexpr platform::CGRect kGuide{50, 804, 620, 391};

/// Sides drawn flat, RGBA, transparent outside the rounded corners.
struct CardSides {
  cv::Mat front;
  cv::Mat back;
};

/// Invented holders, 0 to 2, with names, numbers and dates of all sorts.
session::CardData holder(int number);
/// `design` 0 is the sample sessions' card; 1 differs in colours and places.
/// A side brought to other proportions, such as a page's.
cv::Mat lengthened(const cv::Mat& side, double aspect);
CardSides drawCard(int design, const session::CardData& card, const std::string& portrait);

/// How the card is held in a picture of 720×1280 pixels.
struct Held {
  double x = 360;
  double y = 1000;
  double width = 600;
  double roll = 0;     ///< degrees
  double taper = 0;    ///< the left side is longer by this share
  int background = 0;  ///< 0 and 1: a person; 2: plain; 3: stripes
  double blur = 0.6;
  double noise = 3;
};

struct HeldPicture {
  platform::PixelBufferRef picture;
  std::array<cv::Point2f, 4> corners;
};

HeldPicture hold(const cv::Mat& side, const Held& held);

}  // namespace corvana::tests
