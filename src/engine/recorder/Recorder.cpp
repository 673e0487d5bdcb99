#include "engine/recorder/Recorder.h"

#include <any>
#include <map>
#include <utility>

#include "corvana/Notifications.h"
#include "corvana/StateNames.h"
#include "engine/recorder/StateEvents.h"

namespace corvana::engine {

using corvana::IDCapture;
using corvana::IDCaptureState;
using corvana::SelfieCapture;
using corvana::SelfieCaptureState;
using corvana::VideoCaptureMode;
using platform::CMSampleBuffer;
using platform::CMSampleBufferRef;
using Kind = RecorderEvent::Kind;
using UserInfo = std::map<std::string, std::any>;

namespace {

// What this host does not measure (masks) is left out, not filled with a number.

UserInfo debugData(const SelfieView& view, const Observation& observation) {
  UserInfo info{{"fullSize", observation.fullSize}};
  if (observation.liveFace) info["faceRect"] = *observation.liveFace;
  if (!view.measures) return info;
  info["faceLivenessScore"] = view.measures->livenessScore;
  info["leftEyeOpenProbability"] = view.measures->leftEyeOpen;
  info["rightEyeOpenProbability"] = view.measures->rightEyeOpen;
  if (view.liveness) {
    for (const LivenessSign& sign : view.liveness->signs)
      info["sign." + sign.name] = static_cast<float>(sign.value);
  }
  return info;
}

corvana::DebugData debugData(const DocumentView& view, const platform::CGSize& fullSize) {
  corvana::DebugData data;
  data.fullSize = fullSize;
  data.documentLocation = *view.location;
  data.faceLocation = view.portrait;
  data.topClassifierResults = view.familyMatches;
  if (view.reading) data.realnessScores = view.reading->realness;
  return data;
}

}  // namespace

std::shared_ptr<Recorder> Recorder::make(Setup setup) {
  std::shared_ptr<Recorder> recorder(new Recorder(std::move(setup)));
  recorder->analysisQueue_ =
      recorder->setup_.loop.makeSerialQueue("AnalysisQueue", platform::QualityOfService::utility);
  recorder->active_ = true;
  recorder->enter(VideoCaptureMode::selfieCapture);
  return recorder;
}

Recorder::~Recorder() {
  if (timeOut_) timeOut_->invalidate();
  setup_.film->abandon();
}

void Recorder::setDelegate(std::weak_ptr<corvana::VideoCaptureDelegate> delegate) {
  delegate_ = std::move(delegate);
}

void Recorder::publishTask() {
  AnalysisTask task;
  task.run = run_;
  task.mode = mode_;
  task.selfieOverlayFrame = setup_.selfieOverlayFrame;
  task.idOverlayFrame = setup_.idOverlayFrame;
  task.screenSize = setup_.screenSize;
  task.selfieFace = selfieFace_;
  const std::lock_guard lock(taskMutex_);
  task_ = active_ ? std::optional(task) : std::nullopt;
}

void Recorder::enter(VideoCaptureMode mode) {
  mode_ = mode;
  modeStart_ = setup_.loop.now();
  selfie_ = {};
  liveness_ = {};
  document_ = {};
  lips_ = {};
  lipsNoted_ = false;
  sound_.take();
  tell({Kind::hint, kNoHint, {}});
  publishTask();
  startTimeOut();
  note({Kind::mode, nameOf(mode), {}});
  drawTasks();
}

void Recorder::drawTasks() {
  const SelfieCapture::Options& limits = SelfieCapture::options;
  const bool hasTasks = mode_ == VideoCaptureMode::selfieCapture &&
                        limits.liveness == SelfieCapture::Liveness::active;
  if (!hasTasks) return;
  const Challenge tasks = drawChallenge(setup_.randomness);
  selfie_.demand(ChallengeJudge(tasks, challengeLimits(limits)));
  for (const RecorderEvent& event : eventsOf(tasks))
    note(event);
}

void Recorder::setMode(VideoCaptureMode mode) {
  if (mode != mode_) enter(mode);
}

void Recorder::startTimeOut() {
  if (timeOut_) timeOut_->invalidate();
  timeOut_.reset();
  platform::Duration limit{};
  if (mode_ == VideoCaptureMode::selfieCapture) limit = selfieTimeOut(SelfieCapture::options);
  if (mode_ == VideoCaptureMode::idCapture)
    limit = platform::seconds(IDCapture::options.timeOutSeconds);
  if (!active_ || limit <= platform::Duration::zero()) return;
  timeOut_ = setup_.loop.scheduledTimer(limit, false, [weak = weak_from_this()] {
    if (const auto self = weak.lock()) self->timedOut();
  });
}

void Recorder::timedOut() {
  if (active_) giveUp();
}

void Recorder::giveUp() {
  pause();
  timeOut_ = setup_.loop.scheduledTimer(kTimeOutRepetition, true, [weak = weak_from_this()] {
    if (const auto self = weak.lock()) self->reportEnd();
  });
  reportEnd();
}

void Recorder::reportEnd() {
  if (selfie_.hasFailed()) {
    report(SelfieCaptureState{SelfieCaptureState::Failed{selfie_.best(), {}}});
  } else if (mode_ == VideoCaptureMode::selfieCapture) {
    report(SelfieCaptureState{SelfieCaptureState::TimedOut{selfie_.best()}});
  } else {
    report(IDCaptureState{IDCaptureState::TimedOut{document_.last()}});
  }
}

void Recorder::pause() {
  active_ = false;
  tell({Kind::hint, kNoHint, {}});
  if (timeOut_) timeOut_->invalidate();
  publishTask();
}

void Recorder::stopVideoWriter(StopCompletion completion) {
  // What was known at the end of the reading counts.
  if (active_ && mode_ == VideoCaptureMode::readingText) noteLips();
  note({Kind::call, "stopVideoWriter", {}});
  // Whatever is recorded next begins with a selfie. The screen asks for the mode before `retry()`,
  // when it chooses the caption that the user will come back to.
  mode_ = VideoCaptureMode::selfieCapture;
  pause();
  setup_.film->stop(std::move(completion));
}

void Recorder::retry() {
  note({Kind::call, "retry", {}});
  ++run_;
  active_ = true;
  liveFaceInSight_ = false;
  selfieFace_ = nullptr;
  person_ = {};
  setup_.film->restart();
  enter(VideoCaptureMode::selfieCapture);
  selfie_.holdBackUntil(setup_.loop.now() + kQuietAfterRetry);
  if (setup_.speechRecognizer) setup_.speechRecognizer->start();
}

void Recorder::typeMismatch() {
  note({Kind::call, "typeMismatch", {}});
}

bool Recorder::filmIsBehind() {
  const int waiting = setup_.film->framesWaiting();
  yielding_ = waiting > (yielding_ ? kFramesWaitingWhenDrained : kMostFramesWaiting);
  return yielding_;
}

std::optional<AnalysisTask> Recorder::taskFor(const CMSampleBuffer& sample) {
  const platform::Duration interval = filmIsBehind() ? kAnalysisIntervalBehind : kAnalysisInterval;
  if (lastAnalysis_ && sample.presentationTime < *lastAnalysis_ + interval) return {};
  if (analyzing_ || !setup_.analyzer->isReady()) return {};
  std::optional<AnalysisTask> task;
  {
    const std::lock_guard lock(taskMutex_);
    task = task_;
  }
  if (!task) return {};
  if (const auto session = setup_.captureSession.lock()) task->captureMode = session->captureMode();
  lastAnalysis_ = sample.presentationTime;
  return task;
}

void Recorder::capturedVideo(const CMSampleBufferRef& sample) {
  setup_.film->writeVideo(sample);
  const auto task = taskFor(*sample);
  if (!task) return;
  const auto deliver = [weak = weak_from_this()](const Observation& observation) {
    const auto self = weak.lock();
    if (!self) return;
    self->analyzing_ = false;
    self->observe(observation);
  };
  if (setup_.loop.isVirtual()) {
    setup_.loop.mainQueue().asyncAfter(
        kVirtualLatency,
        [deliver, observation = setup_.analyzer->analyze(sample, *task)] { deliver(observation); });
    return;
  }
  analyzing_ = true;
  analysisQueue_->async([analyzer = setup_.analyzer, sample, task, deliver, &loop = setup_.loop] {
    auto observation = std::make_shared<Observation>(analyzer->analyze(sample, *task));
    loop.mainQueue().async([deliver, observation] { deliver(*observation); });
  });
}

void Recorder::observe(const Observation& observation) {
  if (!active_ || observation.task.run != run_) return;
  watchLiveFace(observation);
  if (active_) watchPerson(observation);
  if (active_) watchLips(observation);
  if (!active_ || observation.task.mode != mode_) return;
  if (corvana::VideoCapture::options.isDebugMode) postDebugData(observation);
  const auto now = setup_.loop.now();
  if (observation.selfie) judgeSelfie(*observation.selfie);
  if (observation.document) {
    for (const auto& state : document_.judge(*observation.document, now, IDCapture::options)) {
      if (mayReport(state)) report(state);
    }
  }
  if (active_) tell(hintFor(observation));
}

void Recorder::judgeSelfie(const SelfieView& view) {
  const auto states = selfie_.judge(view, setup_.loop.now());
  if (view.liveness) {
    for (const RecorderEvent& event : liveness_.take(*view.liveness, selfie_.asks()))
      note(event);
  }
  if (const auto& task = selfie_.taskEvent()) note(eventOf(*task));
  for (const auto& state : states)
    report(state);
  if (selfie_.hasFailed()) giveUp();
}

void Recorder::watchLiveFace(const Observation& observation) {
  if (observation.liveFace) {
    if (!std::exchange(liveFaceInSight_, true)) note({Kind::liveFace, "found", {}});
    if (const auto delegate = delegate_.lock())
      delegate->foundLiveFace(observation.liveFace, observation.fullSize, mode_);
    return;
  }
  // Before a selfie is accepted an empty oval is no loss: the user is only told to look into it.
  if (mode_ == VideoCaptureMode::selfieCapture) return;
  const double lostFor = platform::inSeconds(observation.liveFaceLostFor);
  if (lostFor <= corvana::VideoCapture::options.liveFaceLostSeconds) return;
  loseFace(observation, "outOfSight");
}

void Recorder::watchPerson(const Observation& observation) {
  if (mode_ == VideoCaptureMode::selfieCapture) return;
  const auto now = setup_.loop.now();
  if (const auto& check = observation.person) {
    const double threshold = SelfieCapture::options.samePersonThreshold;
    person_.take(*check, threshold, now);
    if (check->distance) {
      note(eventOf(LivenessSign{"samePerson", LivenessSign::SpeaksFor::life, *check->distance,
                                threshold, *check->distance <= threshold}));
    }
  }
  const auto verdict = person_.verdict(now);
  if (verdict == PersonWatch::Verdict::another) return loseFace(observation, "anotherPerson");
  const bool isReading = mode_ == VideoCaptureMode::readingText;
  if (isReading && verdict == PersonWatch::Verdict::unknown) loseFace(observation, "unjudged");
}

void Recorder::noteLips() {
  if (const auto sign = lips_.sign(SelfieCapture::options.livenessLipsAtRest)) note(eventOf(*sign));
}

void Recorder::watchLips(const Observation& observation) {
  if (mode_ != VideoCaptureMode::readingText) return;
  for (const auto& samples : sound_.take())
    lips_.addSound(*samples);
  if (observation.mouth) lips_.addMouth(observation.frameTime, *observation.mouth);
  const auto sign = lips_.sign(SelfieCapture::options.livenessLipsAtRest);
  const bool rest = sign && sign->isSeen;
  if (rest != std::exchange(lipsNoted_, rest)) noteLips();
  if (rest && setup_.refusesVoiceWithoutLips) loseFace(observation, "lipsAtRest");
}

/// Who showed the card must be known to be the one of the selfie.
bool Recorder::mayReport(const IDCaptureState& state) const {
  return !std::holds_alternative<IDCaptureState::Success>(state.value) ||
         person_.verdict(setup_.loop.now()) == PersonWatch::Verdict::same;
}

bool Recorder::isFadingIn() const {
  return mode_ == VideoCaptureMode::readingText &&
         setup_.loop.now() - modeStart_ < kQuietBeforeReading;
}

void Recorder::loseFace(const Observation& observation, const std::string& cause) {
  if (isFadingIn()) return;
  pause();
  mode_ = VideoCaptureMode::liveFaceLost;
  liveFaceInSight_ = false;
  const double seconds = platform::inSeconds(observation.liveFaceLostFor);
  note({Kind::liveFace, "lost", {{"seconds", seconds}, {"cause", cause}}});
  if (const auto delegate = delegate_.lock())
    delegate->foundLiveFace({}, observation.fullSize, mode_);
}

void Recorder::report(const SelfieCaptureState& state) {
  note(eventOf(state));
  if (const auto* success = std::get_if<SelfieCaptureState::Success>(&state.value)) {
    selfieFace_ = success->selfie.faceImage;
    if (setup_.observer) setup_.observer->selfieTaken(success->selfie);
  }
  if (const auto delegate = delegate_.lock()) delegate->update(state);
}

void Recorder::report(const IDCaptureState& state) {
  note(eventOf(state));
  const auto* success = std::get_if<IDCaptureState::Success>(&state.value);
  if (success && setup_.observer) setup_.observer->cardRead(success->data);
  if (const auto delegate = delegate_.lock()) delegate->update(state);
}

/// Why the face of who was seen in the selfie is not known to be there, if they should be told.
std::optional<FaceFlawFound> Recorder::faceFlaw(const Observation& observation) const {
  if (mode_ == VideoCaptureMode::selfieCapture || isFadingIn()) return {};
  const double lostFor = platform::inSeconds(observation.liveFaceLostFor);
  const double limit = corvana::VideoCapture::options.liveFaceLostSeconds;
  const bool isOutOfSight = !observation.liveFace && lostFor > limit / 2;
  if (isOutOfSight) return FaceFlawFound{FaceFlaw::outOfSight, lostFor, limit};
  return person_.flaw(setup_.loop.now());
}

RecorderEvent Recorder::hintFor(const Observation& observation) const {
  // The card is what the person is busy with.
  if (const auto& card = document_.hint()) return eventOf(*card);
  if (const auto face = faceFlaw(observation)) return eventOf(*face);
  return {Kind::hint, kNoHint, {}};
}

void Recorder::tell(const RecorderEvent& hint) {
  if (std::exchange(told_, hint.name) != hint.name) note(hint);
}

void Recorder::postDebugData(const Observation& observation) {
  const auto post = [this](const char* name, UserInfo info) {
    setup_.notificationCenter.post({name, std::make_shared<const UserInfo>(std::move(info))});
  };
  if (observation.selfie) {
    post(corvana::kSelfieCaptureDebugData, debugData(*observation.selfie, observation));
  } else if (observation.document && observation.document->location) {
    post(corvana::kIDCaptureDebugData,
         {{"debugData", debugData(*observation.document, observation.fullSize)}});
  }
}

void Recorder::note(const RecorderEvent& event) {
  if (setup_.observer) setup_.observer->happened(event);
}

}  // namespace corvana::engine
