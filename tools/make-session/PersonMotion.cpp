#include "PersonMotion.h"

#include <algorithm>
#include <cmath>

#include "Angles.h"
#include "Ease.h"
#include "Picture.h"

namespace corvana::session {
namespace {

constexpr double kBlinkClosing = 0.09;
constexpr double kBlinkHeld = 0.08;
constexpr double kBlinkOpening = 0.17;
constexpr double kBlink = kBlinkClosing + kBlinkHeld + kBlinkOpening;
constexpr double kBreathsPerSecond = 0.27;
constexpr double kLeaving = 0.9;  ///< seconds from in view to out of view

// What a person does who is asked for it.
constexpr double kTaskTurn = 17.0;    ///< degrees
constexpr double kTaskLift = 15.0;    ///< degrees
constexpr double kTaskNearer = 0.28;  ///< share by which all is seen larger
constexpr double kTaskRise = 0.35;    ///< seconds from rest to there
/// Nobody does a thing twice alike: between these shares of what stands above.
constexpr double kLeastOfTask = 0.8;
constexpr double kMostOfTask = 1.25;
constexpr double kSecondBlink = 0.55;  ///< seconds after the first

}  // namespace

PersonMotion::PersonMotion(const Script& script, double length, Random& random)
    : time_(script.time),
      person_(script.person),
      leavesAt_(script.faults.faceLeavesAt),
      leavesSeconds_(script.faults.faceLeavesSeconds),
      turnDegrees_(random.uniform(8.0, 10.0)),
      yaw_(random, 0.13 * person_.quickness),
      pitch_(random, 0.11 * person_.quickness),
      roll_(random, 0.09 * person_.quickness),
      swayX_(random, 0.12 * person_.quickness),
      swayY_(random, 0.10 * person_.quickness),
      handX_(random, 0.35 * person_.quickness),
      handY_(random, 0.40 * person_.quickness) {
  const double often = person_.blinkEvery / PersonScript().blinkEvery;
  // The blinks have numbers of their own: what comes after them is the same in a longer film.
  Random ofBlinks = random;
  double next = ofBlinks.uniform(0.9, 1.4);
  while (next < length) {
    if (next >= person_.noBlinkBefore) blinks_.push_back(next);
    next += often * ofBlinks.uniform(2.2, 4.6);
  }
  for (const TaskScript& task : person_.tasks) {
    performances_.push_back({random.uniform(kLeastOfTask, kMostOfTask),
                             kTaskRise * random.uniform(kLeastOfTask, kMostOfTask)});
    if (task.what != "blinkTwice") continue;
    dropBlinksBeside(task.at);
    blinks_.insert(blinks_.end(), {task.at, task.at + kSecondBlink});
  }
  std::ranges::sort(blinks_);
}

/// Lids that are closed on purpose do not close by themselves meanwhile.
void PersonMotion::dropBlinksBeside(double pair) {
  std::erase_if(blinks_, [pair](double blink) {
    return blink > pair - kBlink && blink < pair + kSecondBlink + kBlink;
  });
}

double PersonMotion::lids(double seconds) const {
  const auto blink = std::upper_bound(blinks_.begin(), blinks_.end(), seconds);
  if (blink == blinks_.begin()) return 0.0;
  const double since = seconds - *(blink - 1);
  return ease(since, 0.0, kBlinkClosing) - ease(since, kBlinkClosing + kBlinkHeld, kBlink);
}

double PersonMotion::away(double seconds) const {
  if (!leavesAt_) return 0.0;
  const double distance = kPictureWidth - person_.x + 0.8 * person_.faceWidth + 30.0;
  return distance *
         pulse(seconds, *leavesAt_, *leavesAt_ + leavesSeconds_ + 2.0 * kLeaving, kLeaving);
}

void PersonMotion::doTasks(double seconds, PersonPose& pose) const {
  for (std::size_t i = 0; i < person_.tasks.size(); ++i) {
    const TaskScript& task = person_.tasks[i];
    const auto& [strength, rise] = performances_[i];
    const double share = strength * pulse(seconds, task.at, task.at + task.seconds, rise);
    if (task.what == "turnLeft") pose.yaw += kTaskTurn * share;
    if (task.what == "turnRight") pose.yaw -= kTaskTurn * share;
    if (task.what == "lookUp") pose.pitch -= kTaskLift * share;
    if (task.what == "comeNearer") pose.nearness += kTaskNearer * share;
  }
}

PersonPose PersonMotion::at(double seconds, double mouth) const {
  const double unrest = person_.headMotion;
  const double selfie = time_.frontAt;
  const double right = pulse(seconds, 0.24 * selfie, 0.52 * selfie, 0.12 * selfie);
  const double left = pulse(seconds, 0.50 * selfie, 0.80 * selfie, 0.12 * selfie);
  const double atCard = pulse(seconds, time_.frontAt + 0.2, time_.frontAt + 2.0, 0.6) +
                        pulse(seconds, time_.flipAt, time_.flipAt + time_.flipSeconds, 0.6);
  PersonPose pose;
  pose.yaw = unrest * (person_.turn * turnDegrees_ * (right - left) + 2.2 * yaw_.at(seconds));
  pose.pitch = unrest * (1.8 * pitch_.at(seconds) + 3.0 * atCard + 0.8 * mouth);
  pose.roll = unrest * 1.6 * roll_.at(seconds);
  pose.swayX = unrest * 0.030 * swayX_.at(seconds);
  pose.swayY = unrest * 0.020 * swayY_.at(seconds);
  pose.breath = std::sin(kFullTurn * kBreathsPerSecond * seconds);
  pose.lids = lids(seconds);
  pose.mouth = mouth;
  doTasks(seconds, pose);
  pose.cameraX = unrest * 5.0 * handX_.at(seconds) + away(seconds);
  pose.cameraY = unrest * 4.0 * handY_.at(seconds);
  return pose;
}

}  // namespace corvana::session
