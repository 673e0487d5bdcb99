#pragma once

#include <map>
#include <optional>
#include <string>

#include "platform/media/PixelBuffer.h"

namespace corvana::engine {

/// Reads the PDF417 barcode of a card, if there is one: the elements of an AAMVA licence by their
/// three-letter identifiers ("DCS" is the family name, "DAQ" the number), else {"text": contents}.
/// Pure.
std::optional<std::map<std::string, std::string>> readBarcode(const platform::PixelBuffer& card);

/// The elements of a barcode's text; {"text": contents} when it is no AAMVA record.
std::map<std::string, std::string> barcodeElements(const std::string& text);

}  // namespace corvana::engine
