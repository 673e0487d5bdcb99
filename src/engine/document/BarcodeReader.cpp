#include "engine/document/BarcodeReader.h"

#include <utility>

#include <opencv2/imgproc.hpp>

// Text as UTF-8; the wide text of old is on its way out of the library.
#define ZX_USE_UTF8
#include <ZXing/ReadBarcode.h>

#include "engine/document/fields/Aamva.h"
#include "engine/vision/MatViews.h"

namespace corvana::engine {
namespace {

using Elements = std::map<std::string, std::string>;
using ZXing::Binarizer;

std::optional<Elements> decoded(const cv::Mat& gray, Binarizer binarizer) {
  const ZXing::ImageView view(gray.data, gray.cols, gray.rows, ZXing::ImageFormat::Lum,
                              static_cast<int>(gray.step));
  ZXing::DecodeHints hints;
  hints.setFormats(ZXing::BarcodeFormat::PDF417);
  hints.setBinarizer(binarizer);
  const ZXing::Result result = ZXing::ReadBarcode(view, hints);
  if (!result.isValid()) return std::nullopt;
  return barcodeElements(result.text());
}

/// Gives thin bars back what blur took from them.
cv::Mat sharpened(const cv::Mat& gray) {
  constexpr double kReach = 2;  // of a lens that is a little out of focus, in pixels
  constexpr double kStrength = 2;
  cv::Mat blurred;
  cv::GaussianBlur(gray, blurred, {}, kReach);
  cv::Mat sharp;
  cv::addWeighted(gray, 1 + kStrength, blurred, -kStrength, 0, sharp);
  return sharp;
}

/// Bars of less than two pixels are better told on a finer grid.
cv::Mat enlarged(const cv::Mat& gray) {
  cv::Mat large;
  cv::resize(gray, large, {}, 2, 2, cv::INTER_CUBIC);
  return large;
}

}  // namespace

std::map<std::string, std::string> barcodeElements(const std::string& text) {
  std::map<std::string, std::string> elements;
  if (auto record = parseAamva(text)) elements = std::move(record->elements);
  elements.emplace(kBarcodeText, text);
  return elements;
}

std::optional<std::map<std::string, std::string>> readBarcode(const platform::PixelBuffer& card) {
  return decoded(grayMat(card), Binarizer::LocalAverage);
}

std::optional<std::map<std::string, std::string>> searchBarcode(const platform::PixelBuffer& card) {
  if (auto elements = readBarcode(card)) return elements;
  const cv::Mat gray = grayMat(card);
  if (auto elements = decoded(sharpened(gray), Binarizer::LocalAverage)) return elements;
  return decoded(enlarged(gray), Binarizer::GlobalHistogram);
}

}  // namespace corvana::engine
