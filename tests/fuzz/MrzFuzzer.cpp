#include <cstddef>
#include <cstdint>
#include <string_view>

#include "engine/document/mrz/MrzParser.h"

namespace corvana {

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  (void)engine::parseMrz(std::string_view(reinterpret_cast<const char*>(data), size));
  return 0;
}

}  // namespace corvana
