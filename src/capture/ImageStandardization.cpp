#include "capture/ImageStandardization.h"

#include <algorithm>

// A function with this attribute is made once for each generation of vector units; the loader takes
// the one for the CPU it finds. Set by the build where compiler and loader can do that.
#ifndef CORVANA_EACH_VECTOR_UNIT
#define CORVANA_EACH_VECTOR_UNIT
#endif

namespace corvana::capture {

/// In narrow numbers as long as they hold the squares: those are added several at a time.
CORVANA_EACH_VECTOR_UNIT ByteSums sumsOf(std::span<const std::uint8_t> bytes) {
  constexpr std::size_t kBlock = 32768;
  ByteSums sums;
  for (std::size_t start = 0; start < bytes.size(); start += kBlock) {
    std::uint32_t values = 0;
    std::uint32_t squares = 0;
    for (const std::uint32_t byte : bytes.subspan(start, std::min(kBlock, bytes.size() - start))) {
      values += byte;
      squares += byte * byte;
    }
    sums.values += values;
    sums.squares += squares;
  }
  return sums;
}

CORVANA_EACH_VECTOR_UNIT void standardize(std::span<const std::uint8_t> bytes, float mean,
                                          float deviation, std::span<float> result) {
  std::ranges::transform(bytes, result.begin(), [=](std::uint8_t byte) {
    return (static_cast<float>(byte) - mean) / deviation;
  });
}

}  // namespace corvana::capture
