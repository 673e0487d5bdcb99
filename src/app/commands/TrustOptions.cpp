#include "app/commands/TrustOptions.h"

namespace corvana::app {

void addTrustOptions(CLI::App& command, TrustArguments& arguments) {
  auto* key = command.add_option("--key", arguments.key,
                                 "public key of the machine that recorded it, PEM or JSON Web Key");
  command
      .add_option("--keys", arguments.keys,
                  "JSON Web Key Set of all machines, with the times for which each key holds; see "
                  "docs/evidence.md")
      ->excludes(key);
  command.add_option("--stamp-ca", arguments.authorities,
                     "PEM certificates of the authorities whose time stamps count");
}

platform::Expected<Trust> loadTrust(const TrustArguments& arguments) {
  Trust trust;
  if (arguments.key || arguments.keys) {
    auto keys =
        arguments.key ? TrustedKeys::ofKey(*arguments.key) : TrustedKeys::ofSet(*arguments.keys);
    if (!keys) return tl::unexpected(keys.error());
    trust.keys = std::move(*keys);
  }
  if (arguments.authorities) {
    auto authorities = StampAuthorities::load(*arguments.authorities);
    if (!authorities) return tl::unexpected(authorities.error());
    trust.authorities = std::move(*authorities);
  }
  return trust;
}

}  // namespace corvana::app
