#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

/// The two passes over a picture's bytes that give them mean 0 and deviation 1. Pure functions; any
/// thread. The same result to the last digit on every CPU, however many bytes it takes at a time.
namespace corvana::capture {

/// Exact.
struct ByteSums {
  std::uint64_t values = 0;
  std::uint64_t squares = 0;
};

ByteSums sumsOf(std::span<const std::uint8_t> bytes);

/// (byte - `mean`) / `deviation` of each, both steps rounded to 32 bits. `result` has as many.
void standardize(std::span<const std::uint8_t> bytes, float mean, float deviation,
                 std::span<float> result);

}  // namespace corvana::capture
