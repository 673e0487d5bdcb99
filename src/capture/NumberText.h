#pragma once

#include <string>

namespace corvana::capture {

/// The fewest digits that read back as the same number, with a decimal point: "0.75", "1.0". Below
/// 0.0001 and where the type has no fractions left, with an exponent: "1e-05". "nan", "inf". The
/// same in every locale.
std::string shortestDecimal(float value);
std::string shortestDecimal(double value);

}  // namespace corvana::capture
