#include "SessionCache.h"

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <memory>
#include <system_error>
#include <utility>

#include <glib.h>
#include <unistd.h>

namespace corvana::session {
namespace {

namespace fs = std::filesystem;

/// Raised with every change to what the same script makes.
constexpr const char* kToolVersion = "make-session 4";

class Digest {
 public:
  void add(const std::string& bytes) {
    // The length keeps neighbours apart: "ab" + "c" is not "a" + "bc".
    const std::string length = std::to_string(bytes.size()) + ":";
    update(length);
    update(bytes);
  }
  std::string hex() { return g_checksum_get_string(checksum_.get()); }

 private:
  void update(const std::string& bytes) {
    g_checksum_update(checksum_.get(), reinterpret_cast<const guchar*>(bytes.data()),
                      static_cast<gssize>(bytes.size()));
  }
  std::unique_ptr<GChecksum, decltype(&g_checksum_free)> checksum_{
      g_checksum_new(G_CHECKSUM_SHA256), g_checksum_free};
};

Result<void> bring(const fs::path& from, const fs::path& to) {
  std::error_code error;
  fs::remove(to, error);
  fs::create_hard_link(from, to, error);
  if (error) fs::copy_file(from, to, fs::copy_options::overwrite_existing, error);
  if (!error) return {};
  return fault(to.string() + " cannot be written (" + error.message() +
               "): choose another folder.");
}

}  // namespace

std::vector<std::string> sessionFiles(bool stills) {
  std::vector<std::string> files = {"session.mp4", "text.txt", "session.json"};
  if (stills) files.insert(files.end(), {"front.png", "back.png"});
  return files;
}

fs::path SessionCache::usualPlace() {
  return fs::path(g_get_user_cache_dir()) / "corvana" / "sessions";
}

bool SessionCache::has(const std::string& key) const {
  return std::all_of(files_.begin(), files_.end(), [&](const std::string& name) {
    std::error_code ignored;
    return fs::is_regular_file(root_ / key / name, ignored);
  });
}

Result<fs::path> SessionCache::workFolder(const std::string& key) const {
  const fs::path work = root_ / (key + ".work-" + std::to_string(getpid()));
  std::error_code error;
  fs::remove_all(work, error);
  fs::create_directories(work, error);
  if (error)
    return fault("The cache folder " + root_.string() + " cannot be used (" + error.message() +
                 "): choose another with --cache.");
  return work;
}

Result<void> SessionCache::keep(const fs::path& work, const std::string& key) const {
  std::error_code error;
  fs::rename(work, root_ / key, error);
  if (!error) return {};
  // Someone else may have finished the same session meanwhile; an incomplete one gives way.
  if (!has(key)) {
    fs::remove_all(root_ / key, error);
    fs::rename(work, root_ / key, error);
    if (error)
      return fault("The cache folder " + root_.string() + " cannot be written (" + error.message() +
                   "): choose another with --cache.");
    return {};
  }
  fs::remove_all(work, error);
  return {};
}

Result<void> SessionCache::deliver(const std::string& key, const fs::path& folder) const {
  std::error_code error;
  fs::create_directories(folder, error);
  if (error)
    return fault("The folder " + folder.string() + " cannot be made (" + error.message() +
                 "): choose another with --output.");
  for (const std::string& name : files_)
    if (auto brought = bring(root_ / key / name, folder / name); !brought) return brought;
  return {};
}

Result<std::string> sessionKey(const std::string& script, std::uint64_t seed,
                               const std::vector<fs::path>& files) {
  Digest digest;
  digest.add(kToolVersion);
  digest.add(std::to_string(seed));
  digest.add(script);
  for (const fs::path& file : files) {
    std::ifstream in(file, std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (!in) return fault(file.string() + " cannot be read: check its permissions.");
    digest.add(bytes);
  }
  return digest.hex();
}

}  // namespace corvana::session
