#include "app/keys/TrustedKeys.h"

#include <algorithm>

#include "app/record/Files.h"

namespace corvana::app {
namespace {

using nlohmann::json;
using platform::Expected;

constexpr std::uint64_t kMostSetBytes = 1 << 20;

Expected<std::optional<UtcTime>> timeOf(const json& jwk, const char* member,
                                        const std::string& name) {
  if (!jwk.contains(member)) return std::optional<UtcTime>();
  const auto time =
      jwk[member].is_string() ? parseUtc(jwk[member].get<std::string>()) : std::nullopt;
  if (time) return time;
  return platform::failure(inQuotes(name) + " has a " + member +
                           " that is no time: write it as 2026-03-01T12:00:00Z.");
}

Expected<TrustedKey> trustedKey(const json& jwk, const std::string& name) {
  auto key = PublicKey::fromJwk(jwk, name);
  if (!key) return tl::unexpected(key.error());
  if (jwk.contains("kid") && jwk["kid"] != key->id()) {
    return platform::failure(
        inQuotes(name) + " calls a key by an id that is not its own, which is " + key->id() + ".");
  }
  TrustedKey trusted{std::move(*key), {}, {}, {}};
  for (const auto& [member, time] : {std::pair{"validFrom", &trusted.validFrom},
                                     {"validUntil", &trusted.validUntil},
                                     {"revoked", &trusted.revoked}}) {
    const auto read = timeOf(jwk, member, name);
    if (!read) return tl::unexpected(read.error());
    *time = *read;
  }
  return trusted;
}

}  // namespace

std::optional<std::string> whyNotValid(const TrustedKey& key, const RecordTime& time) {
  if (key.revoked && (!time.stamped || *time.stamped >= *key.revoked)) {
    return "the key was revoked at " + formatUtc(*key.revoked) +
           ", and no third party's time stamp says that the record is older";
  }
  if (!key.validFrom && !key.validUntil) return std::nullopt;
  const auto made = time.stamped ? time.stamped : time.claimed;
  if (!made) return "the key is valid for a time only, and the record has none";
  if (key.validFrom && *made < *key.validFrom) {
    return "the key is valid from " + formatUtc(*key.validFrom) + " only, and the record is of " +
           formatUtc(*made);
  }
  if (key.validUntil && *made > *key.validUntil) {
    return "the key was valid until " + formatUtc(*key.validUntil) + ", and the record is of " +
           formatUtc(*made);
  }
  return std::nullopt;
}

Expected<TrustedKeys> TrustedKeys::ofKey(const std::filesystem::path& file) {
  auto key = PublicKey::load(file);
  if (!key) return tl::unexpected(key.error());
  TrustedKeys trusted;
  trusted.keys_.push_back({std::move(*key), {}, {}, {}});
  return trusted;
}

Expected<TrustedKeys> TrustedKeys::ofSet(const std::filesystem::path& file) {
  const auto text = readFileOrPipe(file, kMostSetBytes);
  if (!text) return tl::unexpected(text.error());
  const auto set = parseJson(*text, file.string());
  if (!set) return tl::unexpected(set.error());
  if (!set->is_object() || !set->contains("keys") || !(*set)["keys"].is_array() ||
      (*set)["keys"].empty()) {
    return platform::failure(inQuotes(file) +
                             " is no set of keys: write {\"keys\": [...]} with what `videoid key "
                             "show` prints.");
  }
  TrustedKeys trusted;
  for (const json& jwk : (*set)["keys"]) {
    auto key = trustedKey(jwk, file.string());
    if (!key) return tl::unexpected(key.error());
    if (trusted.find(key->key.id())) {
      return platform::failure(inQuotes(file) + " holds the key " + key->key.id() +
                               " twice: leave one.");
    }
    trusted.keys_.push_back(std::move(*key));
  }
  return trusted;
}

const TrustedKey* TrustedKeys::find(const std::string& id) const {
  const auto found =
      std::ranges::find_if(keys_, [&](const TrustedKey& key) { return key.key.id() == id; });
  return found == keys_.end() ? nullptr : &*found;
}

}  // namespace corvana::app
