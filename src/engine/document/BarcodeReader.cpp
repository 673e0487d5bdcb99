#include "engine/document/BarcodeReader.h"

#include <algorithm>
#include <sstream>

// Text as UTF-8; the wide text of old is on its way out of the library.
#define ZX_USE_UTF8
#include <ZXing/ReadBarcode.h>

#include "engine/vision/MatViews.h"

namespace corvana::engine {
namespace {

bool isElement(const std::string& line) {
  return line.size() > 3 &&
         std::all_of(line.begin(), line.begin() + 3, [](char c) { return c >= 'A' && c <= 'Z'; });
}

/// The record's first element stands behind the header's directory, which ends with the name of
/// the subfile ("DL" or "ID").
std::string withoutDirectory(const std::string& line) {
  for (const char* subfile : {"DLD", "IDD"}) {
    const auto at = line.rfind(subfile);
    if (line.rfind("ANSI ", 0) == 0 && at != std::string::npos) return line.substr(at + 2);
  }
  return line;
}

}  // namespace

std::map<std::string, std::string> barcodeElements(const std::string& text) {
  std::map<std::string, std::string> elements;
  if (text.find("ANSI ") == std::string::npos) return {{"text", text}};
  std::string lines = text;
  std::replace_if(
      lines.begin(), lines.end(), [](char c) { return c == '\r' || c == '\x1e' || c == '\x1d'; },
      '\n');
  std::istringstream stream(lines);
  for (std::string line; std::getline(stream, line);) {
    const std::string element = withoutDirectory(line);
    if (element.rfind("ANSI ", 0) == 0 || !isElement(element)) continue;
    std::string value = element.substr(3);
    value.erase(value.find_last_not_of(' ') + 1);
    elements.emplace(element.substr(0, 3), value);
  }
  if (elements.empty()) return {{"text", text}};
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
