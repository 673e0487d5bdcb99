#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

#include "app/keys/TrustedKeys.h"

namespace corvana::app {

/// What seal.jsonl says of one film.
struct SealChain {
  nlohmann::json head;
  std::vector<nlohmann::json> periods;  ///< its lines of half a second
  bool ended = false;                   ///< the film came to its end, and the last line says so
};

/// The lines of a seal.jsonl that hang together and were signed.
struct SealReading {
  std::vector<SealChain> chains;
  std::size_t lines = 0;             ///< that are read, without those of the signatures
  bool isCut = false;                ///< it ends within a line
  std::optional<std::string> fault;  ///< why the next line can't be believed; ends a sentence
  const TrustedKey* key = nullptr;   ///< that made all signatures; null where nobody vouches
};

/// Reads as far as the chain holds. Without keys (null) it looks at the hashes alone, which whoever
/// changes a line can make anew. `keys` must outlive the reading.
SealReading readSeal(std::string_view text, const TrustedKeys* keys);

}  // namespace corvana::app
