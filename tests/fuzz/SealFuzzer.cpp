#include <string_view>

#include "InputFile.h"
#include "app/keys/Jws.h"
#include "app/seal/SealReading.h"
#include "app/stamp/TimeStamp.h"

/// Seals, their keys, the lines of a growing seal and answers of time stamp authorities.
namespace corvana {
namespace {

constexpr std::string_view kKey =
    R"({"keys":[{"kty":"OKP","crv":"Ed25519","x":"11qYAYKxCrfVS_7TyWQHOg7hcvPapiMlrwIaaPcHURo"}]})";

const app::TrustedKeys& trusted() {
  static const app::TrustedKeys keys = [] {
    const fuzz::InputFile file("keys.json", reinterpret_cast<const std::uint8_t*>(kKey.data()),
                               kKey.size());
    return *app::TrustedKeys::ofSet(file.path());
  }();
  return keys;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  (void)app::verifyDetached(bytes, "payload", trusted());
  (void)app::readSeal(bytes, &trusted());
  (void)app::readSeal(bytes, nullptr);
  static const std::string request = app::makeStampRequest("payload");
  (void)app::checkStamp(bytes, request, "payload", nullptr);
  (void)app::checkStamp(bytes, bytes, "payload", nullptr);
  const fuzz::InputFile file("keys", data, size);
  (void)app::TrustedKeys::ofSet(file.path());
  (void)app::PublicKey::load(file.path());
  return 0;
}

}  // namespace corvana
