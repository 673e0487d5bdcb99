#pragma once

#include <array>
#include <optional>
#include <vector>

#include "engine/selfie/BlinkWatch.h"
#include "engine/vision/FaceLandmarks.h"
#include "platform/foundation/RandomSource.h"
#include "platform/foundation/Time.h"

namespace corvana::engine {

/// What a person can be asked to do that a film cannot know beforehand. Left and right are the
/// person's own.
enum class LivenessTask { turnLeft, turnRight, lookUp, comeNearer, blinkTwice };

const char* nameOf(LivenessTask task);

/// The tasks of one run, in their order.
using Challenge = std::array<LivenessTask, 3>;

/// None follows itself; else all are equally likely.
Challenge drawChallenge(platform::RandomSource& random);

/// How a head is held in one look.
struct HeadLook {
  HeadPose pose;
  double width = 0;  ///< of the face's box, pixels
  BlinkWatch::Lids lids;
};

/// What happened to a task.
struct TaskEvent {
  enum class Step { asked, done, missed };

  LivenessTask task;
  Step step = Step::asked;
  /// How far it was done, and how far it has to be: degrees, times the usual width, or blinks.
  double value = 0;
  double limit = 0;
};

/// Has a person do the tasks of a challenge one after another, and judges whether they did: each at
/// once, nothing else in its place, and back to rest after it. One of them may be missed and is
/// asked for again. Pure; times are the caller's.
class ChallengeJudge {
 public:
  struct Limits {
    platform::Duration taskTime{};  ///< for one task, and for each way back to rest
    double turnDegrees = 0;
    double lookUpDegrees = 0;
    double nearerShare = 0;  ///< of the face's usual width
    double blinkShare = 0;   ///< as `BlinkWatch` has it
  };
  enum class Phase {
    watching,   ///< how the person holds their head is being learned
    asking,     ///< for `task`
    returning,  ///< the person is to come back to rest
    done,
    failed,
  };

  /// What a person has to do to come back to rest.
  enum class WayBack { none, lookStraight, moveAway };

  ChallengeJudge(const Challenge& tasks, const Limits& limits);

  /// Takes the next look; absent when no head is seen.
  std::optional<TaskEvent> look(platform::TimePoint time, const std::optional<HeadLook>& head);
  /// It may be another face from now on: what is under way is missed.
  std::optional<TaskEvent> interrupt(platform::TimePoint time);

  Phase phase() const { return phase_; }
  const Challenge& tasks() const { return tasks_; }
  /// What is being asked for; only while `asking`.
  LivenessTask task() const { return tasks_.at(index_); }
  /// Only while `returning`. It stays as it was when the head has come to rest, and after a task
  /// that was missed it is never none, so that people see that they are asked anew.
  WayBack wayBack() const { return wayBack_; }

  /// How often a task may be missed in a run.
  static constexpr int kRepeats = 1;
  /// Two blinks belong together within this time: by themselves they are farther apart.
  static constexpr platform::Duration kBlinkPair = std::chrono::milliseconds(1500);

 private:
  double valueOf(LivenessTask task, const HeadLook& head) const;
  double limitOf(LivenessTask task) const;
  bool isAtRest(const HeadLook& head) const;
  void watchWayBack(const HeadLook& head);
  bool doesAnother(const HeadLook& head) const;
  std::optional<TaskEvent> learn(platform::TimePoint time, const HeadLook& head);
  void countBlinks(platform::TimePoint time, const HeadLook& head);
  void enter(Phase phase, platform::TimePoint time);
  std::optional<TaskEvent> judge(platform::TimePoint time, const HeadLook& head);
  std::optional<TaskEvent> comeBack(platform::TimePoint time, const HeadLook& head);
  std::optional<TaskEvent> miss(platform::TimePoint time);
  TaskEvent event(LivenessTask task, TaskEvent::Step step) const;

  Challenge tasks_;
  Limits limits_;
  Phase phase_ = Phase::watching;
  platform::TimePoint since_{};
  std::size_t index_ = 0;  ///< of the task that is asked for, or will be next
  int missed_ = 0;
  std::vector<HeadLook> first_;
  HeadLook rest_;
  WayBack wayBack_ = WayBack::none;
  double greatest_ = 0;  ///< of the task that is asked for
  // How many looks in a row agree.
  int looksDone_ = 0;
  int looksElsewhere_ = 0;
  int looksAtRest_ = 0;
  BlinkWatch blink_;
  int blinksSeen_ = 0;
  bool askedInBlink_ = false;                ///< which is not over yet
  std::vector<platform::TimePoint> blinks_;  ///< at rest, since the task was asked for
};

}  // namespace corvana::engine
