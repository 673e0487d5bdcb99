#include "app/simulate/Simulation.h"

#include <utility>

#include "capture/ControllerFactories.h"
#include "devices/screen/ViewSearch.h"
#include "platform/foundation/Fault.h"
#include "platform/uikit/Controls.h"

namespace corvana::app {
namespace {

using devices::HostEvent;

std::string describe(const corvana::Decision& decision) {
  std::string line = "decision " + decision.name;
  if (decision.value) line += " " + fixedDecimals(*decision.value, 2);
  if (decision.threshold) line += " (threshold " + fixedDecimals(*decision.threshold, 2) + ")";
  return line + (decision.passed ? " passed" : " not passed");
}

std::string describe(const capture::VideoIdResult& result) {
  std::string line = "caller result " + result.videoURL.string();
  if (result.selfie.faceImage) line += " selfie";
  if (result.idToSelfieMatch) line += " idToSelfieMatch";
  if (result.idToIdPhotoMatch) line += " idToIdPhotoMatch";
  if (result.idFrontDataMatch) line += " idFrontDataMatch";
  if (result.idBackDataMatch) line += " idBackDataMatch";
  return line;
}

const char* nameOf(corvana::CaptureMode mode) {
  static constexpr const char* kNames[] = {"standard", "high", "barcode"};
  return kNames[static_cast<std::size_t>(mode)];
}

}  // namespace

Simulation::Simulation(SimulateScript script, const std::filesystem::path& resources,
                       std::ostream& out, const ScreenMaker& makeScreen)
    : script_(std::move(script)),
      out_(out),
      screen_(makeScreen(loop_)),
      application_(makeApplication()),
      sounds_([this](platform::SystemSoundID sound) { print("sound " + std::to_string(sound)); }),
      watch_(
          loop_, [this](const std::string& line) { print(line); }, gauges()),
      world_(loop_, *screen_, resources, capture::controllerFactories(host_, this),
             {console_, application_, mediaDevices_, speechAuthorization_, sounds_, randomness_,
              &watch_}) {
  world_.hub().add(watch_);
  console_.onPrint = [this](std::string_view line) { print("console " + std::string(line)); };
}

Simulation::~Simulation() {
  world_.close();
  // What waits on the loop may own controllers, which need this world to the end.
  loop_.shutDown();
}

devices::NoSettingsApplication Simulation::makeApplication() {
  if (!script_.settingsURL) return {};
  return {*script_.settingsURL, [this](const std::string& url) { print("settings " + url); }};
}

std::vector<SimulateWatch::Gauge> Simulation::gauges() {
  return {{"microphone",
           [this] {
             const auto& microphone = mediaDevices_.microphone;
             return microphone && microphone->isRunning() ? "on" : "off";
           }},
          {"camera", [this] {
             const auto& session = host_.captureSession();
             return nameOf(session ? session->captureMode() : corvana::CaptureMode::standard);
           }}};
}

void Simulation::print(const std::string& line) {
  if (isOver_) return;
  std::string time = fixedDecimals(platform::inSeconds(loop_.now().time_since_epoch()), 3);
  time.insert(0, time.size() < 8 ? 8 - time.size() : 0, ' ');
  out_ << time << "  " << line << '\n';
}

void Simulation::decided(const corvana::Decision& decision) {
  print(describe(decision));
}

void Simulation::watchHost() {
  host_.makesRecorder = script_.makesRecorder;
  host_.setup.hasSpeechRecognizer = script_.hasSpeechRecognizer;
  if (!script_.hasMicrophone) mediaDevices_.microphone = nullptr;
  const auto& permissions = script_.permissions;
  if (permissions.microphone) mediaDevices_.microphoneStatus = *permissions.microphone;
  if (permissions.speech) speechAuthorization_.status = *permissions.speech;
  host_.onRecorder = [this](devices::ScriptedRecorder& recorder) {
    print("recorder made");
    validator_.emplace(devices::HostContract{}, loop_.now());
    recorder.onEvent = [this](const HostEvent& event) { hear(event); };
  };
}

void Simulation::hear(const HostEvent& event) {
  if (event.kind == HostEvent::Kind::mode) print("recorder mode " + event.name);
  if (event.kind == HostEvent::Kind::call) print("recorder " + event.name);
  const bool runs = event.name == "start" || event.name == "stop";
  if (event.kind == HostEvent::Kind::speech && runs) print("recogniser " + event.name);
  validator_->observe(event);
  printContractBreaches();
}

void Simulation::printContractBreaches() {
  const auto& breaches = validator_->breaches();
  for (; breachesPrinted_ < breaches.size(); ++breachesPrinted_)
    print("the script breaks the host's contract. " + breaches[breachesPrinted_]);
}

void Simulation::start() {
  const auto started = world_.start({script_.front, script_.back, script_.text},
                                    [this](const Outcome& outcome) { finish(outcome); });
  if (!started) fault_ = started.error();
}

void Simulation::finish(const Outcome& outcome) {
  if (outcome) {
    print(describe(*outcome));
  } else {
    print("caller error " + outcome.error().localizedDescription());
  }
  end_.set(outcome);
}

/// What each kind of step does to the world.
struct Simulation::Actor {
  Simulation& world;
  const SimulateStep& step;

