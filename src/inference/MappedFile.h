#pragma once

#include <cstddef>
#include <filesystem>
#include <span>

namespace corvana::inference {

/// A file's bytes, read only, where the kernel keeps them anyway. Any thread.
class MappedFile {
 public:
  /// Empty when the file can't be read.
  explicit MappedFile(const std::filesystem::path& file);
  ~MappedFile();
  MappedFile(const MappedFile&) = delete;
  MappedFile& operator=(const MappedFile&) = delete;

  std::span<const std::byte> bytes() const { return {bytes_, size_}; }
  /// Takes the pages out of the process; each comes back when it is looked at again.
  void letGo() const;

 private:
  std::byte* bytes_ = nullptr;
  std::size_t size_ = 0;
};

}  // namespace corvana::inference
