#include "engine/json/FileFault.h"

#include <cerrno>

#include "engine/json/JsonFile.h"

namespace corvana::engine {

std::error_code lastError() {
  return {errno, std::generic_category()};
}

tl::unexpected<platform::Fault> unreadable(const std::filesystem::path& path,
                                           const std::error_code& error) {
  if (error == std::errc::no_such_file_or_directory || error == std::errc::not_a_directory)
    return platform::failure("There is no file " + inQuotes(path) + ".");
  return platform::failure("The file " + inQuotes(path) + " can't be read (" + error.message() +
                           "): check its rights and disk.");
}

}  // namespace corvana::engine
