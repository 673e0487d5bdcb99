#include "engine/vision/ImageOps.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include <opencv2/imgproc.hpp>

#include "engine/vision/MatViews.h"
#include "platform/foundation/Require.h"

namespace corvana::engine {
namespace {

using platform::CGRect;
using platform::PixelBuffer;
using platform::PixelBufferRef;
using platform::PixelFormat;

// Limited-range luma: black is 16, white 235.
constexpr double kLumaGain = 255.0 / 219.0;
constexpr double kLumaOffset = -16.0 * kLumaGain;

/// OpenCV only reads; its matrix type has no const view.
cv::Mat sharedRows(const PixelBuffer& picture, int rows, int type) {
  return {rows, picture.width(), type, const_cast<std::uint8_t*>(picture.plane(0))};  // NOLINT
}

cv::Mat sharedPlane(const PixelBuffer& picture, int type) {
  return sharedRows(picture, picture.height(), type);
}

/// All planes below one another, as OpenCV wants them: of even width and height.
cv::Mat evenPlanes(const PixelBuffer& picture) {
  const int evenWidth = (picture.width() + 1) / 2 * 2;
  const int evenHeight = (picture.height() + 1) / 2 * 2;
  const int rows = evenHeight * 3 / 2;
  if (evenWidth == picture.width() && evenHeight == picture.height())
    return sharedRows(picture, rows, CV_8UC1);
  cv::Mat planes(rows, evenWidth, CV_8UC1);
  // The chroma planes are rounded up already: only the luma of an odd size has to grow.
  cv::copyMakeBorder(sharedPlane(picture, CV_8UC1), planes.rowRange(0, evenHeight), 0,
                     evenHeight - picture.height(), 0, evenWidth - picture.width(),
                     cv::BORDER_REPLICATE);
  std::copy(picture.plane(1), picture.bytes().data() + picture.bytes().size(),
            planes.ptr(evenHeight));
  return planes;
}

cv::Mat rgbFromI420(const PixelBuffer& picture) {
  cv::Mat rgb;
  cv::cvtColor(evenPlanes(picture), rgb, cv::COLOR_YUV2RGB_I420);
  return rgb(cv::Rect(0, 0, picture.width(), picture.height()));
}

cv::Mat scaled(const cv::Mat& mat, cv::Size size) {
  const bool smaller = size.area() < mat.size().area();
  cv::Mat out;
  cv::resize(mat, out, size, 0, 0, smaller ? cv::INTER_AREA : cv::INTER_LINEAR);
  return out;
}

}  // namespace

cv::Mat rgbMat(const PixelBuffer& picture) {
  if (picture.format() == PixelFormat::rgb24) return sharedPlane(picture, CV_8UC3);
  if (picture.format() == PixelFormat::i420) return rgbFromI420(picture);
  cv::Mat rgb;
  cv::cvtColor(sharedPlane(picture, CV_8UC1), rgb, cv::COLOR_GRAY2RGB);
  return rgb;
}

cv::Mat grayMat(const PixelBuffer& picture) {
  return grayMat(picture, {0, 0, picture.width(), picture.height()});
}

cv::Mat grayMat(const PixelBuffer& picture, const cv::Rect& part) {
  if (picture.format() == PixelFormat::gray8) return sharedPlane(picture, CV_8UC1)(part);
  cv::Mat gray;
  if (picture.format() == PixelFormat::i420) {
    sharedPlane(picture, CV_8UC1)(part).convertTo(gray, CV_8UC1, kLumaGain, kLumaOffset);
  } else {
    cv::cvtColor(sharedPlane(picture, CV_8UC3)(part), gray, cv::COLOR_RGB2GRAY);
  }
  return gray;
}

PixelBufferRef pixelBufferFrom(const cv::Mat& mat) {
  const bool gray = mat.type() == CV_8UC1;
  platform::require(!mat.empty() && (gray || mat.type() == CV_8UC3),
                    "pixelBufferFrom: not an 8-bit grey or RGB matrix");
  const std::size_t rowBytes = static_cast<std::size_t>(mat.cols) * mat.elemSize();
  std::vector<std::uint8_t> bytes;
  bytes.reserve(rowBytes * static_cast<std::size_t>(mat.rows));
  for (int row = 0; row < mat.rows; ++row) {
    bytes.insert(bytes.end(), mat.ptr(row), mat.ptr(row) + rowBytes);
  }
  return std::make_shared<const PixelBuffer>(
      mat.cols, mat.rows, gray ? PixelFormat::gray8 : PixelFormat::rgb24, std::move(bytes));
}

CGRect rectOf(const cv::Rect& rect) {
  return {double(rect.x), double(rect.y), double(rect.width), double(rect.height)};
}

cv::Rect pixelRect(const CGRect& rect, cv::Size picture) {
  const auto inside = [](double value, int limit) {
    return value > 0 ? static_cast<int>(std::min(value, static_cast<double>(limit))) : 0;
  };
  const cv::Point topLeft(inside(std::floor(rect.minX()), picture.width),
                          inside(std::floor(rect.minY()), picture.height));
  const cv::Point bottomRight(inside(std::ceil(rect.maxX()), picture.width),
                              inside(std::ceil(rect.maxY()), picture.height));
  if (bottomRight.x <= topLeft.x || bottomRight.y <= topLeft.y) return {};
  return {topLeft, bottomRight};
}

PixelBufferRef rgbPicture(const PixelBufferRef& picture) {
  if (picture->format() == PixelFormat::rgb24) return picture;
  const int width = picture->width();
  const int height = picture->height();
  if (picture->format() != PixelFormat::i420 || width % 2 != 0 || height % 2 != 0)
    return pixelBufferFrom(rgbMat(*picture));
  // Each analysed frame comes through here: it is converted where it stays.
  std::vector<std::uint8_t> bytes(PixelBuffer::byteCount(width, height, PixelFormat::rgb24));
  cv::Mat rgb(height, width, CV_8UC3, bytes.data());
  cv::cvtColor(evenPlanes(*picture), rgb, cv::COLOR_YUV2RGB_I420);
  return std::make_shared<const PixelBuffer>(width, height, PixelFormat::rgb24, std::move(bytes));
}

PixelBufferRef grayPicture(const PixelBufferRef& picture) {
  if (picture->format() == PixelFormat::gray8) return picture;
  return pixelBufferFrom(grayMat(*picture));
}

PixelBufferRef cropped(const PixelBuffer& picture, const CGRect& rect) {
  const cv::Rect inside = pixelRect(rect, {picture.width(), picture.height()});
  if (inside.empty()) return nullptr;
  return pixelBufferFrom(rgbMat(picture)(inside));
}

PixelBufferRef resized(const PixelBuffer& picture, int width, int height) {
  return pixelBufferFrom(scaled(rgbMat(picture), {width, height}));
}

double sharpness(const PixelBuffer& picture, const CGRect& rect) {
  const cv::Rect inside = pixelRect(rect, {picture.width(), picture.height()});
  if (inside.empty()) return 0;
  cv::Mat region = grayMat(picture, inside);
  const int longer = std::max(inside.width, inside.height);
  if (longer > kSharpnessSide) {
    const auto side = [&](int length) { return std::max(1, length * kSharpnessSide / longer); };
    region = scaled(region, {side(inside.width), side(inside.height)});
  }
  cv::Mat laplacian;
  cv::Laplacian(region, laplacian, CV_32F);
  cv::Scalar mean;
  cv::Scalar deviation;
  cv::meanStdDev(laplacian, mean, deviation);
  return deviation[0] * deviation[0];
}

Luma luma(const PixelBuffer& picture, const CGRect& rect) {
  const cv::Rect inside = pixelRect(rect, {picture.width(), picture.height()});
  if (inside.empty()) return {};
  cv::Scalar mean;
  cv::Scalar deviation;
  cv::meanStdDev(grayMat(picture, inside), mean, deviation);
  return {mean[0], deviation[0]};
}

}  // namespace corvana::engine
