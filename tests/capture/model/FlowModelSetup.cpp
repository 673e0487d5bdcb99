#include <utility>

#include "FlowModel.h"
#include "capture/ControllerFactories.h"
#include "capture/NumberText.h"
#include "corvana/Notifications.h"

// How the flow is set up, and what the user has to allow.

namespace tests {

using corvana::CaptureMode;
using corvana::IDCapture;
using corvana::SelfieCapture;
using corvana::VideoCapture;

FlowModel::FlowModel(platform::Environment& environment, Distance distance)
    : CaptureSessionViewController(environment),
      distance_(std::move(distance)),
      microphone_(std::make_shared<platform::AVCaptureSession>()),
      secondsLeft_(VideoCapture::options.readTextCountdownSeconds) {}

platform::ControllerFactories FlowModel::factories(Distance distance) {
  auto factories = capture::controllerFactories();
  factories["VideoCaptureViewController"] = [distance](auto& environment) {
    return std::make_shared<FlowModel>(environment, distance);
  };
  return factories;
}

std::shared_ptr<FlowModel> FlowModel::self() {
  return std::static_pointer_cast<FlowModel>(shared_from_this());
}

void FlowModel::declareOutlets(platform::OutletBinder& binder) {
  binder.outlet("readingTextOverlayView", readingOverlay_);
  binder.action("close", [this] { close(); });
  binder.action("doneReadingText", [this] { finish(); });
}

void FlowModel::viewDidLoad() {
  sight_ = sightOf(view());  // as the storyboard has it
  sight_.selfieHidden = sight_.selfieDebugHidden = sight_.cardDebugHidden = true;
  sight_.reading = text;
  sight_.caption = SelfieCapture::strings.captureSelfie;
  showCountdown();
}

void FlowModel::viewWillAppear(bool animated) {
  CaptureSessionViewController::viewWillAppear(animated);
  observe();
  askForMicrophone();
}

void FlowModel::viewDidAppear(bool) {
  if (!recorder_) {
    recorder_ = environment().host.makeVideoCapture({}, {}, {}, {});
    if (!recorder_) return;
    recorder_->setDelegate(self());
    auto* speech = recorder_->speechRecognizer();
    if (!speech || !speech->isAvailable()) {
      return alert("Error", "Speech Recognition Is Not Available",
                   {"OK", platform::UIAlertAction::Style::cancel, nullptr});
    }
    speech->setDelegate(self());
    speech->start();
  }
  const bool high = SelfieCapture::options.capture4K || IDCapture::options.capture4K;
  if (high && captureSession().captureMode() == CaptureMode::standard) {
    captureSession().setCaptureMode(CaptureMode::high);
  }
}

void FlowModel::viewWillDisappear(bool) {
  observations_.clear();
  microphone_->stopRunning();
  if (recorder_ && recorder_->speechRecognizer()) recorder_->speechRecognizer()->stop();
}

void FlowModel::captureSessionDidStartRunning() {
  later(0, [](FlowModel& model) { model.sight_.selfieHidden = false; });
}

void FlowModel::observe() {
  const auto on = [this](const char* name, auto heard) {
    observations_.push_back(environment().notificationCenter.addObserver(name, heard));
  };
  on(platform::kApplicationWillEnterForeground, [this](const auto&) {
    if (std::exchange(sentForMicrophone_, false)) startMicrophone();
    if (!std::exchange(sentForSpeech_, false) || !recorder_) return;
    if (recorder_->speechRecognizer()) recorder_->speechRecognizer()->start();
  });
  on(corvana::kSelfieCaptureDebugData, [this](const platform::Notification& note) {
    const bool drawn = note.template value<platform::CGRect>("faceRect");
    showDebug(&Sight::selfieDebugHidden, drawn ? 1 : sight_.outlines);
    if (const auto* score = note.template value<float>("faceLivenessScore"))
      sight_.liveness = "Face Liveness Score: " + capture::shortestDecimal(*score);
  });
  on(corvana::kIDCaptureDebugData, [this](const platform::Notification& note) {
    const auto* data = note.template value<corvana::DebugData>("debugData");
    if (captureSession().captureMode() == CaptureMode::barcode) return;
    showDebug(&Sight::cardDebugHidden, data->faceLocation ? 2 : 1);
    if (data->topClassifierResults) sight_.topMatches = "Top Matches:";
  });
  on(corvana::kIDCaptureMode, [this](const platform::Notification& note) {
    captureSession().setCaptureMode(*note.template value<CaptureMode>("captureMode"));
  });
}

void FlowModel::askForMicrophone() {
  using enum platform::AVAuthorizationStatus;
  auto& devices = environment().mediaDevices;
  auto& main = environment().runLoop.mainQueue();
  const auto answered = [weak = weak(), &main, &devices](bool granted) {
    const auto act = [weak, granted, &devices] {
      const auto self = weak.lock();
      if (!self) return;
      if (!granted) {
        return self->sendToSettings("Microphone Permission Not Granted",
                                    &FlowModel::sentForMicrophone_);
      }
      const auto device = devices.defaultDevice(platform::AVMediaType::audio);
      auto input = platform::AVCaptureDeviceInput::make(device);
      if (input && self->microphone_->inputs().empty()) {
        self->microphone_->addInput(*input);
        self->microphone_->addOutput(
            std::make_shared<platform::AVCaptureAudioDataOutput>(self->environment().runLoop));
      }
      self->askForSpeech();
    };
    main.async([&main, act] { main.async(act); });
  };
  const auto status = devices.authorizationStatus(platform::AVMediaType::audio);
  if (status == notDetermined) {
    devices.requestAccess(platform::AVMediaType::audio, answered);
  } else {
    answered(status == authorized);
  }
}

void FlowModel::askForSpeech() {
  environment().speechAuthorization.request(
      [weak = weak(), &main = environment().runLoop.mainQueue()](auto status) {
        main.async([weak, status] {
          const auto self = weak.lock();
          if (self && status != platform::SFSpeechRecognizerAuthorizationStatus::authorized) {
            self->sendToSettings("Speech Recognition Permission Not Granted",
                                 &FlowModel::sentForSpeech_);
          }
        });
      });
}

void FlowModel::sendToSettings(const char* message, bool FlowModel::*sent) {
  const auto url = environment().application.openSettingsURLString();
  using Style = platform::UIAlertAction::Style;
  platform::UIAlertAction action{url ? "Settings" : "OK", Style::standard, nullptr};
  if (url) {
    action.handler = [weak = weak(), sent, url = *url] {
      const auto self = weak.lock();
      if (!self) return;
      (*self).*sent = true;
      self->environment().application.open(url);
    };
  }
  alert("Error", message, action);
}

void FlowModel::alert(const char* title, const std::string& message,
                      platform::UIAlertAction action) {
  const auto alert = std::make_shared<platform::UIAlertController>(environment(), title, message);
  alert->addAction(std::move(action));
  present(alert, true);
}

void FlowModel::startMicrophone() {
  environment()
      .runLoop.globalQueue(platform::QualityOfService::userInitiated)
      .async([microphone = microphone_] { microphone->startRunning(); });
}

}  // namespace tests
