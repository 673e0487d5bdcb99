#include "app/commands/TrustOptions.h"

namespace corvana::app {

using platform::Expected;

void addTrustOptions(CLI::App& command, TrustChoice& choice) {
  auto* key = command.add_option("--key", choice.key,
                                 "public key of the machine that recorded it, PEM or JSON Web Key");
  command
      .add_option("--keys", choice.keys,
                  "JSON Web Key Set of all machines, with the times for which each key holds; see "
                  "docs/evidence.md")
      ->excludes(key);
  command.add_option("--stamp-ca", choice.authorities,
                     "PEM certificates of the authorities whose time stamps count");
}

Expected<Trust> loadTrust(const TrustChoice& choice) {
  Trust trust;
  if (choice.key || choice.keys) {
    auto keys = choice.key ? TrustedKeys::ofKey(*choice.key) : TrustedKeys::ofSet(*choice.keys);
    if (!keys) return tl::unexpected(keys.error());
    trust.keys = std::move(*keys);
  }
  if (choice.authorities) {
    auto authorities = StampAuthorities::load(*choice.authorities);
    if (!authorities) return tl::unexpected(authorities.error());
    trust.authorities = std::move(*authorities);
  }
  return trust;
}

}  // namespace corvana::app
