#include "corvana/CaptureSessionViewController.h"

#include <utility>

#include "corvana/HostFactories.h"

namespace corvana {

using platform::QualityOfService;

CaptureSessionViewController::CaptureSessionViewController(platform::Environment& environment,
                                                           HostFactories& host)
    : UIViewController(environment),
      host_(host),
      cameraQueue_(
          environment.runLoop.makeSerialQueue("CameraQueue", QualityOfService::userInitiated)) {}

CaptureSessionViewController::~CaptureSessionViewController() {
  // The queue owns the session from here: stopping a camera may take time.
  if (!captureSession_) return;
  cameraQueue_->async([session = captureSession_] { session->stopRunning(); });
}

CaptureSession& CaptureSessionViewController::captureSession() {
  if (!captureSession_) captureSession_ = host_.makeCaptureSession(cameraPosition());
  return *captureSession_;
}

void CaptureSessionViewController::setVideoPreviewLayer(std::shared_ptr<platform::CALayer> layer) {
  previewLayer_ = std::move(layer);
}

void CaptureSessionViewController::viewWillAppear(bool) {
  captureSession();
  std::weak_ptr<UIViewController> weak = weak_from_this();
  cameraQueue_->async([session = captureSession_, weak, &loop = environment().runLoop] {
    session->startRunning();
    platform::callDelegate(loop, weak, [](UIViewController& self) {
      static_cast<CaptureSessionViewController&>(self).captureSessionDidStartRunning();
    });
  });
}

void CaptureSessionViewController::viewDidDisappear(bool) {
  cameraQueue_->async([session = captureSession_] { session->stopRunning(); });
}

}  // namespace corvana
