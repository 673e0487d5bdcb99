#include "platform/foundation/Require.h"

#include <cstdio>
#include <cstdlib>

namespace corvana::platform {

void fatal(std::string_view message) {
  std::fprintf(stderr, "fatal: %.*s\n", static_cast<int>(message.size()), message.data());
  std::fflush(stderr);
  std::abort();
}

}  // namespace corvana::platform
