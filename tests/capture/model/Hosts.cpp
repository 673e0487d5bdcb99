#include "Hosts.h"

#include <utility>

namespace corvana::tests {

using ID = corvana::IDCaptureState;
using Face = corvana::SelfieCaptureState;

Step wildStep(Dice& dice, const Beginning& beginning) {
  const auto end = [&]() -> Step {
    if (dice.chance(40)) return loseLiveFace();
    static const std::vector<Face> kFaces = {{Face::TimedOut{}}, {Face::Failed{}}};
    static const std::vector<ID> kCards = {{ID::TimedOut{}}, {ID::Failed{}}};
    return dice.chance(50) ? say(dice.pick(kFaces)) : say(dice.pick(kCards));
  };
  const bool back = dice.chance(50);
  const std::pair<int, std::function<Step()>> choices[] = {
      {30, [&] { return waitAnyTime(dice); }},
      {6, [&] { return adviseFace(dice); }},
      {10, [&] { return succeedWithSelfie(dice, 60); }},
      {5, [&] { return say(ID{ID::DetectingBox{}}); }},
      {5, [&] { return findBox(dice); }},
      {5, [&] { return adviseCard(dice); }},
      {12, [&] { return classifyCard(dice, beginning, back, false); }},
      {16, [&] { return succeedWithCard(dice, beginning, back, false); }},
      {3, [&] { return showLiveFace(dice); }},
      {3, [&] { return end(); }},
      {8, [&] { return speak(dice, beginning); }},
      {12, [&] { return touchAnything(dice); }},
      {3, [&] { return changeCaptureMode(dice); }},
      {2, [&] { return chooseFilmsEnd(dice); }},
      {1, [&] { return letFilmAnswerTwice(); }},
  };
  int total = 0;
  for (const auto& choice : choices)
    total += choice.first;
  int roll = dice.roll(total);
  for (const auto& [weight, make] : choices) {
    if (roll >= weight) {
      roll -= weight;
      continue;
    }
    Step step = make();
    step.settles = step.seconds > 0 || dice.chance(85);
    return step;
  }
  return wait(1);
}

CarefulHost::CarefulHost(const Beginning& beginning, TestWorld& world)
    : beginning_(beginning), world_(world), promises_({}, world.loop.now()) {
  world.host.onRecorder = [this](auto& recorder) {
    recorder.onEvent = [this](const auto& event) { hear(event); };
  };
}

void CarefulHost::hear(const devices::HostEvent& event) {
  promises_.observe(event);
  using Kind = devices::HostEvent::Kind;
  if (event.kind == Kind::mode) {
    mode_ = event.name;
    modeStart_ = event.time;
    cardStage_ = 0;
    soundsBeforeCard_ = world_.sounds.played.size();
  }
  if (event.kind != Kind::call) return;
  if (event.name == "stopVideoWriter") {
    paused_ = true;
    unanswered_.reset();
  }
  if (event.name == "retry") {
    paused_ = false;
    retried_ = event.time;
  }
}

double CarefulHost::since(platform::TimePoint time) const {
  return platform::inSeconds(world_.loop.now() - time);
}

Step CarefulHost::next(Dice& dice) {
  // Whoever presents the screen lets go of its recorder.
  const bool listenedTo = world_.host.recorder() && world_.recorder().hasDelegate();
  if (!listenedTo) return dice.chance(50) ? waitAnyTime(dice) : touchAnything(dice);
  if (unanswered_) {
    Step repeated = *unanswered_;
    repeated.seconds = 1;
    return repeated;
  }
  if (!paused_ && dice.chance(60)) {
    if (auto step = report(dice)) return *step;
  }
  const int roll = dice.roll(100);
  if (roll < 50) return waitAnyTime(dice);
  if (roll < 65) return speak(dice, beginning_);
  if (roll < 90) return touchAnything(dice);
  if (roll < 97) return changeCaptureMode(dice);
  return chooseFilmsEnd(dice);
}

std::optional<Step> CarefulHost::report(Dice& dice) {
  if (dice.chance(4)) return reportEnd(dice);
  if (dice.chance(10)) return showLiveFace(dice);
  if (mode_ == "selfieCapture") return reportFace(dice);
  if (mode_ == "idCapture") return reportCard(dice);
  return {};
}

Step CarefulHost::reportFace(Dice& dice) {
  const bool due = since(lastSuccess_) >= 0.5 && (!retried_ || since(*retried_) >= 2);
  if (!due || dice.chance(30)) return adviseFace(dice);
  lastSuccess_ = world_.loop.now();
  return succeedWithSelfie(dice, 70);
}

Step CarefulHost::reportCard(Dice& dice) {
  if (dice.chance(10)) return adviseCard(dice);
  const bool wantsBack = world_.sounds.played.size() > soundsBeforeCard_;
  const bool showBack = dice.chance(90) ? wantsBack : !wantsBack;
  if (cardStage_ == 0 || dice.chance(8)) {
    cardStage_ = 1;
    return say(ID{ID::DetectingBox{}});
  }
  if (cardStage_ == 1) {
    cardStage_ = 2;
    return findBox(dice);
  }
  if (cardStage_ == 3 && since(lastSuccess_) >= 0.5) {
    cardStage_ = 2;
    lastSuccess_ = world_.loop.now();
    return succeedWithCard(dice, beginning_, showBack, true);
  }
  cardStage_ = 3;
  return classifyCard(dice, beginning_, showBack, true);
}

std::optional<Step> CarefulHost::reportEnd(Dice& dice) {
  Step step;
  if (mode_ != "selfieCapture" && dice.chance(50)) {
    if (mode_ == "readingText" && since(modeStart_) < 0.5) return {};
    step = loseLiveFace();
  } else if (mode_ == "selfieCapture") {
    step = unanswered_.emplace(say(Face{Face::TimedOut{}}));
  } else if (mode_ == "idCapture") {
    step = unanswered_.emplace(say(ID{ID::TimedOut{}}));
  } else {
    return {};
  }
  paused_ = true;
  return step;
}

}  // namespace corvana::tests
