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

namespace corvana::tests {

/// Whether two pictures show the same face; absent when they cannot be compared.
using SameFace = std::function<std::optional<bool>(const platform::UIImageRef& one,
                                                   const platform::UIImageRef& other)>;

/// The flow told a second time, without views and without the module's ways of judging: its states,
/// its clocks, and what the user sees. Stands in for the capture screen behind the same entry, so
/// that both can be driven alike. Every permission is given.
class FlowModel final : public corvana::CaptureSessionViewController,
                        public capture::VideoCapturePresentableViewController,
                        public corvana::VideoCaptureDelegate,
                        public corvana::SpeechRecognizerDelegate {
 public:
  FlowModel(platform::Environment& environment, corvana::HostFactories& host, SameFace sameFace);

  /// The storyboard's screens as the model plays them.
  static platform::ControllerFactories factories(corvana::HostFactories& host,
                                                 const SameFace& sameFace);

  const Sight& sight() const { return sight_; }

  void declareOutlets(platform::OutletBinder& binder) override;
  void viewDidLoad() override;
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
  using Result = tl::expected<capture::VideoIdResult, corvana::IDError>;

  // The phases
  void see(const corvana::SelfieCaptureState& state);
  void see(const corvana::IDCaptureState& state);
  void seeSelfie(const corvana::Selfie& selfie);
  void seeClassified(const Data& data);
  void seeSide(const Data& data);
  /// True: accepted; absent: there is nothing to compare with.
  std::optional<bool> frontMatches(const Data& data, std::string& complaint) const;
  std::optional<bool> backMatches(const Data& data) const;
  void flip();
  void startReading();
  void tick();
  void finish();
  void retry(capture::RetryType type);
  void close();
  void stopCountdown();
  void answer(const Result& result);
  void dismissWith(const Result& result);

  // What the user sees
  void alert(const char* title, const std::string& message);
  void promptFace(const std::string& text, Type type);
  void promptCard(const std::optional<std::string>& text, Type type,
                  std::optional<platform::UIColor> frame = {});
  void silhouette(const std::string& name);
  void progress(float share);
  void showOverlays(double selfie, double card, double reading);
  void showCountdown();

  /// Whether more seconds than `limit` are over since the clock began; begins it when it stands.
  bool isOver(Clock& clock, double limit);
  void later(double delay, std::function<void(FlowModel&)> step);
  std::shared_ptr<FlowModel> self();

  SameFace sameFace_;
  Sight sight_;
  platform::Outlet<platform::UIView> readingOverlay_;  // its button answers touch only when shown
  std::shared_ptr<corvana::VideoCapture> recorder_;
  std::shared_ptr<platform::Timer> countdown_;
  int secondsLeft_;
  float heard_ = 0;
  bool flipping_ = false;
  Clock wrongFaceSince_, wrongCardSince_, wrongTypeSince_;
  std::optional<corvana::Selfie> selfie_;
  std::optional<Data> front_;
};

}  // namespace corvana::tests