  devices::ScriptedRecorder* recorder() const {
    const auto& made = world.host_.recorder();
    if (!made)
      world.fault_ = platform::Fault{step.where + " comes while there is no recorder yet."};
    return made.get();
  }
  devices::ScriptedSpeechRecognizer* speech() const {
    auto* made = recorder();
    if (made && !made->speechRecognizer())
      world.fault_ = platform::Fault{step.where + " has nobody to hear it."};
    return made ? made->speechRecognizer() : nullptr;
  }

  void operator()(const steps::Selfie& selfie) const {
    if (auto* r = recorder()) r->report(selfie.state);
  }
  void operator()(const steps::Card& card) const {
    if (auto* r = recorder()) r->report(card.state);
  }
  void operator()(const steps::LiveFace& face) const {
    auto* r = recorder();
    if (r && face.found) r->reportLiveFace();
    if (r && !face.found) r->reportLiveFaceLost();
  }
  void operator()(const steps::Speech& spoken) const {
    auto* s = speech();
    if (s && spoken.heard) s->hear(*spoken.heard);
    if (s && spoken.error) s->fail(*spoken.error);
  }
  void operator()(const steps::Tap& touch) const { world.tap(touch.button); }
  void operator()(const steps::Permission& permission) const {
    if (permission.microphone) world.mediaDevices_.microphoneStatus = *permission.microphone;
    if (permission.speech) world.speechAuthorization_.status = *permission.speech;
  }
  void operator()(const steps::Film& film) const {
    auto* r = recorder();
    if (r && film.error) r->setup.film = tl::unexpected(corvana::IDError(*film.error));
    if (r && !film.error) r->setup.film = corvana::FileURL("film.mp4");
  }
  void operator()(const steps::Notice& notice) const {
    world.world_.notificationCenter().post(notice.notification);
  }
  void operator()(const steps::Picture& picture) const {
    if (world.onPicture) world.onPicture(*world.screen_, picture.name);
  }
};

void Simulation::tap(const std::string& name) {
  platform::UIViewController& top = world_.topmost();
  bool answered = false;
  if (auto* alert = dynamic_cast<platform::UIAlertController*>(&top)) {
    answered = name == "alert" && alert->choose(0);
  } else if (auto* button = devices::findView<platform::UIButton>(top.view(), name)) {
    answered = button->touchUpInside();
  }
  if (!answered) print("the touch is not answered");
}

void Simulation::perform(const SimulateStep& step) {
  if (end_.isThere() || fault_) return;
  print("> " + step.label);
  std::visit(Actor{*this, step}, step.action);
  watch_.lookSoon();
}

void Simulation::schedule(const SimulateStep& step) {
  loop_.mainQueue().asyncAfter(step.at, [this, &step] { perform(step); });
}

platform::Expected<std::optional<Outcome>> Simulation::run() {
  watchHost();
  for (const SimulateStep& step : script_.steps)
    schedule(step);
  start();
  const auto ended = [this] { return end_.isThere() || fault_; };
  loop_.runUntil(ended, loop_.now() + script_.until);
  isOver_ = true;
  if (fault_) return tl::unexpected(*fault_);
  if (!end_.isThere()) return std::nullopt;
  return end_.outcome();
}

}  // namespace corvana::app
