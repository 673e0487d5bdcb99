#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "corvana/HostFactories.h"
#include "corvana/VideoCapture.h"
#include "engine/recorder/DocumentPhase.h"
#include "engine/recorder/Film.h"
#include "engine/recorder/FrameAnalyzer.h"
#include "engine/recorder/LivenessEvents.h"
#include "engine/recorder/PersonWatch.h"
#include "engine/recorder/RecorderObserver.h"
#include "engine/recorder/SelfiePhase.h"
#include "engine/recorder/SoundTap.h"
#include "engine/selfie/LipsWatch.h"
#include "platform/foundation/NotificationCenter.h"
#include "platform/foundation/RandomSource.h"

namespace corvana::engine {

/// The reference host's recorder. Frames come on the capture queue: each goes to the film, ten a
/// second are analysed on a queue of their own. What was seen is judged on the main queue, which
/// alone holds the state of the flow.
class Recorder final : public corvana::VideoCapture, public std::enable_shared_from_this<Recorder> {
 public:
  struct Setup {
    platform::RunLoop& loop;
    platform::NotificationCenter& notificationCenter;
    platform::RandomSource& randomness;  ///< draws the tasks of the active mode
    std::shared_ptr<FrameAnalyzer> analyzer;
    /// Null when the host has none.
    std::shared_ptr<corvana::SpeechRecognizer> speechRecognizer;
    std::shared_ptr<Film> film;
    std::weak_ptr<corvana::CaptureSession> captureSession;
    platform::CGRect selfieOverlayFrame;
    platform::CGRect idOverlayFrame;
    platform::CGSize screenSize;
    RecorderObserver* observer = nullptr;
    /// A voice while the lips rest is a lost face, not only a sign.
    bool refusesVoiceWithoutLips = false;
  };

  static std::shared_ptr<Recorder> make(Setup setup);
  ~Recorder() override;

  void setDelegate(std::weak_ptr<corvana::VideoCaptureDelegate> delegate) override;
  corvana::SpeechRecognizer* speechRecognizer() override { return setup_.speechRecognizer.get(); }
  corvana::VideoWriter& videoWriter() override { return sound_; }
  corvana::VideoCaptureMode mode() const override { return mode_; }
  void setMode(corvana::VideoCaptureMode mode) override;
  void stopVideoWriter(StopCompletion completion) override;
  void retry() override;
  void typeMismatch() override;
  void capturedVideo(const platform::CMSampleBufferRef& sampleBuffer) override;

  /// Least time between two looks, ten a second at 30 frames a second: a little less than three
  /// frames, so that a frame that comes a hair early is not passed over.
  static constexpr platform::Duration kAnalysisInterval = std::chrono::milliseconds(90);
  /// Least time between two looks while the film is behind: it comes first, but a person who is not
  /// looked at at all is never recognised.
  static constexpr platform::Duration kAnalysisIntervalBehind = std::chrono::milliseconds(500);
  /// Pictures in front of the encoder, a second of them, above which the film is behind, until no
  /// more than a tenth is left. In virtual time no film lets so many wait.
  static constexpr int kMostFramesWaiting = 30;
  static constexpr int kFramesWaitingWhenDrained = 3;
  /// How long after its frame an observation arrives in virtual time: about as late as on the wall
  /// clock of the machines that this was built on.
  static constexpr platform::Duration kVirtualLatency = std::chrono::milliseconds(60);
  /// How long nothing may succeed after a retry, since the screen's delayed steps outlive it by as
  /// much.
  static constexpr platform::Duration kQuietAfterRetry = std::chrono::seconds(2);
  /// How long no face may be lost after the reading began: the screen starts its countdown when the
  /// text has faded in, whatever happens before.
  static constexpr platform::Duration kQuietBeforeReading = std::chrono::milliseconds(500);
  /// How often a time-out or failure is said, since the screen hears none while a card is turned
  /// over.
  static constexpr platform::Duration kTimeOutRepetition = std::chrono::seconds(1);

 private:
  static constexpr const char* kNoHint = "none";

  explicit Recorder(Setup setup) : setup_(std::move(setup)), sound_(setup_.film) {}

  bool filmIsBehind();
  std::optional<AnalysisTask> taskFor(const platform::CMSampleBuffer& sample);
  void publishTask();
  void enter(corvana::VideoCaptureMode mode);
  void startTimeOut();
  void drawTasks();
  void timedOut();
  void giveUp();
  void reportEnd();
  void pause();

  void observe(const Observation& observation);
  void judgeSelfie(const SelfieView& view);
  void watchLiveFace(const Observation& observation);
  void watchPerson(const Observation& observation);
  void watchLips(const Observation& observation);
  void noteLips();
  void loseFace(const Observation& observation, const std::string& cause);
  bool mayReport(const corvana::IDCaptureState& state) const;
  void report(const corvana::SelfieCaptureState& state);
  void report(const corvana::IDCaptureState& state);
  bool isFadingIn() const;
  std::optional<FaceFlawFound> faceFlaw(const Observation& observation) const;
  RecorderEvent hintFor(const Observation& observation) const;
  void tell(const RecorderEvent& hint);
  void postDebugData(const Observation& observation);
  void note(const RecorderEvent& event);

  Setup setup_;
  SoundTap sound_;

  // Main queue.
  std::weak_ptr<corvana::VideoCaptureDelegate> delegate_;
  corvana::VideoCaptureMode mode_ = corvana::VideoCaptureMode::selfieCapture;
  platform::TimePoint modeStart_{};
  int run_ = 0;
  bool active_ = false;  ///< false from an end of a run to `retry()`: nothing is reported
  bool liveFaceInSight_ = false;
  SelfiePhase selfie_;
  LivenessEvents liveness_;
  PersonWatch person_;
  LipsWatch lips_;
  bool lipsNoted_ = false;           ///< that a voice was heard while they rest
  platform::UIImageRef selfieFace_;  ///< of the selfie that succeeded last
  DocumentPhase document_;
  std::string told_ = kNoHint;  ///< the hint that stands
  std::shared_ptr<platform::Timer> timeOut_;

  // Capture queue.
  std::optional<platform::TimePoint> lastAnalysis_;
  bool yielding_ = false;  ///< looks are rare until the film has caught up

  std::shared_ptr<platform::DispatchQueue> analysisQueue_;
  std::atomic<bool> analyzing_ = false;
  std::mutex taskMutex_;
  std::optional<AnalysisTask> task_;  ///< guarded by taskMutex_; absent while nothing is reported
};

}  // namespace corvana::engine
