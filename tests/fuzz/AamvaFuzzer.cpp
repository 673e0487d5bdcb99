#include <cstddef>
#include <cstdint>
#include <string_view>

#include "engine/document/fields/Aamva.h"

namespace corvana {

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto record =
      engine::parseAamva(std::string_view(reinterpret_cast<const char*>(data), size));
  if (record) (void)engine::aamvaFields(*record);
  return 0;
}

}  // namespace corvana
