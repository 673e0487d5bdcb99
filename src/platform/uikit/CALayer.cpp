#include "platform/uikit/CALayer.h"

#include <algorithm>

namespace platform {

CALayer::~CALayer() {
  for (const auto& layer : sublayers_)
    layer->superlayer_ = nullptr;
}

void CALayer::addSublayer(const std::shared_ptr<CALayer>& layer) {
  layer->removeFromSuperlayer();
  layer->superlayer_ = this;
  sublayers_.push_back(layer);
}

void CALayer::removeFromSuperlayer() {
  if (!superlayer_) return;
  const auto keepAlive = shared_from_this();
  std::erase(superlayer_->sublayers_, keepAlive);
  superlayer_ = nullptr;
}

void CALayer::setZPosition(double z) {
  zPosition_ = z;
}

}  // namespace platform
