#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "Result.h"

namespace corvana::session {

/// The files of a session, with or without the card's photographs.
std::vector<std::string> sessionFiles(bool stills);

/// Finished sessions, found again by what they were made from.
class SessionCache {
 public:
  /// files: what a session is made of.
  SessionCache(std::filesystem::path root, std::vector<std::string> files)
      : root_(std::move(root)), files_(std::move(files)) {}

  /// $XDG_CACHE_HOME/corvana/sessions, or the same below ~/.cache.
  static std::filesystem::path usualPlace();

  bool has(const std::string& key) const;
  /// A new empty folder beside the finished ones, to make a session in.
  Result<std::filesystem::path> workFolder(const std::string& key) const;
  /// Makes the work folder's session the finished one of this key.
  Result<void> keep(const std::filesystem::path& work, const std::string& key) const;
  /// Brings the finished session into `folder`, sharing the bytes where the file system can.
  Result<void> deliver(const std::string& key, const std::filesystem::path& folder) const;

 private:
  std::filesystem::path root_;
  std::vector<std::string> files_;
};

/// SHA-256 over the tool's version, the seed, the script and the bytes of all files, in this order.
Result<std::string> sessionKey(const std::string& script, std::uint64_t seed,
                               const std::vector<std::filesystem::path>& files);

}  // namespace corvana::session
