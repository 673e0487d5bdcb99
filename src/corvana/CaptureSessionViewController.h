#pragma once

#include <memory>

#include "corvana/CaptureSession.h"
#include "platform/uikit/UIViewController.h"

namespace corvana {

class HostFactories;

/// A screen with a camera behind it. The camera starts when the screen is about to appear and stops
/// when it has disappeared.
class CaptureSessionViewController : public platform::UIViewController {
 public:
  /// `host` outlives the screen.
  CaptureSessionViewController(platform::Environment& environment, HostFactories& host);
  ~CaptureSessionViewController() override;

  /// The background of success prompts where the tables give none: #2E7D32, 5.1:1 under white.
  static constexpr platform::UIColor greenColor{0.180, 0.490, 0.196, 1};

  virtual CameraPosition cameraPosition() const { return CameraPosition::back; }
  /// Any thread; called when the camera session runs.
  virtual void captureSessionDidStartRunning() {}

  /// Made at the first use.
  CaptureSession& captureSession();
  /// Where the camera picture is shown; null on a screen without one. Set before the view appears.
  /// The capture screen raises its overlays above it, and without one leaves the first hidden.
  const std::shared_ptr<platform::CALayer>& videoPreviewLayer() const { return previewLayer_; }
  void setVideoPreviewLayer(std::shared_ptr<platform::CALayer> layer);

  void viewWillAppear(bool animated) override;
  void viewDidDisappear(bool animated) override;

 protected:
  HostFactories& host() const { return host_; }

 private:
  HostFactories& host_;
  /// A camera may take long to start: what was asked of it last has to be done last.
  std::shared_ptr<platform::DispatchQueue> cameraQueue_;
  std::shared_ptr<CaptureSession> captureSession_;
  std::shared_ptr<platform::CALayer> previewLayer_;
};

}  // namespace corvana
