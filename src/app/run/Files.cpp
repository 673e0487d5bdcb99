#include "app/run/Files.h"

#include <array>
#include <fstream>
#include <memory>
#include <sstream>
#include <system_error>

#include <openssl/evp.h>
#include <unistd.h>

#include "devices/system/DiskSync.h"

namespace corvana::app {
namespace {

namespace fs = std::filesystem;

constexpr auto kOwnerFile = fs::perms::owner_read | fs::perms::owner_write;
constexpr auto kOwnerFolder = fs::perms::owner_all;

std::string quoted(const fs::path& path) {
  return "\"" + path.string() + "\"";
}

std::string hexadecimal(const unsigned char* bytes, unsigned int count) {
  constexpr const char* kDigits = "0123456789abcdef";
  std::string text;
  for (unsigned int i = 0; i < count; ++i) {
    text += kDigits[bytes[i] >> 4];
    text += kDigits[bytes[i] & 15];
  }
  return text;
}

Expected<void> sync(const fs::path& path) {
  const std::error_code error = devices::syncToDisk(path);
  if (!error) return {};
  return platform::failure(quoted(path) + " could not be put on the disk: " + error.message() +
                           "; check its folder and disk.");
}

}  // namespace

Expected<void> writeFile(const fs::path& path, const std::string& content) {
  const fs::path draft = path.string() + ".new";
  std::error_code error;
  {
    std::ofstream file(draft, std::ios::binary | std::ios::trunc);
    fs::permissions(draft, kOwnerFile, error);
    file << content;
    file.flush();
    if (!file) {
      fs::remove(draft, error);
      return platform::failure("The file " + quoted(path) +
                               " could not be written; check the disk space.");
    }
  }
  fs::rename(draft, path, error);
  if (error)
    return platform::failure("The file " + quoted(path) +
                             " could not be written: " + error.message() + ".");
  return {};
}

Expected<std::string> sha256(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) return platform::failure("There is no file " + quoted(path) + ".");
  const std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context(EVP_MD_CTX_new(),
                                                                        EVP_MD_CTX_free);
  EVP_DigestInit_ex(context.get(), EVP_sha256(), nullptr);
  std::array<char, 1 << 16> buffer{};
  while (file) {
    file.read(buffer.data(), buffer.size());
    EVP_DigestUpdate(context.get(), buffer.data(), static_cast<std::size_t>(file.gcount()));
  }
  if (file.bad()) return platform::failure("The file " + quoted(path) + " could not be read.");
  std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
  unsigned int length = 0;
  EVP_DigestFinal_ex(context.get(), digest.data(), &length);
  return hexadecimal(digest.data(), length);
}

Expected<void> checkEmptyFolder(const fs::path& path) {
  std::error_code error;
  if (!fs::exists(path, error)) return {};
  if (!fs::is_directory(path, error)) {
    return platform::failure(quoted(path) + " is a file; name a folder for the output.");
  }
  if (!fs::is_empty(path, error) || error) {
    return platform::failure("The folder " + quoted(path) +
                             " is not empty; name a new one, so that nothing is overwritten.");
  }
  if (access(path.c_str(), W_OK | X_OK) != 0) {
    return platform::failure("The folder " + quoted(path) + " is not writable; name another one.");
  }
  return {};
}

Expected<void> makeEmptyFolder(const fs::path& path) {
  if (auto checked = checkEmptyFolder(path); !checked) return checked;
  std::error_code error;
  fs::create_directories(path, error);
  if (error) {
    return platform::failure("The folder " + quoted(path) + " can't be made: " + error.message() +
                             "; name another one.");
  }
  fs::permissions(path, kOwnerFolder, error);
  return checkEmptyFolder(path);
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
