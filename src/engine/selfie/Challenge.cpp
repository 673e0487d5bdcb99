#include "engine/selfie/Challenge.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

namespace corvana::engine {
namespace {

using platform::TimePoint;
using Step = TaskEvent::Step;

constexpr std::array kAllTasks = {LivenessTask::turnLeft, LivenessTask::turnRight,
                                  LivenessTask::lookUp, LivenessTask::comeNearer,
                                  LivenessTask::blinkTwice};

/// Looks from which is learned how the head is held at rest, and how far they may differ.
constexpr std::size_t kFirstLooks = 8;
constexpr double kFirstSpread = 6;  // degrees
/// So many looks in a row must show a movement: one look may err.
constexpr int kAgreeingLooks = 2;
/// At rest, a head is no farther from where it was than this share of a task's limit.
constexpr double kRestShare = 0.6;

template <class Get>
double medianOf(std::vector<HeadLook> looks, Get get) {
  const auto middle = looks.begin() + static_cast<std::ptrdiff_t>(looks.size() / 2);
  std::ranges::nth_element(looks, middle, {}, get);
  return get(*middle);
}

template <class Get>
double spreadOf(const std::vector<HeadLook>& looks, Get get) {
  const auto [least, most] = std::ranges::minmax_element(looks, {}, get);
  return get(*most) - get(*least);
}

double yawOf(const HeadLook& look) {
  return look.pose.yaw;
}
double pitchOf(const HeadLook& look) {
  return look.pose.pitch;
}

/// Nearness counts from 1 on, everything else from 0.
double shareOfLimit(LivenessTask task, double value, double limit) {
  const double origin = task == LivenessTask::comeNearer ? 1 : 0;
  return (value - origin) / (limit - origin);
}

}  // namespace

const char* nameOf(LivenessTask task) {
  switch (task) {
    case LivenessTask::turnLeft:
      return "turnLeft";
    case LivenessTask::turnRight:
      return "turnRight";
    case LivenessTask::lookUp:
      return "lookUp";
    case LivenessTask::comeNearer:
      return "comeNearer";
    case LivenessTask::blinkTwice:
      return "blinkTwice";
  }
  return "";
}

Challenge drawChallenge(platform::RandomSource& random) {
  Challenge challenge{};
  std::vector<LivenessTask> left(kAllTasks.begin(), kAllTasks.end());
  for (LivenessTask& task : challenge) {
    task = left[random.next() % left.size()];
    left.assign(kAllTasks.begin(), kAllTasks.end());
    std::erase(left, task);
  }
  return challenge;
}

ChallengeJudge::ChallengeJudge(const Challenge& tasks, const Limits& limits)
    : tasks_(tasks), limits_(limits), blink_(limits.blinkShare) {}

double ChallengeJudge::limitOf(LivenessTask task) const {
  switch (task) {
    case LivenessTask::turnLeft:
    case LivenessTask::turnRight:
      return limits_.turnDegrees;
    case LivenessTask::lookUp:
      return limits_.lookUpDegrees;
    case LivenessTask::comeNearer:
      return limits_.nearerShare;
    case LivenessTask::blinkTwice:
      return 2;
  }
  return 0;
}

double ChallengeJudge::valueOf(LivenessTask task, const HeadLook& head) const {
  switch (task) {
    // The camera's picture is not mirrored: the person's left is its right.
    case LivenessTask::turnLeft:
      return head.pose.yaw - rest_.pose.yaw;
    case LivenessTask::turnRight:
      return rest_.pose.yaw - head.pose.yaw;
    case LivenessTask::lookUp:
      return rest_.pose.pitch - head.pose.pitch;
    case LivenessTask::comeNearer:
      return head.width / rest_.width;
    case LivenessTask::blinkTwice:
      break;
  }
  const auto pair = std::ranges::adjacent_find(
      blinks_, [](TimePoint a, TimePoint b) { return b - a <= kBlinkPair; });
  if (pair != blinks_.end()) return 2;
  return blinks_.empty() ? 0 : 1;
}

bool ChallengeJudge::isAtRest(const HeadLook& head) const {
  return std::ranges::all_of(kAllTasks, [&](LivenessTask task) {
    return task == LivenessTask::blinkTwice ||
           shareOfLimit(task, valueOf(task, head), limitOf(task)) < kRestShare;
  });
}

bool ChallengeJudge::doesAnother(const HeadLook& head) const {
  return std::ranges::any_of(kAllTasks, [&](LivenessTask other) {
    // A film that does everything, in turn or at once, must not pass. A single blink means nothing,
    // but a film that blinks twice before each of its movements would fit one draw in five.
    return other != task() && valueOf(other, head) >= limitOf(other);
  });
}

void ChallengeJudge::enter(Phase phase, TimePoint time) {
  phase_ = phase;
  since_ = time;
  greatest_ = 0;
  looksDone_ = looksElsewhere_ = looksAtRest_ = 0;
  blinks_.clear();
  askedInBlink_ = blink_.isClosed();
}

TaskEvent ChallengeJudge::event(LivenessTask task, Step step) const {
  return {task, step, greatest_, limitOf(task)};
}

std::optional<TaskEvent> ChallengeJudge::learn(TimePoint time, const HeadLook& head) {
  first_.push_back(head);
  if (first_.size() > kFirstLooks) first_.erase(first_.begin());
  if (first_.size() < kFirstLooks || spreadOf(first_, yawOf) > kFirstSpread ||
      spreadOf(first_, pitchOf) > kFirstSpread) {
    return {};
  }
  rest_.pose = {medianOf(first_, yawOf), medianOf(first_, pitchOf), 0};
  rest_.width = medianOf(first_, [](const HeadLook& look) { return look.width; });
  enter(Phase::asking, time);
  return event(task(), Step::asked);
}

void ChallengeJudge::countBlinks(TimePoint time, const HeadLook& head) {
  blink_.add(time, head.lids);
  const bool isNew = std::exchange(blinksSeen_, blink_.blinks()) != blink_.blinks();
  // Whoever turns the head, or looks elsewhere, blinks without meaning it; and lids that were down
  // when the task was asked for are no answer to it.
  const bool isAnswer = phase_ == Phase::asking && isAtRest(head) && !askedInBlink_;
  if (isNew && isAnswer) blinks_.push_back(time);
  if (!blink_.isClosed()) askedInBlink_ = false;
}

std::optional<TaskEvent> ChallengeJudge::miss(TimePoint time) {
  // After the last one only the way back is left to be missed.
  const TaskEvent missed = event(tasks_[std::min(index_, tasks_.size() - 1)], Step::missed);
  enter(++missed_ > kRepeats ? Phase::failed : Phase::returning, time);
  wayBack_ = WayBack::lookStraight;
  return missed;
}

std::optional<TaskEvent> ChallengeJudge::judge(TimePoint time, const HeadLook& head) {
  const double value = valueOf(task(), head);
  greatest_ = std::max(greatest_, value);
  const bool isElsewhere = doesAnother(head);
  looksDone_ = value >= limitOf(task()) && !isElsewhere ? looksDone_ + 1 : 0;
  looksElsewhere_ = isElsewhere ? looksElsewhere_ + 1 : 0;
  if (looksDone_ >= kAgreeingLooks) {
    const TaskEvent done = event(task(), Step::done);
    ++index_;
    enter(Phase::returning, time);
    wayBack_ = WayBack::none;
    watchWayBack(head);
    return done;
  }
  if (looksElsewhere_ < kAgreeingLooks) return {};
  const auto missed = miss(time);
  watchWayBack(head);
  return missed;
}

void ChallengeJudge::watchWayBack(const HeadLook& head) {
  if (isAtRest(head)) return;
  const double nearer = valueOf(LivenessTask::comeNearer, head);
  const bool isNear =
      shareOfLimit(LivenessTask::comeNearer, nearer, limits_.nearerShare) >= kRestShare;
  wayBack_ = isNear ? WayBack::moveAway : WayBack::lookStraight;
}

std::optional<TaskEvent> ChallengeJudge::comeBack(TimePoint time, const HeadLook& head) {
  watchWayBack(head);
  looksAtRest_ = isAtRest(head) ? looksAtRest_ + 1 : 0;
  if (looksAtRest_ <= kAgreeingLooks) return {};
  const bool isLast = index_ == tasks_.size();
  enter(isLast ? Phase::done : Phase::asking, time);
  if (isLast) return {};
  return event(task(), Step::asked);
}

std::optional<TaskEvent> ChallengeJudge::look(TimePoint time, const std::optional<HeadLook>& head) {
  const bool isUnderWay = phase_ == Phase::asking || phase_ == Phase::returning;
  if (head) countBlinks(time, *head);
  if (isUnderWay && time - since_ > limits_.taskTime) return miss(time);
  if (!head) return {};
  if (phase_ == Phase::watching) return learn(time, *head);
  if (phase_ == Phase::asking) return judge(time, *head);
  if (phase_ == Phase::returning) return comeBack(time, *head);
  return {};
}

std::optional<TaskEvent> ChallengeJudge::interrupt(TimePoint time) {
  if (phase_ == Phase::watching) first_.clear();
  const bool isUnderWay = phase_ == Phase::asking || phase_ == Phase::returning;
  if (!isUnderWay) return {};
  return miss(time);
}

}  // namespace corvana::engine
