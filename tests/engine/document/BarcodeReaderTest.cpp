#include <gtest/gtest.h>

#include "engine/document/BarcodeReader.h"

#define ZX_USE_UTF8
#include <ZXing/BitMatrix.h>
#include <ZXing/MultiFormatWriter.h>

namespace engine {
namespace {

/// The text as PDF417 in the lower part of a white card of 1000 by 630 pixels.
platform::PixelBuffer cardWithBarcode(const std::string& text) {
  const ZXing::BitMatrix code =
      ZXing::MultiFormatWriter(ZXing::BarcodeFormat::PDF417).setMargin(4).encode(text, 800, 200);
  constexpr int kWidth = 1000;
  constexpr int kHeight = 630;
  std::vector<std::uint8_t> bytes(std::size_t{kWidth} * kHeight * 3, 255);
  for (int y = 0; y < code.height(); ++y) {
    for (int x = 0; x < code.width(); ++x) {
      if (!code.get(x, y)) continue;
      const std::size_t pixel = std::size_t(y + 380) * kWidth + std::size_t(x + 60);
      std::fill_n(bytes.begin() + static_cast<std::ptrdiff_t>(pixel * 3), 3, 0);
    }
  }
  return {kWidth, kHeight, platform::PixelFormat::rgb24, std::move(bytes)};
}

TEST(BarcodeReader, ReadsTheElementsOfALicenceFromItsPicture) {
  const auto elements =
      readBarcode(cardWithBarcode("@\n\x1e\rANSI 636000080002DL00410278ZV03190008DLDAQT64235789\n"
                                  "DCSSAMPLE\nDDEN\nDACMICHAEL\nDBB06061986\r"));
  ASSERT_TRUE(elements);
  EXPECT_EQ(elements->at("DCS"), "SAMPLE");
  EXPECT_EQ(elements->at("DAC"), "MICHAEL");
  EXPECT_EQ(elements->at("DBB"), "06061986");
}

TEST(BarcodeReader, KeepsOtherTextsWholeAndSeesNoneOnAPlainCard) {
  const auto text = readBarcode(cardWithBarcode("Straße 7, Zürich"));
  ASSERT_TRUE(text);
  EXPECT_EQ(text->at("text"), "Straße 7, Zürich");
  const platform::PixelBuffer plain(1000, 630, platform::PixelFormat::gray8,
                                    std::vector<std::uint8_t>(630000, 200));
  EXPECT_FALSE(readBarcode(plain));
}

}  // namespace
}  // namespace engine
