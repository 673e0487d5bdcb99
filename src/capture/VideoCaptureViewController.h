#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "capture/AudioCaptureSession.h"
#include "capture/FaceMatchDetector.h"
#include "capture/VideoCaptureOutlets.h"
#include "capture/VideoCapturePresentableViewController.h"
#include "capture/VideoRetryViewController.h"
#include "corvana/CaptureSessionViewController.h"
#include "corvana/Decision.h"
#include "corvana/VideoCapture.h"

namespace corvana::capture {

class RecorderAudioDelegate;

/// The one screen of a video identification: it leads through face, front, back and reading, judges
/// what the recorder reports, and delivers the result. Main queue, except for the recorder's
/// reports, which may come on any thread and are handled on the main queue. Its methods are spread
/// over source files by concern.
class VideoCaptureViewController final : public corvana::CaptureSessionViewController,
                                         public VideoCapturePresentableViewController,
                                         public corvana::VideoCaptureDelegate,
                                         public corvana::SpeechRecognizerDelegate {
 public:
  static constexpr const char* kClassName = "VideoCaptureViewController";

  /// Loads the face model and reads the seconds of the countdown from the host's options.
  /// `decisions` is told what was judged and how; null when nobody keeps a record.
  VideoCaptureViewController(platform::Environment& environment, corvana::HostFactories& host,
                             corvana::DecisionObserver* decisions);
  ~VideoCaptureViewController() override;

  corvana::CameraPosition cameraPosition() const override { return corvana::CameraPosition::front; }
  platform::UIStatusBarStyle preferredStatusBarStyle() const override {
    return platform::UIStatusBarStyle::lightContent;
  }

  void declareOutlets(platform::OutletBinder& binder) override;
  void viewDidLoad() override;
  void viewWillAppear(bool animated) override;
  void viewDidAppear(bool animated) override;
  void viewWillDisappear(bool animated) override;
  void captureSessionDidStartRunning() override;

  void update(const corvana::SelfieCaptureState& state) override;
  void update(const corvana::IDCaptureState& state) override;
  void foundLiveFace(const std::optional<platform::CGRect>& frame, const platform::CGSize& fullSize,
                     corvana::VideoCaptureMode mode) override;
  /// Main queue.
  void speechRecognition(const platform::SFSpeechRecognitionResult& result) override;
  void speechRecognition(const corvana::IDError& error) override;

 private:
  using Result = tl::expected<VideoIdResult, corvana::IDError>;

  // Set-up and end
  void addNotificationObservers();
  bool startRecorder();
  void raiseCaptureMode();
  void close();
  void invalidateCountdownTimer();
  void deliverCancellation();
  void deliver(const Result& result);
  void presentAlert(std::string title, std::string message, platform::UIAlertAction action);

  // Permissions and microphone
  void checkAudioAuthorizationStatus();
  void checkSpeechRecognitionAuthorizationStatus();
  void showPermissionAlert(std::string message, bool VideoCaptureViewController::*recheck);
  void startAudioCaptureSession();
  void audioWillEnterForeground();

  // Selfie
  void handle(const corvana::SelfieCaptureState& state);
  void judgeSelfie(const corvana::Selfie& selfie);
  bool compareWithReference(const corvana::Selfie& selfie);
  void acceptSelfie(const corvana::Selfie& selfie);
  void showFaceMismatch();
  void showSelfieMessage(const std::optional<std::string>& text, corvana::PromptType type);
  void showLiveFace(const std::optional<platform::CGRect>& frame, const platform::CGSize& fullSize,
                    corvana::VideoCaptureMode mode);

  // Card
  void handle(const corvana::IDCaptureState& state);
  void showDetectingBox();
  void showDetectedBox(const corvana::DetectedData& data);
  void handleClassifiedDocument(const corvana::DetectedData& data);
  void promptForMissingFeature(const corvana::DetectedData& data);
  void judgeSide(const corvana::DetectedData& data);
  void judgeFront(const corvana::DetectedData& data);
  void judgeBack(const corvana::DetectedData& data);
  bool frontFaceMatches(const corvana::DetectedData& data);
  bool textMatches(const char* decision, const std::vector<std::string>& given,
                   const std::vector<std::string>& live, float threshold);
  void acceptFront(const corvana::DetectedData& data);
  void acceptBack(const corvana::DetectedData& data);
  void showIDMismatch(const std::string& text);
  void handOverToReadingText();
  void showIDMessage(const std::optional<std::string>& text, corvana::PromptType type,
                     const std::optional<platform::UIColor>& frameTintColor);
  void showIDError(const std::string& text);
  void setIDImage(platform::UIImageRef image);
  void idImageDidSet();
  bool isUnexpected(const corvana::DetectedData& data);
  bool compareWithFrontsType(const std::string& type) const;

  // Flip
  void showFlipAnimation();
  void flipSilhouette();
  void endFlipAnimation();

  // Reading
  void startCountdownTimer();
  void countdownTick();
  void showCountdown();
  void doneReadingText();
  void videoWriterStopped(const tl::expected<corvana::FileURL, corvana::IDError>& film);
  void dismissDelivering(Result result);
  void setProgress(float progress);

  // Retry
  void retry(RetryType type);
  void presentRetryScreen(RetryType type);
  void resetFlow();
  void retryAnswered(bool retry);

  // Debug overlays
  void selfieCaptureDebugData(const platform::Notification& notification);
  void idCaptureDebugData(const platform::Notification& notification);
  void idCaptureMode(const platform::Notification& notification);
  void hideLater(platform::UIStackView& stack);

  /// For the record of a run; changes nothing.
  void noteDecision(const char* name, std::optional<double> value, std::optional<double> threshold,
                    bool passed) const;
  std::shared_ptr<VideoCaptureViewController> strongSelf();
  std::weak_ptr<VideoCaptureViewController> weakSelf() { return strongSelf(); }

  corvana::DecisionObserver* const decisions_;
  VideoCaptureOutlets outlets_;
  std::vector<std::unique_ptr<platform::NotificationCenter::Observation>> observations_;

  std::optional<corvana::Selfie> videoIdResultSelfie_;
  std::shared_ptr<platform::CALayer> faceEllipseLayer_;
  std::optional<platform::TimePoint> firstFaceDoesNotMatchTime_;
  std::optional<platform::TimePoint> firstIdDoesNotMatchTime_;
  std::optional<platform::TimePoint> typeMismatchStartTime_;
  float wordMatchPercentage_ = 0;
  std::optional<corvana::DetectedData> frontDetectedData_;
  std::optional<corvana::DetectedData> backDetectedData_;
  platform::UIImageRef idImage_;  ///< observed: written by `setIDImage` alone
  bool showingFlipAnimation_ = false;
  std::shared_ptr<platform::Timer> debugTimer_;
  std::shared_ptr<AudioCaptureSession> audioCaptureSession_;
  bool checkAudioAuthorizationStatusWhenEnteringForeground_ = false;
  bool checkSpeechRecognitionAuthorizationStatusWhenEnteringForeground_ = false;
  std::shared_ptr<corvana::VideoCapture> videoCapture_;
  std::shared_ptr<RecorderAudioDelegate> audioDelegate_;
  FaceMatchDetector faceMatchDetector_;
  std::shared_ptr<platform::Timer> countdownTimer_;
  int countdownTimerSeconds_;
};

}  // namespace corvana::capture
