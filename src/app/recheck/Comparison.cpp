#include "app/recheck/Comparison.h"

#include <algorithm>
#include <cmath>

namespace corvana::app {
namespace {

/// What a film encoded once more and looked at once more moves no figure by, as a share of its
/// limit.
constexpr double kSameShare = 0.1;

Stand standOf(const Judgement& then, const Judgement& now) {
  if (then.passed != now.passed || then.word != now.word) return Stand::turned;
  if (then.value.has_value() != now.value.has_value()) return Stand::turned;
  const auto limit = now.limit ? now.limit : then.limit;
  if (!then.value || !limit) return Stand::same;
  if (std::abs(*now.value - *then.value) <= kSameShare * std::abs(*limit)) return Stand::same;
  const double before = std::abs(*then.value - then.limit.value_or(*limit));
  return std::abs(*now.value - *limit) < before ? Stand::nearer : Stand::farther;
}

const Judgement* find(const std::vector<Judgement>& all, const Judgement& wanted) {
  const auto found = std::ranges::find_if(all, [&](const Judgement& one) {
    return one.phase == wanted.phase && one.name == wanted.name;
  });
  return found != all.end() ? &*found : nullptr;
}

/// Made only when somebody gives cause to, by the accident of a hand or of a glance: its absence
/// says nothing.
bool comesByChance(const Judgement& judgement) {
  return judgement.name == "documentType" || judgement.name == "samePerson";
}

}  // namespace

const char* nameOf(Stand stand) {
  static constexpr const char* kNames[] = {"same", "nearer", "farther", "turned"};
  return kNames[static_cast<std::size_t>(stand)];
}

std::vector<ComparedJudgement> compare(const std::vector<Judgement>& recorded,
                                       const std::vector<Judgement>& rechecked) {
  std::vector<ComparedJudgement> compared;
  for (const Judgement& then : recorded) {
    const Judgement* now = find(rechecked, then);
    if (now) {
      compared.push_back({then, *now, standOf(then, *now)});
    } else if (!comesByChance(then)) {
      compared.push_back({then, std::nullopt, Stand::turned});
    }
  }
  for (const Judgement& now : rechecked) {
    const bool contradicts = !now.passed.value_or(true);
    if (contradicts && !find(recorded, now)) compared.push_back({std::nullopt, now, Stand::turned});
  }
  return compared;
}

}  // namespace corvana::app
