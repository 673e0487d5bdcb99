#include "app/recheck/DrawnTasks.h"

#include <algorithm>
#include <string>
#include <vector>

#include "engine/selfie/Challenge.h"
#include "platform/foundation/RandomSource.h"

namespace corvana::app {
namespace {

/// One seed in eighty draws the wanted tasks.
constexpr std::uint32_t kMostSeeds = 10'000;

std::vector<std::string> drawnNames(const RunEvents& events) {
  std::vector<std::string> names;
  for (const RunEvent& event : events.all) {
    if (event.event == "task" && event.step == "drawn") names.push_back(event.name);
  }
  return names;
}

}  // namespace

std::optional<std::uint32_t> seedOfTasks(const RunEvents& events) {
  const auto wanted = drawnNames(events);
  if (wanted.empty()) return {};
  for (std::uint32_t seed = 0; seed < kMostSeeds; ++seed) {
    platform::SeededRandom random(seed);
    const engine::Challenge tasks = engine::drawChallenge(random);
    if (std::ranges::equal(tasks, wanted, {}, engine::nameOf)) return seed;
  }
  return {};
}

}  // namespace corvana::app
