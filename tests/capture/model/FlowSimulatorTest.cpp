#include <array>
#include <cstdlib>
#include <map>
#include <set>

#include <gtest/gtest.h>

#include "FlowModel.h"
#include "Hosts.h"
#include "capture/ControllerFactories.h"
#include "capture/Corvana+VideoCapture.h"
#include "corvana/Decision.h"

namespace corvana::tests {
namespace {

/// A world, the screen that was entered in it, and what the caller got.
struct Side {
  TestWorld world;
  std::weak_ptr<platform::UIViewController> screen;
  std::vector<std::string> results;

  void enter(const Beginning& beginning) {
    beginning.prepare(world);
    capture::videoIDCapture(*world.root, beginning.front, beginning.back, beginning.reading,
                            [this](const auto& result) {
                              results.push_back(result ? "film " + result->videoURL.string()
                                                       : result.error().localizedDescription());
                            });
    screen = world.topmost().shared_from_this();
  }
};

/// Everything but the views of the capture screen: what other screens show, what was asked of the
/// host and the machine, what the caller got.
Sight surroundings(Side& side) {
  TestWorld& world = side.world;
  const auto list = [](const std::vector<std::string>& items) {
    std::string text;
    for (const std::string& item : items)
      text += " [" + item + "]";
    return text;
  };
  Sight seen{{"screen", side.screen.expired() ? "gone" : "there"},
             {"results", list(side.results)},
             {"capture mode",
              std::to_string(static_cast<int>(world.host.captureSession()->captureMode()))},
             {"sounds", std::to_string(world.sounds.played.size())}};
  std::string& top = seen["on top"] = world.topmostScene();
  if (auto* alert = world.alert()) {
    top += "alert " + alert->title() + ": " + alert->message();
    for (const auto& [title, style, handler] : alert->actions())
      top += " [" + title + std::to_string(static_cast<int>(style)) + "]";
  }
  if (top == "VideoRetryViewController") top += ": " + world.text("label");
  if (!world.host.recorder()) return seen;
  seen["recorder"] = list(world.recorder().calls()) + " in " +
                     std::to_string(static_cast<int>(world.recorder().mode())) +
                     (world.recorder().hasDelegate() ? ", heard" : ", not heard");
  return seen;
}

std::string difference(const Sight& told, const Sight& seen) {
  std::string lines;
  for (const auto& [what, looks] : told) {
    if (const auto& shown = seen.at(what); shown != looks)
      lines += "  " + what + ": `" + looks + "` but `" + shown + "`\n";
  }
  return lines;
}

/// One flow in two worlds: the module's screen in one, the model in the other.
class TwinFlow final : private corvana::DecisionObserver {
 public:
  TwinFlow(std::uint64_t seed, bool careful)
      : dice_(seed),
        careful_(careful),
        beginning_(randomBeginning(dice_)),
        host_(beginning_, seen_.world),
        log_((careful ? "  a careful host" : "  any host") + beginning_.text + "\n") {
    const bool comparable = beginning_.text.find("no face model") == std::string::npos;
    const auto sameFace = [=](const auto& one, const auto& other) -> std::optional<bool> {
      if (!comparable || one == unreadableFace() || other == unreadableFace()) return {};
      return one == other;
    };
    seen_.world.factories = capture::controllerFactories(seen_.world.host, this);
    told_.world.factories = FlowModel::factories(told_.world.host, sameFace);
    seen_.enter(beginning_);
    told_.enter(beginning_);
  }

  /// Empty when both agree and every invariant holds after each step; else the steps so far, which
  /// no shorter run of this seed would fail, and what is wrong.
  std::string run(int steps) {
    std::string fault = faultNow();
    if (fault.empty()) fault = take({"wait 0.4", nullptr, 0.4});
    for (int i = 0; fault.empty() && i < steps; ++i) {
      fault = take(careful_ ? host_.next(dice_) : wildStep(dice_, beginning_));
      if (careful_ && fault.empty() && !host_.breaches().empty())
        fault = "  the host broke a promise: " + host_.breaches().front() + "\n";
    }
    for (int i = 0; fault.empty() && i < kTouchesToTheEnd && !seen_.screen.expired(); ++i)
      fault = take(leave(i));
    if (fault.empty() && !seen_.screen.expired()) fault = "  the screen has not gone\n";
    return fault.empty() ? fault : log_ + fault;
  }

  /// What has happened, to tell a simulation that goes nowhere.
  std::set<std::string> events;

 private:
  static constexpr int kTouchesToTheEnd = 12;

  static Step leave(int touch);
  std::string take(const Step& step);
  std::string faultNow();
  std::string brokenInvariant(const Step& step, const std::optional<Sight>& before);
  void noteEvents();
  void decided(const corvana::Decision& decision) override {
    passed_[decision.name] = decision.passed;
  }

