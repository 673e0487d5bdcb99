#include <cstddef>
#include <cstdint>
#include <string_view>

#include "devices/pictures/ImageHeader.h"

/// What our own code reads of a picture before a library decodes it.
namespace corvana {

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  (void)devices::readImageHeader(std::string_view(reinterpret_cast<const char*>(data), size));
  return 0;
}

}  // namespace corvana
