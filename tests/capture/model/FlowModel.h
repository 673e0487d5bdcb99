#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Sight.h"
#include "capture/VideoCapturePresentableViewController.h"
#include "capture/VideoRetryViewController.h"
#include "corvana/CaptureSessionViewController.h"
#include "corvana/HostFactories.h"
#include "corvana/VideoCapture.h"
#include "platform/uikit/UIStoryboard.h"

namespace tests {

/// The flow told a second time, without views: its states, its clocks, and what the user sees.
/// Stands in for the capture screen behind the same entry, so that both can be driven alike.
class FlowModel final : public corvana::CaptureSessionViewController,
                        public capture::VideoCapturePresentableViewController,
                        public corvana::VideoCaptureDelegate,
                        public corvana::SpeechRecognizerDelegate {
 public:
  /// Distance of two faces; absent when they cannot be compared.
  using Distance = std::function<std::optional<float>(const platform::UIImageRef& one,
                                                      const platform::UIImageRef& other)>;

  FlowModel(platform::Environment& environment, Distance distance);

  /// The storyboard's screens as the model plays them.
  static platform::ControllerFactories factories(Distance distance);

  const Sight& sight() const { return sight_; }

  corvana::CameraPosition cameraPosition() const override { return corvana::CameraPosition::front; }
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
  void speechRecognition(const platform::SFSpeechRecognitionResult& result) override;
  void speechRecognition(const corvana::IDError& error) override;

 private:
  using Data = corvana::DetectedData;
  using Type = corvana::PromptType;
  using Clock = std::optional<platform::TimePoint>;

  // Set-up, permissions, end
  void observe();
  void askForMicrophone();
  void askForSpeech();
  void sendToSettings(const char* message, bool FlowModel::*sent);
  void alert(const char* title, const std::string& message, platform::UIAlertAction action);
  void startMicrophone();
  void close();
  void stopCountdown();
  void answer(const tl::expected<capture::VideoIdResult, corvana::IDError>& result);
  void dismissWith(tl::expected<capture::VideoIdResult, corvana::IDError> result);

  // Phases
  void see(const corvana::SelfieCaptureState& state);
  void see(const corvana::IDCaptureState& state);
  void seeSelfie(const corvana::Selfie& selfie);
  void seeClassified(const Data& data);
  void seeSide(const Data& data);
  /// True: accepted; absent: there is nothing to compare with.
  std::optional<bool> frontMatches(const Data& data, std::string& complaint);
  std::optional<bool> backMatches(const Data& data);
  bool textMatches(const Data& given, const Data& live, float threshold);
  void flip();
  void startReading();
  void tick();
  void finish();
  void retry(capture::RetryType type);

  // What the user sees
  void promptFace(std::optional<std::string> text, Type type);
  void promptCard(std::optional<std::string> text, Type type,
                  std::optional<platform::UIColor> frame = {});
  void silhouette(const std::string& name);
  void progress(float share);
  void showOverlays(double selfie, double card, double reading);
  void showDebug(bool Sight::*hidden, int outlines);
  void showCountdown();
  /// Whether three or five seconds are over since the clock began; begins it when it stands.
  bool isOver(Clock& clock, double limit);

  void later(double delay, std::function<void(FlowModel&)> step);
  std::shared_ptr<FlowModel> self();
  std::weak_ptr<FlowModel> weak() { return self(); }

  Distance distance_;
  Sight sight_;
  platform::Outlet<platform::UIView> readingOverlay_;  // its button answers touch only when shown
  std::vector<std::unique_ptr<platform::NotificationCenter::Observation>> observations_;
  std::shared_ptr<platform::AVCaptureSession> microphone_;
  std::shared_ptr<corvana::VideoCapture> recorder_;
  std::shared_ptr<platform::Timer> countdown_, debugTimer_;
  bool sentForMicrophone_ = false, sentForSpeech_ = false;
  int secondsLeft_;
  float heard_ = 0;
  bool flipping_ = false;
  Clock wrongFaceSince_, wrongCardSince_, wrongTypeSince_;
  std::optional<corvana::Selfie> selfie_;
  std::optional<Data> front_;
};

}  // namespace tests
