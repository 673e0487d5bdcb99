#include "devices/gstreamer/Mp4Dates.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <fstream>
#include <string_view>
#include <vector>

namespace devices {
namespace {

struct Box {
  std::uint64_t payload = 0;
  std::uint64_t end = 0;
  std::string type;
};

class Mp4File {
 public:
  explicit Mp4File(const std::filesystem::path& path)
      : file_(path, std::ios::in | std::ios::out | std::ios::binary) {
    file_.seekg(0, std::ios::end);
    size_ = static_cast<std::uint64_t>(std::max<std::streamoff>(file_.tellg(), 0));
  }

  bool clear() {
    clearBoxes(0, size_);
    file_.flush();
    return file_.good();
  }

 private:
  void clearBoxes(std::uint64_t begin, std::uint64_t end) {
    while (file_ && begin + 8 <= end) {
      const Box box = boxAt(begin, end);
      if (box.end <= begin || box.end > end) {
        file_.setstate(std::ios::failbit);
        return;
      }
      clearBox(box);
      begin = box.end;
    }
  }

  void clearBox(const Box& box) {
    if (box.type == "moov" || box.type == "trak" || box.type == "mdia") {
      clearBoxes(box.payload, box.end);
    } else if (box.type == "free") {
      fill(box.payload, box.end);
    } else if (box.type == "mvhd" || box.type == "tkhd" || box.type == "mdhd") {
      // Version and flags, then both dates: 32 bits each in version 0, 64 bits in version 1.
      const std::uint64_t width = number(box.payload, 1) == 1 ? 16 : 8;
      fill(box.payload + 4, std::min(box.payload + 4 + width, box.end));
    }
  }

  Box boxAt(std::uint64_t begin, std::uint64_t end) {
    std::uint64_t size = number(begin, 4);
    std::string type(4, '\0');
    file_.read(type.data(), 4);
    std::uint64_t header = 8;
    if (size == 1) {
      size = number(begin + 8, 8);
      header = 16;
    } else if (size == 0) {
      size = end - begin;
    }
    return {begin + header, begin + std::max(size, header), type};
  }

  std::uint64_t number(std::uint64_t at, int bytes) {
    file_.seekg(static_cast<std::streamoff>(at));
    std::uint64_t value = 0;
    for (int i = 0; i < bytes; ++i)
      value = value << 8 | static_cast<std::uint8_t>(file_.get());
    return value;
  }

  void fill(std::uint64_t begin, std::uint64_t end) {
    constexpr std::array<char, 4096> zeros{};
    file_.seekp(static_cast<std::streamoff>(begin));
    for (std::uint64_t left = end - begin; left > 0 && file_;) {
      const std::uint64_t count = std::min<std::uint64_t>(left, zeros.size());
      file_.write(zeros.data(), static_cast<std::streamsize>(count));
      left -= count;
    }
  }

  std::fstream file_;
  std::uint64_t size_ = 0;
};

}  // namespace

tl::expected<void, platform::Fault> clearDates(const std::filesystem::path& path) {
  if (Mp4File(path).clear()) return {};
  return tl::unexpected(
      platform::Fault{"The film " + path.string() + " can't be completed: check its disk.",
                      platform::FaultCause::folderLost});
}

}  // namespace devices
