#pragma once

#include <string>

namespace corvana::engine {

/// Mends what networks take for one another in single letters but not in words: small letters with
/// accents among capitals (HÓDMEZőVÁSÁRHELY), and zeros among letters (S0VEJ). Pure.
std::string repairedLetters(const std::string& text);

}  // namespace corvana::engine