  Dice dice_;
  bool careful_;
  Side told_;
  Side seen_;
  Beginning beginning_;
  CarefulHost host_;
  std::string log_;
  /// The last decision of each name since the run began.
  std::map<std::string, bool> passed_;
  int retries_ = 0;
  std::optional<Sight> sight_;
  Sight surroundings_;
};

/// One touch after the other closes whatever stands open; then nothing may be left.
Step TwinFlow::leave(int touch) {
  static const std::array kButtons = {"alert", "cancelButton", "closeButton"};
  Step step = tap(kButtons.at(static_cast<std::size_t>(touch) % kButtons.size()));
  step.seconds = 60;
  return step;
}

std::string TwinFlow::take(const Step& step) {
  log_ += "  " + step.text + (step.settles ? "\n" : " (and at once)\n");
  const auto before = sight_;
  for (Side* side : {&seen_, &told_}) {
    if (step.apply) step.apply(side->world);
    if (step.settles) side->world.advance(step.seconds);
  }
  if (std::string fault = faultNow(); !fault.empty()) return fault;
  noteEvents();
  return careful_ ? brokenInvariant(step, before) : "";
}

std::string TwinFlow::faultNow() {
  surroundings_ = surroundings(seen_);
  if (auto fault = difference(surroundings(told_), surroundings_); !fault.empty()) return fault;
  sight_.reset();
  const auto seen = seen_.screen.lock();
  const auto told = told_.screen.lock();
  if (!seen || !told) return "";
  sight_ = sightOf(seen->view());
  return difference(dynamic_cast<FlowModel&>(*told).sight(), *sight_);
}

void TwinFlow::noteEvents() {
  events.insert("on top: " + surroundings_["on top"]);
  for (const std::string& result : seen_.results)
    events.insert("result " + result);
  if (sight_) {
    const std::string& prompt = sight_->at("idOverlayLabel");
    events.insert("card " + prompt.substr(0, prompt.find(", rgba")));
  }
  if (!seen_.world.host.recorder()) return;
  const int retries = seen_.world.recorder().count("retry");
  if (retries > retries_) passed_.clear();
  retries_ = retries;
}

/// What a host that keeps its promises may rely on.
std::string TwinFlow::brokenInvariant(const Step& step, const std::optional<Sight>& before) {
  if (seen_.results.size() > 1) return "  the completion ran more than once\n";
  const bool flips =
      before && before->at("idOverlayLabel").starts_with(corvana::IDCapture::strings.flipToBack);
  if (flips && step.isCardState && step.seconds == 0 && sight_ && !(*sight_ == *before))
    return "  a state was handled during the flip\n";
  if (seen_.results.empty() || !seen_.results[0].starts_with("film ")) return "";
  std::vector<std::string> checks = {"selfieFace", "frontFace", "frontText", "spokenWords"};
  if (beginning_.back) checks.emplace_back(beginning_.back->mrz ? "backMrz" : "backText");
  for (const std::string& check : checks) {
    if (!passed_[check]) return "  a result without the check " + check + " in its run\n";
  }
  return "";
}

std::uint64_t numberFrom(const char* variable, std::uint64_t otherwise) {
  const char* text = std::getenv(variable);
  return text ? std::strtoull(text, nullptr, 10) : otherwise;
}

constexpr int kSteps = 70;
constexpr std::uint64_t kEnoughFlows = 1000;
/// A simulation that does not come to all of these goes nowhere.
const std::vector<std::string> kAnyThousandFlowsCome = {
    "result film film.mp4",
    "result The disk is full.",
    "result videoIdResultSelfie == nil",
    "result The video identification was canceled.",
    "on top: VideoRetryViewController: Live Face Lost. Please try again",
    "on top: VideoRetryViewController: Voice does not match text. Please try again",
    "on top: VideoRetryViewController: Your ID could not be read. Please try again",
    "on top: VideoRetryViewController: Your face could not be captured. Please try again",
    "on top: alert Error: Speech Recognition Is Not Available [OK1]",
    "on top: alert Speech Recognition Error: deaf [OK1]",
    "card Scanning the barcode",
    "card The face does not match the ID\nThis is not the same ID",
    "card This back does not belong to the front",
    "card Turn your ID over",
};

/// CORVANA_FLOWS flows from the seed CORVANA_FIRST_SEED on, half of them with a careful host.
TEST(FlowSimulator, TheScreenDoesWhatTheModelTells) {
  const std::uint64_t first = numberFrom("CORVANA_FIRST_SEED", 1);
  const std::uint64_t count = numberFrom("CORVANA_FLOWS", 1000);
  std::set<std::string> events;
  for (std::uint64_t seed = first; seed < first + count; ++seed) {
    const HostTablesGuard tables;
    TwinFlow flow(seed, seed % 2 == 0);
    const std::string fault = flow.run(kSteps);
    if (!fault.empty()) {
      FAIL() << "after these steps, which CORVANA_FIRST_SEED=" << seed
             << " CORVANA_FLOWS=1 replays:\n"
             << fault;
    }
    events.merge(flow.events);
  }
  if (count < kEnoughFlows) return;
  for (const std::string& event : kAnyThousandFlowsCome)
    EXPECT_TRUE(events.contains(event)) << "no flow came to: " << event;
}

}  // namespace
}  // namespace corvana::tests
