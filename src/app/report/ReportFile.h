#pragma once

#include <filesystem>
#include <string>

namespace corvana::app {

/// The page in a run's own folder. It is made afterwards, so nothing binds it.
inline constexpr const char* kReportFileName = "report.html";

/// How a page at `page` names the file, from where it lies, with each letter of an address that
/// could mean something else written out.
std::string addressOf(const std::filesystem::path& file, const std::filesystem::path& page);

}  // namespace corvana::app
