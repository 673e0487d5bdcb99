#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "app/keys/PublicKey.h"
#include "app/stamp/UtcTime.h"

namespace corvana::app {

/// A key that whoever verifies takes for a kiosk's, and when.
struct TrustedKey {
  PublicKey key;
  std::optional<UtcTime> validFrom;
  std::optional<UtcTime> validUntil;
  std::optional<UtcTime> revoked;
};

/// When a record was made, as far as that is known.
struct RecordTime {
  std::optional<UtcTime> claimed;  ///< by the clock of the machine that recorded it
  std::optional<UtcTime> stamped;  ///< no later than this, says a third party
};

/// Why a record of that time can't rest on the key; absent when it can. Whoever has a stolen key
/// can also turn the clock back, so after a revocation only a third party's time counts.
std::optional<std::string> whyNotValid(const TrustedKey& key, const RecordTime& time);

/// The keys that a verification rests on.
class TrustedKeys {
 public:
  /// One public key without limits of time.
  static platform::Expected<TrustedKeys> ofKey(const std::filesystem::path& file);
  /// A JSON Web Key Set whose keys may have the members `validFrom`, `validUntil` and `revoked`.
  static platform::Expected<TrustedKeys> ofSet(const std::filesystem::path& file);

  /// Null when there is no such key.
  const TrustedKey* find(const std::string& id) const;

 private:
  std::vector<TrustedKey> keys_;
};

}  // namespace corvana::app
