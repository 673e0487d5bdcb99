#pragma once

#include <fstream>
#include <iterator>
#include <sstream>
#include <string>

#include <time.h>
#include <unistd.h>

namespace corvana {

/// Seconds of one of the system's clocks, such as CLOCK_PROCESS_CPUTIME_ID.
inline double secondsOn(clockid_t clock) {
  timespec time{};
  clock_gettime(clock, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

/// Milliseconds since the kernel started this process, to a hundredth of a second.
inline double sinceStart() {
  constexpr int kFieldsBeforeStart = 19;
  std::ifstream file("/proc/self/stat");
  const std::string text((std::istreambuf_iterator<char>(file)), {});
  std::istringstream fields(text.substr(text.rfind(')') + 2));
  std::string field;
  for (int i = 0; i <= kFieldsBeforeStart; ++i)
    fields >> field;
  const double ticks = static_cast<double>(sysconf(_SC_CLK_TCK));
  return 1e3 * (secondsOn(CLOCK_BOOTTIME) - std::stod(field) / ticks);
}

}  // namespace corvana
