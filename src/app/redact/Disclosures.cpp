#include "app/redact/Disclosures.h"

#include <array>

#include <openssl/rand.h>

#include "app/keys/Base64Url.h"
#include "app/keys/Sha256.h"
#include "engine/json/JsonText.h"
#include "platform/foundation/Require.h"

namespace corvana::app {
namespace {

using nlohmann::ordered_json;

std::string makeSalt() {
  std::array<unsigned char, 16> bytes{};
  platform::require(RAND_bytes(bytes.data(), bytes.size()) == 1, "There are no random numbers.");
  return toBase64Url({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
}

}  // namespace

void Disclosures::add(const std::string& name, const std::string& text) {
  std::string key = name;
  for (int number = 2; digests_.contains(key); ++number)
    key = name + " " + std::to_string(number);
  const ordered_json parts = {makeSalt(), key, text};
  const std::string disclosure = toBase64Url(engine::compactJson(parts));
  digests_[key] = toBase64Url(sha256BytesOf(disclosure));
  disclosures_[key] = disclosure;
}

}  // namespace corvana::app
