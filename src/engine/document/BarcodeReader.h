#pragma once

#include <map>
#include <optional>
#include <string>

#include "platform/media/PixelBuffer.h"

namespace corvana::engine {

/// Under this name stands all that a barcode holds, as it is.
inline constexpr const char* kBarcodeText = "text";

/// Reads the PDF417 barcode of a card, if there is one: its text, and of an AAMVA licence the
/// elements by their three-letter identifiers ("DCS" is the family name, "DAQ" the number). Pure.
std::optional<std::map<std::string, std::string>> readBarcode(const platform::PixelBuffer& card);

/// The same, with all that helps where bars are blurred, thin or pale: takes a tenth of a second
/// where there are none.
std::optional<std::map<std::string, std::string>> searchBarcode(const platform::PixelBuffer& card);

/// The same of a barcode's text.
std::map<std::string, std::string> barcodeElements(const std::string& text);

}  // namespace corvana::engine
