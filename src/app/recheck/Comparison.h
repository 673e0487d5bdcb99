#pragma once

#include <optional>
#include <string>
#include <vector>

#include "app/recheck/Judgements.h"

namespace corvana::app {

/// How a judgement of today stands to the one of the record.
enum class Stand {
  same,     ///< within a tenth of its limit
  nearer,   ///< on the same side of its limit, and nearer to it by more
  farther,  ///< the same, and farther from it
  turned,   ///< the other way round, or made only once
};

const char* nameOf(Stand stand);

struct ComparedJudgement {
  std::optional<Judgement> recorded;   ///< absent when it was not made then
  std::optional<Judgement> rechecked;  ///< absent when it was not made now
  Stand stand = Stand::same;

  const Judgement& either() const { return recorded ? *recorded : *rechecked; }
};

/// Sets what was found in the record against what is found in its film. Left out is what
/// contradicts nothing: a judgement that is made only now and passes, and one that was made only
/// then by chance.
std::vector<ComparedJudgement> compare(const std::vector<Judgement>& recorded,
                                       const std::vector<Judgement>& rechecked);

}  // namespace corvana::app
