#pragma once

#include <filesystem>
#include <string>

#include "app/keys/SigningKey.h"

namespace corvana::tests {

/// How a small record is made.
struct SmallRecordPlan {
  std::string session;
  int frames = 60;
  int shade = 0;     ///< of its pictures: records of different shades have no sample in common
  bool ends = true;  ///< false: the process was killed after the last frame
  bool retried = false;
};

/// The record of a run of two seconds, with a film and events, sealed as `capture` does it. The
/// same plan and key give the same bytes.
void makeSmallRecord(const std::filesystem::path& folder, const app::SigningKey& key,
                     const SmallRecordPlan& plan);

}  // namespace corvana::tests
