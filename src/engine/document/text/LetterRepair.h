#pragma once

#include <string>

namespace corvana::engine {

/// Mends what networks take for one another in single letters but not in words: small letters with
/// accents among capitals (HÓDMEZőVÁSÁRHELY), zeros among letters (S0VEJ), and commas in dates,
/// which have points (03,09.1996). Pure.
std::string repairedLetters(const std::string& text);

}  // namespace corvana::engine
