#include <gtest/gtest.h>
#include <opencv2/imgproc.hpp>

#include "engine/document/BarcodeReader.h"
#include "engine/vision/MatViews.h"

#define ZX_USE_UTF8
#include <ZXing/BitMatrix.h>
#include <ZXing/MultiFormatWriter.h>

namespace corvana::engine {
namespace {

/// The text as PDF417 in the lower part of a white card of 1000 by 630 pixels.
platform::PixelBuffer cardWithBarcode(const std::string& text) {
  const ZXing::BitMatrix code =
      ZXing::MultiFormatWriter(ZXing::BarcodeFormat::PDF417).setMargin(4).encode(text, 800, 200);
  constexpr int kWidth = 1000;
  std::vector<std::uint8_t> bytes(std::size_t{kWidth} * 630, 255);
  for (int y = 0; y < code.height(); ++y) {
    for (int x = 0; x < code.width(); ++x) {
      if (code.get(x, y)) bytes[std::size_t(y + 380) * kWidth + std::size_t(x + 60)] = 0;
    }
  }
  return {kWidth, 630, platform::PixelFormat::gray8, std::move(bytes)};
}

TEST(BarcodeReader, ReadsTheElementsOfALicenceAndTheWholeTextOfOthers) {
  using Elements = std::map<std::string, std::string>;
  const std::pair<std::string, Elements> cases[] = {
      {"@\n\x1e\rANSI 636000090002DL00410278ZV03190008DLDAQT64235789\nDCSSAMPLE\nDACMICHAEL  \r"
       "DBB06061986\rZVZVA01\r",
       {{"DAQ", "T64235789"}, {"DCS", "SAMPLE"}, {"DAC", "MICHAEL"}, {"DBB", "06061986"}}},
      {"Straße 7, Zürich", {{"text", "Straße 7, Zürich"}}},
      {"ANSI 6360", {{"text", "ANSI 6360"}}}};
  for (const auto& [text, expected] : cases) {
    const auto elements = readBarcode(cardWithBarcode(text));
    ASSERT_TRUE(elements) << text;
    for (const auto& [name, value] : expected)
      EXPECT_EQ(elements->at(name), value);
  }
  EXPECT_FALSE(readBarcode(
      {1000, 630, platform::PixelFormat::gray8, std::vector<std::uint8_t>(630000, 200)}));
}

TEST(BarcodeReader, SearchesBarsThatAreBlurredOrThin) {
  const auto blurred = [](const platform::PixelBuffer& card, double shrink, double blur) {
    const cv::Mat whole = grayMat(card);
    cv::Mat part;
    cv::resize(whole, part, {}, shrink, shrink, cv::INTER_AREA);
    cv::Mat picture(whole.size(), CV_8U, cv::Scalar(255));
    part.copyTo(picture({{}, part.size()}));
    cv::GaussianBlur(picture, picture, {}, blur);
    return pixelBufferFrom(picture);
  };
  const std::string text = "ANSI 636000090002DL00410278ZV03190008DLDAQT64235789\nDCSSAMPLE\n";
  const auto card = cardWithBarcode(text);
  for (const auto& [shrink, blur] : {std::pair{1.0, 2.3}, {0.7, 1.9}, {0.6, 1.3}}) {
    const auto elements = searchBarcode(*blurred(card, shrink, blur));
    ASSERT_TRUE(elements) << shrink;
    EXPECT_EQ(elements->at("DAQ"), "T64235789");
  }
  EXPECT_FALSE(searchBarcode(
      {1000, 630, platform::PixelFormat::gray8, std::vector<std::uint8_t>(630000, 200)}));
}

}  // namespace
}  // namespace corvana::engine
