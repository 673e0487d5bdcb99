#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "client/Request.h"

using Words = std::vector<std::string>;

/// A caller's JSON: whatever it holds, no word of it becomes another option than its key says.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view request(reinterpret_cast<const char*>(data), size);
  for (const std::vector<std::string>& positionals : {Words{}, Words{"folder"}}) {
    const auto words = corvana::client::argumentsOf(request, "verify", positionals);
    if (!words) continue;
    if (words->front() != "verify") std::abort();
    for (std::size_t i = 1; i < words->size(); ++i) {
      if ((*words)[i].find('\0') != std::string::npos) std::abort();
      const bool isLast = !positionals.empty() && i + 1 == words->size();
      if (!isLast && !(*words)[i].starts_with("--")) std::abort();
    }
  }
  return 0;
}
