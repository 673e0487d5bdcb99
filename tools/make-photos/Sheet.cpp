#include "Sheet.h"

#include <cmath>

#include <opencv2/imgproc.hpp>

#include "Ease.h"
#include "Pattern.h"

namespace corvana::photos {
namespace {

constexpr double kFold = 6.0;  // millimetres on each side that bend into the fold

/// Pages darken where they bend into the fold between them.
void darkenFold(cv::Mat& book, int fold, double reach) {
  for (int row = 0; row < book.rows; ++row) {
    const double far = std::abs(row - fold) / reach;
    const double light = 0.55 + 0.45 * session::ease(far, 0.0, 1.0);
    if (light >= 1.0) continue;
    cv::Mat line = book.row(row);
    cv::multiply(line, cv::Scalar(light, light, light, 1.0), line);
  }
}

}  // namespace

Sheet layOut(const cv::Mat& painted, const Design& design, const SideDesign& side) {
  const cv::Size2d size = design.size();
  Sheet sheet{painted, {{0.0, 0.0}, size}, size, contentsOf(design, side)};
  if (!design.book) return sheet;
  const cv::Mat ground = printedGround(design, painted.size(), 7);
  cv::Mat upper;
  cv::cvtColor(ground, upper, cv::COLOR_RGB2RGBA);
  cv::Mat book;
  cv::vconcat(upper, painted, book);
  // No rounded corners where the pages hang together.
  const int corner = painted.cols / 30;
  cv::Mat seam = book.rowRange(painted.rows, painted.rows + corner);
  cv::Mat filler = upper.rowRange(0, corner).clone();
  seam.forEach<cv::Vec4b>([&](cv::Vec4b& pixel, const int* at) {
    if (pixel[3] < 255) pixel = filler.at<cv::Vec4b>(at[0], at[1]);
  });
  darkenFold(book, painted.rows, kFold * sheet.pixelsPerMillimetre());
  sheet.picture = book;
  sheet.place = {0.0, -size.height, size.width, 2.0 * size.height};
  return sheet;
}

}  // namespace corvana::photos
