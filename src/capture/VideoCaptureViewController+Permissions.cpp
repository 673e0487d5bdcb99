#include <utility>

#include "capture/VideoCaptureViewController.h"

namespace corvana::capture {

using platform::SFSpeechRecognizerAuthorizationStatus;
using platform::UIAlertAction;

// The user may answer late and on any thread: only weak references wait for it.

void VideoCaptureViewController::checkAudioAuthorizationStatus() {
  audioCaptureSession_->authorizationStatus(
      [weak = weakSelf(), &mainQueue = environment().runLoop.mainQueue()](bool granted) {
        mainQueue.async([weak, granted] {
          const auto self = weak.lock();
          if (!self) return;
          if (!granted) {
            return self->showPermissionAlert(
                "Microphone Permission Not Granted",
                &VideoCaptureViewController::checkAudioAuthorizationStatusWhenEnteringForeground_);
          }
          self->audioCaptureSession_->prepare();
          self->checkSpeechRecognitionAuthorizationStatus();
        });
      });
}

void VideoCaptureViewController::checkSpeechRecognitionAuthorizationStatus() {
  using Self = VideoCaptureViewController;
  environment().speechAuthorization.request(
      [weak = weakSelf(), &mainQueue = environment().runLoop.mainQueue()](auto status) {
        mainQueue.async([weak, status] {
          const auto self = weak.lock();
          if (!self || status == SFSpeechRecognizerAuthorizationStatus::authorized) return;
          self->showPermissionAlert(
              "Speech Recognition Permission Not Granted",
              &Self::checkSpeechRecognitionAuthorizationStatusWhenEnteringForeground_);
        });
      });
}

void VideoCaptureViewController::showPermissionAlert(std::string message,
                                                     bool VideoCaptureViewController::*recheck) {
  UIAlertAction action{"OK", UIAlertAction::Style::standard, nullptr};
  if (const auto url = environment().application.openSettingsURLString()) {
    action.title = "Settings";
    action.handler = [weak = weakSelf(), recheck, url = *url] {
      const auto self = weak.lock();
      if (!self) return;
      (*self).*recheck = true;
      self->environment().application.open(url);
    };
  }
  presentAlert("Error", std::move(message), std::move(action));
}

void VideoCaptureViewController::startAudioCaptureSession() {
  environment()
      .runLoop.globalQueue(platform::QualityOfService::userInitiated)
      .async([session = audioCaptureSession_] { session->start(); });
}

void VideoCaptureViewController::audioWillEnterForeground() {
  if (std::exchange(checkAudioAuthorizationStatusWhenEnteringForeground_, false)) {
    startAudioCaptureSession();
  }
  if (std::exchange(checkSpeechRecognitionAuthorizationStatusWhenEnteringForeground_, false)) {
    auto* recognizer = videoCapture_ ? videoCapture_->speechRecognizer() : nullptr;
    if (recognizer) recognizer->start();
  }
}

}  // namespace corvana::capture
