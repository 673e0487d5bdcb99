#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "corvana/HostFactories.h"
#include "corvana/StateNames.h"
#include "devices/scripted/HostContractValidator.h"
#include "devices/scripted/ScriptedMedia.h"

namespace corvana::devices {

/// Hears what a script says was spoken. Results and errors come on the main queue and only between
/// start and stop. Alone, without a scripted recorder, its sound may come on any thread.
class ScriptedSpeechRecognizer final
    : public corvana::SpeechRecognizer,
      public std::enable_shared_from_this<ScriptedSpeechRecognizer> {
 public:
  explicit ScriptedSpeechRecognizer(platform::RunLoop& loop) : loop_(loop) {}

  bool available = true;

  bool isRunning() const { return running_; }
  int starts() const { return starts_; }
  int stops() const { return stops_; }
  int buffers() const { return buffers_; }
  /// Reports `transcript`, split into words at spaces, as the best guess at everything said since
  /// the start.
  void hear(const std::string& transcript);
  void fail(const std::string& message);

  bool isAvailable() const override { return available; }
  void setDelegate(std::weak_ptr<corvana::SpeechRecognizerDelegate> delegate) override;
  void start() override;
  void stop() override;
  void append(const platform::CMSampleBufferRef& sampleBuffer) override;

 private:
  friend class ScriptedRecorder;
  void post(const char* name, std::function<void(corvana::SpeechRecognizerDelegate&)> call);

  platform::RunLoop& loop_;
  std::weak_ptr<corvana::SpeechRecognizerDelegate> delegate_;
  std::vector<std::string>* audioLog_ = nullptr;
  std::function<void(const char* name)> onEvent_;
  bool running_ = false;
  int starts_ = 0;
  int stops_ = 0;
  std::atomic<int> buffers_ = 0;
  int run_ = 0;
};

/// What a recorder was made with and how it shall behave.
struct RecorderSetup {
  platform::CGRect selfieOverlayFrame;
  platform::CGRect idOverlayFrame;
  std::optional<platform::WriterSettings> videoSettings;
  std::optional<platform::WriterSettings> audioSettings;
  bool hasSpeechRecognizer = true;
  bool speechAvailable = true;
  /// How the film ends; closing it takes `stopLatency`.
  tl::expected<corvana::FileURL, corvana::IDError> film = corvana::FileURL("film.mp4");
  platform::Duration stopLatency{};
  /// How often the end of a film is told; a host that keeps its word tells it once.
  int stopAnswers = 1;
};

/// A recorder that reports what a script says, from a queue of its own, and notes every call made
/// on it. It keeps the host's promises for what it does by itself: modes, the film's end, retry.
class ScriptedRecorder final : public corvana::VideoCapture,
                               public std::enable_shared_from_this<ScriptedRecorder> {
 public:
  ScriptedRecorder(platform::RunLoop& loop, RecorderSetup setup);
  ~ScriptedRecorder() override;

  RecorderSetup setup;

  /// Reports a state to the delegate.
  void report(corvana::SelfieCaptureState state);
  void report(corvana::IDCaptureState state);
  /// Reports a live face in the present mode, in the middle of the picture unless `frame` says
  /// where.
  void reportLiveFace(const platform::CGRect& frame = {400, 200, 200, 300},
                      const platform::CGSize& fullSize = {1000, 1000});
  /// Sets the mode `liveFaceLost` and reports an absent face.
  void reportLiveFaceLost();
  /// Reports a live face, or its loss, exactly as given, without touching the mode.
  void reportLiveFace(const std::optional<platform::CGRect>& frame,
                      const platform::CGSize& fullSize, corvana::VideoCaptureMode mode);

  /// The calls made on it: "setMode idCapture", "stopVideoWriter", "retry", "typeMismatch".
  const std::vector<std::string>& calls() const { return calls_; }
  int count(const std::string& call) const;
  /// Where microphone buffers went: "write" to the film, "append" to the recogniser.
  const std::vector<std::string>& audioCalls() const { return audioCalls_; }
  int framesReceived() const { return framesReceived_; }
  bool hasDelegate() const { return !delegate_.expired(); }
  /// Hears everything that passes between it and the module; may be empty.
  std::function<void(const HostEvent&)> onEvent;

  ScriptedSpeechRecognizer* speechRecognizer() override { return speech_.get(); }
  void setDelegate(std::weak_ptr<corvana::VideoCaptureDelegate> delegate) override;
  corvana::VideoWriter& videoWriter() override { return writer_; }
  corvana::VideoCaptureMode mode() const override { return mode_; }
  void setMode(corvana::VideoCaptureMode mode) override;
  void stopVideoWriter(StopCompletion completion) override;
  void retry() override;
  void typeMismatch() override;
  void capturedVideo(const platform::CMSampleBufferRef& sampleBuffer) override;

 private:
  class Writer final : public corvana::VideoWriter {
   public:
    explicit Writer(std::vector<std::string>& log) : log_(log) {}
    void writeAudio(const platform::CMSampleBufferRef&) override { log_.emplace_back("write"); }

   private:
    std::vector<std::string>& log_;
  };

  void note(HostEvent::Kind kind, const std::string& name);
  void post(HostEvent::Kind kind, const char* name,
            std::function<void(corvana::VideoCaptureDelegate&)> call);

  platform::RunLoop& loop_;
  std::shared_ptr<platform::DispatchQueue> captureQueue_;
  std::weak_ptr<corvana::VideoCaptureDelegate> delegate_;
  std::vector<std::string> calls_;
  std::vector<std::string> audioCalls_;
  std::shared_ptr<ScriptedSpeechRecognizer> speech_;
  Writer writer_{audioCalls_};
  corvana::VideoCaptureMode mode_ = corvana::VideoCaptureMode::selfieCapture;
  int framesReceived_ = 0;
};

/// A host whose recorder follows a script; for tests, the simulation, and users who try their own
/// screens. Main queue, virtual time.
class ScriptedHost final : public corvana::HostFactories {
 public:
  ScriptedHost(platform::RunLoop& loop, platform::MediaDevices& devices)
      : loop_(loop), devices_(devices) {}

  bool makesRecorder = true;
  /// What recorders are like that are made from now on; frames and settings come from the caller.
  RecorderSetup setup;
  std::function<void(ScriptedRecorder&)> onRecorder;  ///< may be empty

  /// The recorder that was made last; null before.
  const std::shared_ptr<ScriptedRecorder>& recorder() const { return recorder_; }
  int recordersMade() const { return recordersMade_; }
  const std::shared_ptr<corvana::CaptureSession>& captureSession() const { return session_; }
  const std::vector<corvana::CameraPosition>& positions() const { return positions_; }

  std::shared_ptr<corvana::CaptureSession> makeCaptureSession(
      corvana::CameraPosition position) override;
  std::shared_ptr<corvana::VideoCapture> makeVideoCapture(
      const platform::CGRect& selfieOverlayFrame, const platform::CGRect& idOverlayFrame,
      const std::optional<platform::WriterSettings>& videoSettings,
      const std::optional<platform::WriterSettings>& audioSettings) override;

 private:
  platform::RunLoop& loop_;
  platform::MediaDevices& devices_;
  std::shared_ptr<ScriptedRecorder> recorder_;
  std::shared_ptr<corvana::CaptureSession> session_;
  std::vector<corvana::CameraPosition> positions_;
  int recordersMade_ = 0;
};

}  // namespace corvana::devices
