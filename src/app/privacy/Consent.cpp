#include "app/privacy/Consent.h"

#include "app/record/Files.h"
#include "app/stamp/UtcTime.h"
#include "engine/json/JsonObject.h"

namespace corvana::app {
namespace {

constexpr std::uint64_t kMostConsentBytes = 1 << 16;

void check(const nlohmann::json& value) {
  engine::JsonObject consent(value, "");
  if (!consent.flag("given", false)) {
    consent.complain("given", "must be true: without consent nothing is recorded");
  }
  if (consent.text("statement").empty()) {
    consent.complain("statement", "must be the words that the person agreed to");
  }
  if (!parseUtc(consent.text("time"))) {
    consent.complain("time", "must be like 2026-03-01T12:00:00Z");
  }
  for (const char* key : {"language", "version", "recordedBy"})
    consent.optionalText(key);
  consent.refuseOtherKeys();
}

}  // namespace

platform::Expected<std::string> readConsent(const std::filesystem::path& file) {
  auto bytes = readFile(file, kMostConsentBytes);
  if (!bytes) return bytes;
  const auto value = parseJson(*bytes, file.string());
  if (!value) return tl::unexpected(value.error());
  try {
    check(*value);
  } catch (const engine::JsonFault& fault) {
    return platform::failure("The consent record " + inQuotes(file) +
                             " can't be used: " + fault.sentence + ".");
  }
  return bytes;
}

}  // namespace corvana::app
