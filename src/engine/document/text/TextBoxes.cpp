#include "engine/document/text/TextBoxes.h"

#include <algorithm>
#include <optional>

#include <opencv2/imgproc.hpp>

#include "engine/document/text/NetworkInput.h"

namespace corvana::engine {
namespace {

// The network's input, and its output too: for each pixel how likely it belongs to a line's core.
constexpr int kWidth = 704;
constexpr int kHeight = 448;

constexpr double kLeastOfPixel = 0.3;
constexpr double kLeastOfLine = 0.5;  ///< in the mean over a line's core
/// Cores and lines less high than this are specks.
constexpr float kLeastCore = 3;
constexpr float kLeastLine = 5;
/// The network marks the core of a line, which was shrunk by its area over its outline.
constexpr float kGrowth = 1.6F;

/// How sure the network is of what lies inside the rectangle.
double meanInside(const cv::Mat& shares, const cv::RotatedRect& box) {
  const cv::Rect area = box.boundingRect() & cv::Rect({}, shares.size());
  if (area.empty()) return 0;
  std::array<cv::Point2f, 4> corners;
  box.points(corners.data());
  std::vector<cv::Point> outline;
  for (const cv::Point2f& corner : corners)
    outline.emplace_back(cv::Point(corner) - area.tl());
  cv::Mat mask(area.size(), CV_8U, cv::Scalar(0));
  cv::fillConvexPoly(mask, outline, cv::Scalar(1));
  return cv::mean(shares(area), mask)[0];
}

/// The same rectangle with its width across the picture.
cv::RotatedRect lying(cv::RotatedRect box) {
  while (box.angle > 45) {
    box.angle -= 90;
    std::swap(box.size.width, box.size.height);
  }
  return box;
}

cv::RotatedRect grown(cv::RotatedRect box) {
  const auto [width, height] = box.size;
  const float more = kGrowth * width * height / (width + height);
  box.size += cv::Size2f(more, more);
  return box;
}

/// The line around one outline of what is above the threshold.
std::optional<cv::RotatedRect> lineOf(const std::vector<cv::Point>& outline,
                                      const cv::Mat& shares) {
  const cv::RotatedRect core = lying(cv::minAreaRect(outline));
  if (std::min(core.size.width, core.size.height) < kLeastCore) return {};
  if (meanInside(shares, core) < kLeastOfLine) return {};
  const cv::RotatedRect line = grown(core);
  if (std::min(line.size.width, line.size.height) < kLeastLine) return {};
  return line;
}

}  // namespace

platform::Expected<TextBoxes> TextBoxes::load(const std::filesystem::path& model) {
  return TfliteModel::load(model, {{1, kHeight, kWidth, 3}, {kHeight * kWidth}},
                           inference::Runtime::xnnpack)
      .map([](TfliteModel&& loaded) { return TextBoxes(std::move(loaded)); });
}

std::vector<cv::RotatedRect> TextBoxes::find(const cv::Mat& rgb) {
  if (rgb.cols >= rgb.rows) return findInWide(rgb);
  // A picture that stands fills the network's input better when it lies.
  cv::Mat lain;
  cv::rotate(rgb, lain, cv::ROTATE_90_COUNTERCLOCKWISE);
  std::vector<cv::RotatedRect> lines = findInWide(lain);
  for (cv::RotatedRect& line : lines) {
    line.center = {static_cast<float>(rgb.cols - 1) - line.center.y, line.center.x};
    line.angle += 90;
    line = lying(line);
  }
  return lines;
}

std::vector<cv::RotatedRect> TextBoxes::findInWide(const cv::Mat& rgb) {
  const double scale = std::min(double(kWidth) / rgb.cols, double(kHeight) / rgb.rows);
  const cv::Size inside(std::clamp(cvRound(rgb.cols * scale), 1, kWidth),
                        std::clamp(cvRound(rgb.rows * scale), 1, kHeight));
  cv::Mat scaled;
  cv::resize(rgb, scaled, inside, 0, 0, scale < 1 ? cv::INTER_AREA : cv::INTER_LINEAR);
  fillInput(model_, scaled, {kWidth, kHeight});
  model_.run();
  const cv::Mat shares(kHeight, kWidth, CV_32F, const_cast<float*>(model_.output(0).data()));
  cv::Mat likely;
  cv::dilate(shares > kLeastOfPixel, likely, cv::Mat::ones(2, 2, CV_8U));
  std::vector<std::vector<cv::Point>> outlines;
  cv::findContours(likely, outlines, cv::RETR_LIST, cv::CHAIN_APPROX_SIMPLE);

  const auto back = static_cast<float>(1 / scale);
  std::vector<cv::RotatedRect> lines;
  for (const auto& outline : outlines) {
    const auto line = lineOf(outline, shares);
    if (!line) continue;
    // A pixel of the small picture stands for the middle of those it was made from.
    const cv::Point2f center = (line->center + cv::Point2f(0.5F, 0.5F)) * back;
    lines.emplace_back(center - cv::Point2f(0.5F, 0.5F), line->size * back, line->angle);
  }
  std::ranges::stable_sort(lines, {}, [](const cv::RotatedRect& line) { return line.center.y; });
  return lines;
}

}  // namespace corvana::engine
