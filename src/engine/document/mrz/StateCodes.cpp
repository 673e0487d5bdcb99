#include "engine/document/mrz/StateCodes.h"

#include <set>
#include <string>

#include <unicode/uloc.h>

namespace corvana::engine {
namespace {

/// Utopia is the state of specimens; some codes of states that are gone stand on valid cards.
constexpr std::string_view kBesideIso[] = {
    "D",   "EUE", "GBD", "GBN", "GBO", "GBP", "GBS", "RKS", "UNO", "UNA", "UNK",
    "XBA", "XIM", "XCC", "XCE", "XCO", "XEC", "XES", "XMP", "XOM", "XPO", "XDC",
    "XXA", "XXB", "XXC", "XXX", "IAO", "UTO", "ANT", "NTZ", "ROM", "TMP", "ZAR"};

std::set<std::string, std::less<>> allCodes() {
  std::set<std::string, std::less<>> codes(std::begin(kBesideIso), std::end(kBesideIso));
  for (const char* const* country = uloc_getISOCountries(); *country != nullptr; ++country) {
    codes.insert(uloc_getISO3Country(("und_" + std::string(*country)).c_str()));
  }
  return codes;
}

}  // namespace

bool isMrzStateCode(std::string_view code) {
  static const std::set<std::string, std::less<>> kCodes = allCodes();
  return kCodes.contains(code.substr(0, code.find_last_not_of('<') + 1));
}

}  // namespace corvana::engine
