#include "capture/NumberText.h"

#include <array>
#include <charconv>
#include <cmath>
#include <limits>

namespace corvana::capture {
namespace {

template <class Number>
std::string decimal(Number value) {
  if (std::isnan(value)) return "nan";  // to_chars would show its sign
  const Number magnitude = std::abs(value);
  const Number withoutFractions = std::ldexp(Number{1}, std::numeric_limits<Number>::digits);
  const bool plain =
      magnitude == 0 || (magnitude >= static_cast<Number>(1e-4) && magnitude < withoutFractions);
  std::array<char, 64> buffer;
  const auto format = plain ? std::chars_format::fixed : std::chars_format::scientific;
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, format).ptr;
  std::string text(buffer.data(), end);
  if (plain && text.find('.') == std::string::npos) text += ".0";
  return text;
}

}  // namespace

std::string shortestDecimal(float value) {
  return decimal(value);
}

std::string shortestDecimal(double value) {
  return decimal(value);
}

}  // namespace corvana::capture
