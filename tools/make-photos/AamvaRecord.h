#pragma once

#include <string>

#include "Script.h"

namespace corvana::photos {

/// What the barcode of a North American driving licence says of the holder (the AAMVA card design
/// standard, version 10). The issuer's number and its jurisdiction ZZ belong to nobody.
std::string aamvaRecord(const session::CardData& card);

}  // namespace corvana::photos
