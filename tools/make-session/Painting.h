#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <opencv2/core.hpp>

namespace corvana::session {

/// The seed of a pattern, which is the same for the same text everywhere.
std::uint64_t seedOf(const std::string& text);

/// Draws a curve one pixel wide through points given in pixels, between them too.
void drawCurve(cv::Mat& picture, const std::vector<cv::Point2d>& points, const cv::Scalar& colour);

/// Draws a star in a circle, as a state's emblem. Centre and radius are in millimetres.
void drawEmblem(cv::Mat& picture, cv::Point2d centre, double radius, double pixelsPerMillimetre,
                const cv::Scalar& colour);

/// Draws a name as a hurried hand signs it, from `start`, the left end of its middle line. Lengths
/// are in millimetres; of size 1 the first loops are 3.8 mm high.
void drawSignature(cv::Mat& picture, const std::string& name, cv::Point2d start, double width,
                   double size, double pixelsPerMillimetre, const cv::Scalar& colour);

/// A side of a card, cut out: its colours, and how much of it there is at each pixel. The radius is
/// in pixels.
cv::Mat withRoundedCorners(const cv::Mat& picture, int radius);

}  // namespace corvana::session
