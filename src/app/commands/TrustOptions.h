#pragma once

#include <filesystem>
#include <optional>

#include <CLI/CLI.hpp>

#include "app/seal/TimeStamp.h"
#include "app/seal/TrustedKeys.h"

namespace corvana::app {

/// On whose word a check of a record rests, as the command line names it.
struct TrustArguments {
  std::optional<std::filesystem::path> key;
  std::optional<std::filesystem::path> keys;
  std::optional<std::filesystem::path> authorities;
};

struct Trust {
  std::optional<TrustedKeys> keys;
  std::optional<StampAuthorities> authorities;

  const TrustedKeys* keysOrNull() const { return keys ? &*keys : nullptr; }
  const StampAuthorities* authoritiesOrNull() const {
    return authorities ? &*authorities : nullptr;
  }
};

/// --key, --keys and --stamp-ca.
void addTrustOptions(CLI::App& command, TrustArguments& arguments);
platform::Expected<Trust> loadTrust(const TrustArguments& arguments);

}  // namespace corvana::app
