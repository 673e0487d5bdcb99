#pragma once

#include <atomic>
#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>

#include "platform/foundation/Fault.h"
#include "platform/foundation/RunLoop.h"

namespace corvana::devices {

/// A new file that only grows, readable by its owner only. What was written to it is put on the
/// disk while it grows, so that a power loss, too, leaves its beginning. Any thread.
class FilmFile final : public std::enable_shared_from_this<FilmFile> {
 public:
  /// Makes the file, which must not exist, and blocks until its folder's entry is on the disk.
  /// `queue` runs the blocks of `syncSoon`; it may be null when that is never called.
  static platform::Expected<std::shared_ptr<FilmFile>> create(
      const std::filesystem::path& path, std::shared_ptr<platform::DispatchQueue> queue = nullptr);
  ~FilmFile();
  FilmFile(const FilmFile&) = delete;
  FilmFile& operator=(const FilmFile&) = delete;

  const std::filesystem::path& path() const { return path_; }
  /// The file to write to, open as long as this object lives.
  int descriptor() const { return descriptor_; }

  /// Has everything that is written by then put on the disk without waiting for it. A disk that is
  /// slower than the calls is asked again only when it has answered.
  void syncSoon();
  /// Blocks until everything written is on the disk.
  platform::Expected<void> sync();
  /// Why a sync failed: the disk refused, or the file was removed.
  std::optional<platform::Fault> fault() const;

 private:
  FilmFile(std::filesystem::path path, int descriptor,
           std::shared_ptr<platform::DispatchQueue> queue);
  std::optional<platform::Fault> putOnDisk() const;

  const std::filesystem::path path_;
  const int descriptor_;
  const std::shared_ptr<platform::DispatchQueue> queue_;
  std::atomic<bool> isSyncing_ = false;
  mutable std::mutex mutex_;
  std::optional<platform::Fault> fault_;  // guarded by mutex_
};

/// Puts the names in the folder of `path` on the disk: a renamed or new file is not found again
/// after a power loss otherwise.
platform::Expected<void> syncFolderOf(const std::filesystem::path& path);

}  // namespace corvana::devices
