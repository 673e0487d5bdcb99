#include "engine/selfie/LivenessJudge.h"

#include <algorithm>

#include "engine/selfie/FrameEdges.h"

namespace corvana::engine {
namespace {

using SpeaksFor = LivenessSign::SpeaksFor;
using Kind = LivenessVerdict::Kind;

/// So many looks in a row must see a sign of fraud: a person who does the same thing again is, for
/// one look, as they were then.
constexpr int kAgreeingLooks = 2;
/// Edges stay where they are from look to look, so not each has to look for them.
constexpr int kLooksPerEdges = 3;
/// Looks back at which the eyes may still have been open when they are closed.
constexpr std::size_t kLooksOfABlink = 3;

constexpr double kPassiveWeight = 0.2;
constexpr double kBlinkWeight = 0.4;
constexpr double kReliefWeight = 0.4;

}  // namespace

LivenessJudge::LivenessJudge(const Limits& limits)
    : limits_(limits),
      blink_(limits.blinkShare),
      repeated_{{"repetition", SpeaksFor::fraud, 0, limits.repetition}, {}},
      edges_{{"edges", SpeaksFor::fraud, 0, limits.edges}, {}} {}

void LivenessJudge::startAnew(platform::TimePoint time) {
  since_ = time;
  blink_ = BlinkWatch(limits_.blinkShare);
  relief_ = {};
  views_.clear();
  passiveSum_ = 0;
  passiveCount_ = 0;
}

void LivenessJudge::note(Fraud& fraud, std::optional<double> value, bool isFraud,
                         platform::TimePoint time) {
  if (value) fraud.looks = isFraud ? fraud.looks + 1 : 0;
  const bool isSeen = value && fraud.looks >= kAgreeingLooks;
  if (isSeen) fraud.seenAt = time;
  const bool stands = fraud.seenAt && time - *fraud.seenAt < kFraudMemory;
  // While it stands, the figure is the one that it stands for.
  if (isSeen || !stands) fraud.sign.value = value.value_or(0);
  fraud.sign.isSeen = stands;
}

void LivenessJudge::follow(const Look& look) {
  views_.push_back(faceView(look.picture, look.details.mesh));
  if (views_.size() > kLooksOfABlink + 1) views_.pop_front();
  lids_ = lidsOf(look.details, eyesLikeness(views_.front(), views_.back()));
  blink_.add(look.time, lids_);
  relief_.add(views_.back());
}

void LivenessJudge::look(const Look& look) {
  follow(look);
  passiveSum_ += look.passiveScore;
  ++passiveCount_;

  repetition_.add(look.time, look.picture);
  // Where nothing moves there is none.
  const auto difference = repetition_.difference();
  note(repeated_, difference, difference && *difference < repeated_.sign.limit, look.time);
  if (looks_++ % kLooksPerEdges != 0) return;
  const double edges = edgesAround(look.picture, look.face);
  note(edges_, edges, edges > edges_.sign.limit, look.time);
}

LivenessSign LivenessJudge::blinkSign() const {
  return {"blink", SpeaksFor::life, blink_.leastShare(), limits_.blinkShare, blink_.blinks() > 0};
}

LivenessSign LivenessJudge::reliefSign() const {
  return {"relief", SpeaksFor::life, relief_.greatest(), limits_.relief,
          relief_.greatest() > limits_.relief};
}

float LivenessJudge::score() const {
  const double passive = passiveCount_ == 0 ? 0 : passiveSum_ / passiveCount_;
  const double relief = std::min(relief_.greatest() / limits_.relief, 1.0);
  return static_cast<float>(kPassiveWeight * passive +
                            kBlinkWeight * (blink_.blinks() > 0 ? 1 : 0) + kReliefWeight * relief);
}

LivenessVerdict LivenessJudge::add(const Look& seen) {
  const bool isGone = last_ && seen.time - *last_ > kLongestGap;
  const bool hasJumped = place_.hasJumped(seen.face);
  if (!since_ || isGone || hasJumped) startAnew(seen.time);
  last_ = seen.time;
  look(seen);

  LivenessVerdict verdict;
  verdict.watchedFor = seen.time - *since_;
  verdict.signs = {blinkSign(), reliefSign(), repeated_.sign, edges_.sign};
  verdict.isBeginning = blink_.isClosed() || relief_.last() > limits_.relief;
  verdict.score = score();
  const auto sign = [&](SpeaksFor whom) {
    return std::ranges::find_if(verdict.signs, [whom](const LivenessSign& candidate) {
      return candidate.speaksFor == whom && candidate.isSeen;
    });
  };
  if (const auto fraud = sign(SpeaksFor::fraud); fraud != verdict.signs.end()) {
    verdict.kind = Kind::spoof;
    verdict.evidence = fraud->name;
    startAnew(seen.time);
  } else if (const auto life = sign(SpeaksFor::life);
             life != verdict.signs.end() && verdict.watchedFor >= limits_.watchTime) {
    verdict.kind = Kind::living;
    verdict.evidence = life->name;
  }
  return verdict;
}

}  // namespace corvana::engine
