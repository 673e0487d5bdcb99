#pragma once

#include <filesystem>
#include <string>

#include "platform/foundation/Fault.h"

namespace corvana::devices {

/// Why a film can't be `done` ("created", "encoded"), and the cure that its cause has. Says that
/// what was recorded plays where there is something. Any thread.
platform::Fault filmFault(const std::filesystem::path& film, const std::string& done,
                          const std::string& why, platform::FaultCause cause);

/// What an `errno` of a call for a file comes from.
platform::FaultCause fileFaultCause(int error);

}  // namespace corvana::devices
