#include "app/record/Files.h"

#include <array>
#include <fstream>
#include <sstream>
#include <system_error>

#include <fcntl.h>
#include <unistd.h>

#include "app/keys/Sha256.h"
#include "devices/system/DiskSync.h"
#include "engine/json/FileFault.h"

namespace corvana::app {
namespace {

namespace fs = std::filesystem;

constexpr auto kOwnerFile = fs::perms::owner_read | fs::perms::owner_write;
constexpr auto kOwnerFolder = fs::perms::owner_all;

Expected<void> sync(const fs::path& path) {
  const std::error_code error = devices::syncToDisk(path);
  if (!error) return {};
  return platform::failure(inQuotes(path) + " could not be put on the disk: " + error.message() +
                           "; check its folder and disk.");
}

std::error_code writeAsIs(const fs::path& path, const std::string& content) {
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  if (!file) return engine::lastError();
  std::error_code ignored;  // A file system without permissions is no reason to stop.
  fs::permissions(path, kOwnerFile, ignored);
  file << content;
  return file.flush() ? std::error_code() : engine::lastError();
}

/// Refuses a file that is there, even if it came to be a moment ago.
Expected<void> makeNewFile(const fs::path& path) {
  const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
  if (file >= 0 && ::close(file) == 0) return {};
  const std::error_code error = engine::lastError();
  if (error == std::errc::file_exists) {
    return platform::failure("Another run has just taken the folder " +
                             inQuotes(path.parent_path()) + "; name another one.");
  }
  return platform::failure("The folder " + inQuotes(path.parent_path()) + " takes no file (" +
                           error.message() + "): check its rights and disk.");
}

}  // namespace

Expected<void> writeFile(const fs::path& path, const std::string& content) {
  const fs::path draft = path.string() + ".new";
  std::error_code error = writeAsIs(draft, content);
  if (!error) fs::rename(draft, path, error);
  if (!error) return {};
  std::error_code ignored;  // What was begun may not be there.
  fs::remove(draft, ignored);
  return platform::failure("The file " + inQuotes(path) + " could not be written (" +
                           error.message() + "): check its folder and disk.");
}

Expected<std::string> sha256(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) return engine::unreadable(path, engine::lastError());
  Sha256 sum;
  std::array<char, 1 << 16> buffer{};
  while (file) {
    file.read(buffer.data(), buffer.size());
    sum.add(buffer.data(), static_cast<std::size_t>(file.gcount()));
  }
  if (file.bad()) return engine::unreadable(path, engine::lastError());
  return sum.hexadecimal();
}

Expected<nlohmann::ordered_json> sumsOf(const std::vector<fs::path>& files) {
  auto sums = nlohmann::ordered_json::object();
  for (const fs::path& file : files) {
    std::error_code error;
    if (!fs::exists(file, error)) continue;
    auto sum = sha256(file);
    if (!sum) return tl::unexpected(sum.error());
    sums[file.filename().string()] = *sum;
  }
  return sums;
}

Expected<std::string> sumOver(const std::vector<fs::path>& files) {
  Sha256 all;
  for (const fs::path& file : files) {
    auto sum = sha256(file);
    if (!sum) return sum;
    all.add(file.filename().string() + " " + *sum + "\n");
  }
  return all.hexadecimal();
}

Expected<void> checkEmptyFolder(const fs::path& path) {
  std::error_code error;
  if (!fs::exists(path, error)) return {};
  if (!fs::is_directory(path, error)) {
    return platform::failure(inQuotes(path) + " is a file; name a folder for the output.");
  }
  if (!fs::is_empty(path, error) || error) {
    return platform::failure("The folder " + inQuotes(path) +
                             " is not empty; name a new one, so that nothing is overwritten.");
  }
  if (access(path.c_str(), W_OK | X_OK) != 0) {
    return platform::failure("The folder " + inQuotes(path) +
                             " is not writable; name another one.");
  }
  return {};
}

Expected<void> takeFolder(const fs::path& path, const char* first) {
  std::error_code error;
  fs::create_directories(path, error);
  std::error_code ignored;  // What stands in its place is told below.
  if (error && !fs::exists(path, ignored)) {
    return platform::failure("The folder " + inQuotes(path) + " can't be made: " + error.message() +
                             "; name another one.");
  }
  if (auto checked = checkEmptyFolder(path); !checked) return checked;
  fs::permissions(path, kOwnerFolder, error);
  return makeNewFile(path / first);
}

Expected<void> putOnDisk(const fs::path& folder) {
  std::error_code error;
  for (const fs::directory_entry& entry : fs::directory_iterator(folder, error)) {
    if (!entry.is_regular_file(error)) continue;
    if (auto synced = sync(entry.path()); !synced) return synced;
  }
  return sync(folder);
}

}  // namespace corvana::app
