#include "capture/VideoCaptureViewController.h"

#include <utility>

#include "capture/Bundle+Framework.h"
#include "capture/RecorderAudioDelegate.h"
#include "capture/VideoWriterSettings.h"
#include "corvana/HostFactories.h"
#include "corvana/Notifications.h"

namespace corvana::capture {

using corvana::CaptureMode;
using corvana::IDCapture;
using corvana::IDError;
using corvana::LabelPosition;
using corvana::SelfieCapture;
using corvana::VideoCapture;
using corvana::VideoWriter;
using platform::UIColor;

namespace {

constexpr float kLowPriority = 250;
constexpr float kRequiredPriority = 1000;
constexpr double kBackgroundShade = 0.33;

/// Decides between the places where a prompt may sit.
void placePrompt(LabelPosition position, const VideoCaptureOutlets::Constraint& above,
                 const VideoCaptureOutlets::Constraint& center,
                 const VideoCaptureOutlets::Constraint& below) {
  above->priority = kLowPriority;
  center->priority = kLowPriority;
  below->priority = kLowPriority;
  switch (position) {
    case LabelPosition::top:
      above->priority = kRequiredPriority;
      return;
    case LabelPosition::bottom:
      below->priority = kRequiredPriority;
      return;
    case LabelPosition::center:
      break;
  }
  center->priority = kRequiredPriority;
}

}  // namespace

VideoCaptureViewController::VideoCaptureViewController(platform::Environment& environment,
                                                       corvana::HostFactories& host,
                                                       corvana::DecisionObserver* decisions)
    : CaptureSessionViewController(environment, host),
      decisions_(decisions),
      faceEllipseLayer_(std::make_shared<platform::CALayer>()),
      audioCaptureSession_(
          std::make_shared<AudioCaptureSession>(environment.runLoop, environment.mediaDevices)),
      faceMatchDetector_(moduleBundle(environment), environment.console),
      countdownTimerSeconds_(VideoCapture::options.readTextCountdownSeconds) {}

VideoCaptureViewController::~VideoCaptureViewController() = default;

void VideoCaptureViewController::declareOutlets(platform::OutletBinder& binder) {
  outlets_.declare(binder);
  binder.action("close", [this] { close(); });
  binder.action("doneReadingText", [this] { doneReadingText(); });
}

void VideoCaptureViewController::viewDidLoad() {
  CaptureSessionViewController::viewDidLoad();
  outlets_.selfieOverlayView->setHidden(true);
  outlets_.selfieDebugStackView->setHidden(true);
  outlets_.idDebugStackView->setHidden(true);
  outlets_.selfieOverlayImageBackground->setTintColor(UIColor::white(0, kBackgroundShade));
  outlets_.overlayTopView->setBackgroundColor(platform::colors::kClear);
  outlets_.selfieOverlayImageBackground->setHidden(false);
  placePrompt(SelfieCapture::layout.labelPosition, outlets_.selfieLabelAboveConstraint,
              outlets_.selfieLabelCenterConstraint, outlets_.selfieLabelBelowConstraint);
  placePrompt(IDCapture::layout.labelPosition, outlets_.idLabelAboveConstraint,
              outlets_.idLabelCenterConstraint, outlets_.idLabelBelowConstraint);
  outlets_.readingTextLabel->setText(text);
  showCountdown();
  outlets_.captureLabel->setText(SelfieCapture::strings.captureSelfie);
  outlets_.doneButton->setTitle(VideoCapture::strings.doneButton);
}

void VideoCaptureViewController::viewWillAppear(bool animated) {
  CaptureSessionViewController::viewWillAppear(animated);
  addNotificationObservers();
  checkAudioAuthorizationStatus();
}

void VideoCaptureViewController::viewDidAppear(bool animated) {
  CaptureSessionViewController::viewDidAppear(animated);
  if (!videoCapture_ && !startRecorder()) return;
  raiseCaptureMode();
}

void VideoCaptureViewController::viewWillDisappear(bool animated) {
  CaptureSessionViewController::viewWillDisappear(animated);
  observations_.clear();
  audioCaptureSession_->stop();
  if (!videoCapture_) return;
  if (auto* recognizer = videoCapture_->speechRecognizer()) recognizer->stop();
}

void VideoCaptureViewController::captureSessionDidStartRunning() {
  environment().runLoop.mainQueue().async([self = strongSelf()] {
    if (!self->videoPreviewLayer()) return;
    const double z = self->videoPreviewLayer()->zPosition() + 1;
    VideoCaptureOutlets& outlets = self->outlets_;
    outlets.selfieOverlayView->layer().setZPosition(z);
    outlets.idOverlayView->layer().setZPosition(z);
    outlets.readingTextOverlayView->layer().setZPosition(z);
    outlets.overlayTopView->layer().setZPosition(z);
    outlets.selfieOverlayView->setHidden(false);
  });
}

void VideoCaptureViewController::addNotificationObservers() {
  // They end with this controller, and so may hold it plainly.
  platform::NotificationCenter& center = environment().notificationCenter;
  using platform::Notification;
  observations_.clear();
  observations_.push_back(center.addObserver(platform::kApplicationWillEnterForeground,
                                             [this](const auto&) { audioWillEnterForeground(); }));
  observations_.push_back(
      center.addObserver(corvana::kSelfieCaptureDebugData,
                         [this](const Notification& note) { selfieCaptureDebugData(note); }));
  observations_.push_back(
      center.addObserver(corvana::kIDCaptureDebugData,
                         [this](const Notification& note) { idCaptureDebugData(note); }));
  observations_.push_back(center.addObserver(
      corvana::kIDCaptureMode, [this](const Notification& note) { idCaptureMode(note); }));
}

bool VideoCaptureViewController::startRecorder() {
  const auto videoSettings =
      recommendedVideoSettingsForAssetWriter(captureSession(), VideoWriter::fileType);
  const auto audioSettings =
      audioCaptureSession_->audioDataOutput().recommendedAudioSettingsForAssetWriter(
          VideoWriter::fileType);
  auto recorder =
      host().makeVideoCapture(outlets_.selfieOverlayImageView->frame(),
                              outlets_.idFrameImageView->frame(), videoSettings, audioSettings);
  if (!recorder) return false;
  recorder->setDelegate(strongSelf());
  videoCapture_ = std::move(recorder);
  captureSession().setDelegate(videoCapture_);
  audioDelegate_ = std::make_shared<RecorderAudioDelegate>(videoCapture_);
  audioCaptureSession_->setDelegate(audioDelegate_);

  auto* recognizer = videoCapture_->speechRecognizer();
  if (!recognizer || !recognizer->isAvailable()) {
    presentAlert("Error", "Speech Recognition Is Not Available",
                 {"OK", platform::UIAlertAction::Style::cancel, nullptr});
    return false;
  }
  recognizer->setDelegate(strongSelf());
  recognizer->start();
  return true;
}

void VideoCaptureViewController::raiseCaptureMode() {
  const bool wanted = SelfieCapture::options.capture4K || IDCapture::options.capture4K;
  if (wanted && captureSession().captureMode() == CaptureMode::standard) {
    captureSession().setCaptureMode(CaptureMode::high);
  }
}

void VideoCaptureViewController::close() {
  invalidateCountdownTimer();
  dismiss(true, [self = strongSelf()] { self->deliverCancellation(); });
}

void VideoCaptureViewController::invalidateCountdownTimer() {
  if (const auto timer = std::exchange(countdownTimer_, nullptr)) timer->invalidate();
}

void VideoCaptureViewController::deliverCancellation() {
  deliver(tl::unexpected(IDError(IDError::Strings::canceled)));
}

void VideoCaptureViewController::deliver(const Result& result) {
  if (const Completion completion = videoIdCompletion) completion(result);
  videoIdCompletion = nullptr;
}

void VideoCaptureViewController::presentAlert(std::string title, std::string message,
                                              platform::UIAlertAction action) {
  const auto alert = std::make_shared<platform::UIAlertController>(environment(), std::move(title),
                                                                   std::move(message));
  alert->addAction(std::move(action));
  present(alert, true);
}

void VideoCaptureViewController::noteDecision(const char* name, std::optional<double> value,
                                              std::optional<double> threshold, bool passed) const {
  if (decisions_) decisions_->decided({name, value, threshold, passed});
}

std::shared_ptr<VideoCaptureViewController> VideoCaptureViewController::strongSelf() {
  return std::static_pointer_cast<VideoCaptureViewController>(shared_from_this());
}

}  // namespace corvana::capture
