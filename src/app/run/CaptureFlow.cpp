#include "app/run/CaptureFlow.h"

#include <iostream>
#include <utility>

#include "app/keys/Sha256.h"
#include "app/run/CountedFilms.h"
#include "capture/ControllerFactories.h"
#include "devices/system/SystemRandom.h"

namespace corvana::app {
namespace {

using devices::FlowEvent;

/// A flow that has got its film may still be closing its screens when the camera's file ends.
constexpr platform::Duration kGraceAfterCamera = std::chrono::seconds(2);
/// Closing the last film waits for the encoder, not for a person.
constexpr platform::Duration kLongestClosing = std::chrono::seconds(60);

bool belongsInLog(FlowEvent::Kind kind) {
  switch (kind) {
    case FlowEvent::Kind::screen:
    case FlowEvent::Kind::caption:
    case FlowEvent::Kind::prompt:
    case FlowEvent::Kind::alert:
    case FlowEvent::Kind::retry:
    case FlowEvent::Kind::sound:
      return true;
    default:
      return false;
  }
}

/// In media time the same session has to give the same run.
std::unique_ptr<platform::RandomSource> makeRandomness(const CaptureArguments& arguments,
                                                       const platform::RunLoop& loop) {
  const bool isForeseen = arguments.challengeSeed || loop.isVirtual();
  if (!isForeseen) return std::make_unique<devices::SystemRandom>();
  return std::make_unique<platform::SeededRandom>(arguments.challengeSeed.value_or(0));
}

nlohmann::ordered_json fieldsOf(const FlowEvent& event) {
  nlohmann::ordered_json fields;
  if (event.value) {
    fields["value"] = *event.value;
  } else {
    fields["text"] = event.text;
  }
  if (!event.tone.empty()) fields["tone"] = event.tone;
  return fields;
}

}  // namespace

Remains remainsAfter(const Outcome& outcome, const CaptureArguments& arguments) {
  if (outcome) return Remains::all;
  const bool wasCanceled = outcome.error().cause() == platform::FaultCause::canceled;
  return wasCanceled ? arguments.afterCancellation : arguments.afterFailure;
}

CaptureFlow::CaptureFlow(const CaptureArguments& arguments, PreparedCapture& prepared,
                         Progress progress)
    : arguments_(arguments),
      inputs_(prepared.inputs),
      rules_(prepared.rules),
      identity_(prepared.identity),
      terms_(makeTerms()),
      loop_(*prepared.stage.loop),
      screen_(*prepared.stage.screen),
      media_(prepared.media),
      analyzer_(prepared.analyzer),
      recognizer_(prepared.recognizer),
      progress_(std::move(progress)),
      signals_([&loop = loop_] { loop.wake(); }),
      seal_(makeSeal()),
      events_(
          loop_, inputs_.folder / EventLog::kFileName,
          [this](const platform::Fault& fault) { recordFailed(fault); },
          seal_ ? seal_->events() : nullptr),
      card_(events_, rules_),
      reporter_(loop_, [this](const FlowEvent& event) { report(event); }),
      hostHints_([this](const std::string& words) {
        reporter_.hinted(words);
        screen_.hint(words);
      }),
      debugFigures_([this](const std::string& lines) { screen_.figures(lines); }),
      attempts_(loop_),
      evidence_(arguments.keepsEvidence
                    ? std::make_optional<EvidenceWatch>(inputs_.reference, inputs_.text)
                    : std::nullopt),
      observers_(observers()),
      person_(loop_, arguments.habits),
      console_(std::cerr),
      sourceDevices_(media_),
      watchedDevices_(screen_.watch(sourceDevices_)),
      mediaDevices_(watchedDevices_ ? *watchedDevices_ : sourceDevices_),
      randomness_(arguments.drawn, makeRandomness(arguments, loop_)),
      sounds_([this](platform::SystemSoundID sound) {
        reporter_.soundPlayed(sound);
        screen_.play(sound);
      }),
      world_(loop_, screen_, prepared.resources.module, capture::controllerFactories(host_, this),
             {console_, application_, mediaDevices_, speechAuthorization_, sounds_, randomness_}),
      films_(makeFilms()),
      host_(hostSetup()) {
  followedByCaller();
  world_.hub().add(reporter_);
  if (arguments.personIsVirtual) world_.hub().add(person_);
}

CaptureFlow::~CaptureFlow() = default;

void CaptureFlow::followedByCaller() {
  if (arguments_.caller.socket < 0) return;
  // Nobody would take the result.
  caller_.emplace(loop_, screen_, arguments_.caller, [this] {
    end_.cancel();
    loop_.wake();
  });
  events_.tellTo([this](const std::string& line) { caller_->tell(line); });
}

std::optional<RunSeal> CaptureFlow::makeSeal() {
  if (!inputs_.key) return std::nullopt;
  const auto now = readClock();
  return std::make_optional<RunSeal>(
      loop_, inputs_.folder, *inputs_.key,
      sessionToJson(identity_, now, inputs_.referenceSums, inputs_.documentsSum,
                    sha256Of(inputs_.text), terms_),
      [this](const platform::Fault& fault) { recordFailed(fault); });
}

std::unique_ptr<platform::AssetWriterFactory> CaptureFlow::makeFilms() {
  if (!arguments_.recordsFilms) return std::make_unique<CountedFilms>();
  auto films = std::make_unique<devices::FilmWriterFactory>(loop_);
  if (seal_) films->showTo(seal_->witnesses());
  return films;
}

std::shared_ptr<corvana::SpeechRecognizer> CaptureFlow::recognizer() {
  if (!evidence_) return recognizer_;
  return listenIn(recognizer_, [this](const auto& result) { evidence_->heard(result); });
}

/// What is told of an event is shown once it is in the log.
std::vector<engine::RecorderObserver*> CaptureFlow::observers() {
  std::vector<engine::RecorderObserver*> all{&attempts_, &card_, &events_, &hostHints_,
                                             &debugFigures_};
  if (evidence_) all.push_back(&*evidence_);
  return all;
}

engine::EngineHost::Setup CaptureFlow::hostSetup() {
  return {loop_,
          world_.notificationCenter(),
          mediaDevices_,
          *films_,
          world_.environment().randomness,
          analyzer_,
          recognizer(),
          inputs_.folder,
          arguments_.keepFailedRuns,
          screen_.size(),
          &observers_,
          [this](const platform::Fault& fault) { end_.fail(fault); },
          arguments_.refusesVoiceWithoutLips,
          arguments_.places};
}

void CaptureFlow::report(const FlowEvent& event) {
  if (belongsInLog(event.kind)) events_.add(devices::nameOf(event.kind), fieldsOf(event));
  if (progress_) progress_(loop_.now(), event);
}

void CaptureFlow::decided(const corvana::Decision& decision) {
  if (evidence_) evidence_->decided(decision);
  attempts_.decided(decision);
  events_.decided(decision);
}

void CaptureFlow::endAfterGrace(bool filmWasStopping) {
  loop_.mainQueue().asyncAfter(kGraceAfterCamera, [this, filmWasStopping] {
    const auto film = host_.film();
    const bool filmStops = film && film->isStopping();
    // The identification is over then, and its result hangs on the encoder alone.
    if (filmStops || filmWasStopping) return endAfterGrace(filmStops);
    end_.fail({"The camera's recording ended before the identification did.",
               platform::FaultCause::recordingEnded});
  });
}

void CaptureFlow::watchWorld() {
  screen_.setOnClose([this] { end_.cancel(); });
  media_->onEnd = [this] { endAfterGrace(); };
  media_->onError = [this](const platform::Fault& fault) { end_.fail(fault); };
  media_->onWarning = [this](const std::string& sentence) { warn(sentence); };
  media_->onCameraSign = [this](const devices::CameraSign& sign) { suspect(sign); };
  events_.add("devices", devicesToJson(UsedDevices::of(*media_)));
  if (media_->microphone()) return;
  warn("There is no microphone: the film will be silent and no word can be heard.");
}

void CaptureFlow::suspect(const devices::CameraSign& sign) {
  events_.add("cameraSign", cameraSignToJson(sign));
  const std::string sentence = "The camera's stream looks as if software fed it in (" + sign.name +
                               "): make sure that it is a camera.";
  warn(sentence);
  if (arguments_.source.refuseInjected) end_.fail({sentence});
}

void CaptureFlow::warn(const std::string& sentence) {
  console_.print("WARNING: " + sentence);
  events_.add("warning", {{"text", sentence}});
}

void CaptureFlow::recordFailed(const platform::Fault& fault) {
  if (end_.isThere() && end_.outcome()) console_.print("WARNING: " + fault.sentence);
  end_.fail(fault);
}

bool CaptureFlow::hasEnded() {
  if (signals_.arrived()) end_.cancel();
  if (const auto fault = analyzer_->fault()) end_.fail(*fault);
  return end_.isThere();
}

void CaptureFlow::start() {
  const auto started = world_.start({inputs_.reference.front, inputs_.reference.back, inputs_.text},
                                    [this](const Outcome& outcome) { end_.set(outcome); });
  if (!started) end_.fail(started.error());
}

void CaptureFlow::close() {
  screen_.setOnClose(nullptr);
  media_->onEnd = nullptr;
  media_->onError = nullptr;
  media_->onWarning = nullptr;
  media_->onCameraSign = nullptr;
  world_.close();
  if (const auto film = host_.film()) {
    bool closed = false;
    film->abandon([&closed] { closed = true; });
    loop_.runUntil([&closed] { return closed; }, loop_.now() + kLongestClosing);
  }
  loop_.shutDown();
}

RunRecord CaptureFlow::run() {
  const auto started = readClock();
  watchWorld();
  start();
  const auto limit = loop_.now() + platform::seconds(arguments_.maxDurationSeconds);
  if (loop_.runUntil([this] { return hasEnded(); }, limit) !=
      platform::DrivenLoop::Stop::condition) {
    end_.fail({"The identification took longer than the allowed time of " +
                   std::to_string(static_cast<long>(arguments_.maxDurationSeconds)) + " s.",
               platform::FaultCause::timeLimit});
  }
  const bool succeeded = end_.outcome().has_value();
  attempts_.finish(end_.outcome());
  events_.add("end", {{"outcome", succeeded ? "result" : "error"}});
  close();
  return makeRecord(started);
}

std::vector<DocumentHint> CaptureFlow::hints() const {
  auto hints = card_.hints();
  if (attempts_.lipsWereAtRest()) hints.push_back({kVoiceWithoutLips, std::nullopt});
  return hints;
}

std::optional<ClockReading> CaptureFlow::readClock() const {
  if (!identity_.clock) return std::nullopt;
  return identity_.clock();
}

/// The run's day is the clock's, where there is one.
nlohmann::ordered_json CaptureFlow::makeTerms() const {
  const auto now = readClock();
  const engine::CalendarDate day =
      now ? engine::CalendarDate(std::chrono::floor<std::chrono::days>(now->time)) : rules_.today;
  return termsToJson({inputs_.consent, arguments_.retainDays}, day);
}

RunRecord CaptureFlow::makeRecord(std::optional<ClockReading> started) const {
  RunRecord record{.outcome = end_.outcome(),
                   .devices = UsedDevices::of(*media_),
                   .runs = 1 + events_.retries(),
                   .date = engine::isoDate(rules_.today),
                   .hints = hints(),
                   .drawn = randomness_.drawn(),
                   .attempts = attempts_.toJson(),
                   .identity = identity_,
                   .started = started,
                   .ended = readClock(),
                   .reference = inputs_.referenceSums,
                   .documents = inputs_.documentsSum,
                   .terms = terms_,
                   .leavesHashesOnly = remainsAfter(end_.outcome(), arguments_) == Remains::hashes,
                   .text = sha256Of(inputs_.text),
                   .key = inputs_.key,
                   .places = host_.places()};
  if (evidence_) record.evidence = evidence_->evidence();
  if (const auto film = host_.film()) {
    record.recording = film->counters();
    record.films = film->fileNames();
    record.framesLeftOut = film->framesLeftOut();
  }
  record.framesCaptured = record.recording.videoFramesReceived + record.framesLeftOut +
                          media_->framesDropped() + host_.framesDropped();
  return record;
}

}  // namespace corvana::app
