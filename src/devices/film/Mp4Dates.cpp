#include "devices/film/Mp4Dates.h"

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <limits>
#include <string>

namespace corvana::devices {
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

  bool setDates(std::uint64_t date) {
    date_ = date;
    visitBoxes(0, size_);
    file_.flush();
    return file_.good();
  }

 private:
  void visitBoxes(std::uint64_t begin, std::uint64_t end) {
    while (file_ && begin + 8 <= end) {
      const Box box = boxAt(begin, end);
      if (box.end <= begin || box.end > end) {
        file_.setstate(std::ios::failbit);
        return;
      }
      visitBox(box);
      begin = box.end;
    }
  }

  void visitBox(const Box& box) {
    if (box.type == "moov" || box.type == "trak" || box.type == "mdia") {
      visitBoxes(box.payload, box.end);
    } else if (box.type == "mvhd" || box.type == "tkhd" || box.type == "mdhd") {
      // Version and flags, then both dates: 32 bits each in version 0, 64 bits in version 1.
      const int width = number(box.payload, 1) == 1 ? 8 : 4;
      write(box.payload + 4, width);
      write(box.payload + 4 + static_cast<std::uint64_t>(width), width);
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

  void write(std::uint64_t at, int bytes) {
    file_.seekp(static_cast<std::streamoff>(at));
    for (int shift = 8 * (bytes - 1); shift >= 0; shift -= 8)
      file_.put(static_cast<char>(date_ >> shift));
  }

  std::fstream file_;
  std::uint64_t size_ = 0;
  std::uint64_t date_ = 0;
};

/// MP4 counts seconds from the beginning of 1904. A date past 2040 does not fit the narrow fields.
std::uint64_t mp4Date(std::chrono::system_clock::time_point time) {
  constexpr std::int64_t kFrom1904To1970 = 2'082'844'800;
  const auto date =
      std::chrono::floor<std::chrono::seconds>(time).time_since_epoch().count() + kFrom1904To1970;
  const bool fits = date > 0 && date <= std::numeric_limits<std::uint32_t>::max();
  return fits ? static_cast<std::uint64_t>(date) : 0;
}

}  // namespace

bool setDates(const std::filesystem::path& path, const CreationTime& date) {
  return Mp4File(path).setDates(date ? mp4Date(*date) : 0);
}

}  // namespace corvana::devices
