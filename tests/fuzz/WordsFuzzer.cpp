#include <cstddef>
#include <cstdint>
#include <string>

#include "capture/TextMatching.h"

/// Bytes before and after the first zero: what was heard, and what was to be read.
namespace corvana {

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string input(reinterpret_cast<const char*>(data), size);
  const std::size_t middle = input.find('\0');
  if (middle == std::string::npos) return 0;
  const std::string heard = capture::lowercased(input.substr(0, middle));
  const std::string text = input.substr(middle + 1);
  (void)capture::levenshteinDistance(heard, text);
  (void)capture::matchSpokenWords({capture::trimmed(heard), heard}, text);
  return 0;
}

}  // namespace corvana
