#include "InputFile.h"
#include "devices/film/Mp4Dates.h"

namespace corvana {

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const fuzz::InputFile file("film.mp4", data, size);
  (void)devices::setDates(file.path(), std::chrono::system_clock::time_point{});
  return 0;
}

}  // namespace corvana
