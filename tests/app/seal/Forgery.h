#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

namespace corvana::tests {

/// What was done to a record.
struct Forgery {
  std::string kind;
  std::string what;  ///< the file and the place
};

/// How many kinds there are; the number of a forgery, modulo this, tells its kind.
int forgeryKinds();

/// Forges the record in a folder as number `number` of all forgeries: the same number does the same
/// to the same record. `other` is the record of another run, sealed with the same key. The record
/// differs from what it was.
Forgery forge(const std::filesystem::path& record, const std::filesystem::path& other,
              std::uint32_t number);

}  // namespace corvana::tests
