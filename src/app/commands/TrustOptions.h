#pragma once

#include <filesystem>
#include <optional>

#include <CLI/CLI.hpp>

#include "app/keys/TrustedKeys.h"
#include "app/stamp/TimeStamp.h"

namespace corvana::app {

/// Files of those who may vouch for a record.
struct TrustChoice {
  std::optional<std::filesystem::path> key;
  std::optional<std::filesystem::path> keys;
  std::optional<std::filesystem::path> authorities;
};

/// Who may vouch for a record, loaded.
struct Trust {
  std::optional<TrustedKeys> keys;
  std::optional<StampAuthorities> authorities;

  /// Null where nobody may.
  const TrustedKeys* keysOrNull() const { return keys ? &*keys : nullptr; }
  const StampAuthorities* authoritiesOrNull() const {
    return authorities ? &*authorities : nullptr;
  }
};

/// --key, --keys and --stamp-ca.
void addTrustOptions(CLI::App& command, TrustChoice& choice);

/// The error is one sentence, the user's to mend.
platform::Expected<Trust> loadTrust(const TrustChoice& choice);

}  // namespace corvana::app
