#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

#include <unistd.h>

namespace corvana::fuzz {

/// The bytes of one try as a file in a folder that goes with it.
class InputFile {
 public:
  InputFile(const std::string& name, const std::uint8_t* data, std::size_t size)
      : path_(folder() / name) {
    std::filesystem::create_directories(folder());
    std::ofstream(path_, std::ios::binary)
        .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
  }
  ~InputFile() { std::filesystem::remove_all(folder()); }
  InputFile(const InputFile&) = delete;
  InputFile& operator=(const InputFile&) = delete;

  const std::filesystem::path& path() const { return path_; }

  static std::filesystem::path folder() {
    return std::filesystem::temp_directory_path() / ("fuzz-" + std::to_string(getpid()));
  }

 private:
  const std::filesystem::path path_;
};

}  // namespace corvana::fuzz
