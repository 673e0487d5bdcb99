#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "app/stamp/TimeStamp.h"

/// The time stamps in a record's folder: stamp-1.tsq and stamp-1.tsr are the first request and its
/// answer; a record may be stamped again before the first one's authority is forgotten.
namespace corvana::app {

struct StoredStamp {
  std::string request;  ///< name of the file
  std::string answer;
};

/// Those that are there, in their order.
std::vector<StoredStamp> stampsIn(const std::filesystem::path& folder);

/// Keeps one more, and replaces none.
platform::Expected<StoredStamp> addStamp(const std::filesystem::path& folder,
                                         const std::string& request, const std::string& answer);

/// No larger file is taken for a request or an answer.
inline constexpr std::uint64_t kMostStampBytes = 1 << 16;

}  // namespace corvana::app
