#pragma once

#include <filesystem>
#include <string>

#include "platform/foundation/Fault.h"

namespace corvana::app {

/// What the person agreed to before they were filmed, as it lies in a run's folder.
inline constexpr const char* kConsentFileName = "consent.json";

/// The bytes of a consent record. Refuses one that does not say that consent was given, to what
/// and when, or that says what docs/consent.schema.json does not know.
platform::Expected<std::string> readConsent(const std::filesystem::path& file);

}  // namespace corvana::app
