#pragma once

namespace corvana::engine {

/// What <cctype> asks the locale for, of bytes that must not depend on one.
inline bool isDigit(char c) {
  return c >= '0' && c <= '9';
}
inline bool isCapital(char c) {
  return c >= 'A' && c <= 'Z';
}

}  // namespace corvana::engine
