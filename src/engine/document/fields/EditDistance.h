#pragma once

#include <cstddef>
#include <string>

namespace corvana::engine {

/// The fewest letters to add, leave out or exchange that turn one text into the other. Bytes count
/// as letters. Pure.
std::size_t editDistance(const std::string& a, const std::string& b);

}  // namespace corvana::engine
