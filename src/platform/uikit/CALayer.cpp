#include "platform/uikit/CALayer.h"

#include <algorithm>
#include <utility>

namespace corvana::platform {

CALayer::~CALayer() {
  for (const auto& layer : sublayers_)
    layer->superlayer_ = nullptr;
}

void CALayer::addSublayer(const std::shared_ptr<CALayer>& layer) {
  layer->removeFromSuperlayer();
  layer->superlayer_ = this;
  sublayers_.push_back(layer);
  changed();
}

void CALayer::removeFromSuperlayer() {
  if (!superlayer_) return;
  const auto keepAlive = shared_from_this();
  CALayer* former = std::exchange(superlayer_, nullptr);
  std::erase(former->sublayers_, keepAlive);
  former->changed();
}

void CALayer::changed() {
  const CALayer* root = this;
  while (root->superlayer_)
    root = root->superlayer_;
  if (root->observer_) root->observer_();
}

void CALayer::setZPosition(double z) {
  zPosition_ = z;
  changed();
}

}  // namespace corvana::platform
