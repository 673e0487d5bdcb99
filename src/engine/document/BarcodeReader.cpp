#include "engine/document/BarcodeReader.h"

#include <utility>

// Text as UTF-8; the wide text of old is on its way out of the library.
#define ZX_USE_UTF8
#include <ZXing/ReadBarcode.h>

#include "engine/document/fields/Aamva.h"
#include "engine/vision/MatViews.h"

namespace corvana::engine {
std::map<std::string, std::string> barcodeElements(const std::string& text) {
  std::map<std::string, std::string> elements;
  if (auto record = parseAamva(text)) elements = std::move(record->elements);
  elements.emplace(kBarcodeText, text);
  return elements;
}

std::optional<std::map<std::string, std::string>> readBarcode(const platform::PixelBuffer& card) {
  const cv::Mat gray = grayMat(card);
  const ZXing::ImageView view(gray.data, gray.cols, gray.rows, ZXing::ImageFormat::Lum,
                              static_cast<int>(gray.step));
  ZXing::DecodeHints hints;
  hints.setFormats(ZXing::BarcodeFormat::PDF417);
  const ZXing::Result result = ZXing::ReadBarcode(view, hints);
  if (!result.isValid()) return std::nullopt;
  return barcodeElements(result.text());
}

}  // namespace corvana::engine
