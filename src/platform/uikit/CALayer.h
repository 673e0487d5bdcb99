#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "platform/geometry/Geometry.h"
#include "platform/uikit/UIColor.h"

namespace corvana::platform {

/// A node of the tree of drawings behind the views. Main queue only.
class CALayer : public std::enable_shared_from_this<CALayer> {
 public:
  virtual ~CALayer();

  const std::vector<std::shared_ptr<CALayer>>& sublayers() const { return sublayers_; }
  /// Null when it hangs nowhere.
  CALayer* superlayer() const { return superlayer_; }
  /// Takes the layer out of its former superlayer first.
  void addSublayer(const std::shared_ptr<CALayer>& layer);
  void removeFromSuperlayer();

  /// Set on a root layer: told of each layer that comes, goes or changes its z position anywhere
  /// below it. May be null.
  void setObserver(std::function<void()> observer) { observer_ = std::move(observer); }

  /// How far in front the layer lies. Siblings are drawn in the order of it, equal ones in that of
  /// the list; from 0.
  double zPosition() const { return zPosition_; }
  void setZPosition(double z);

 private:
  void changed();

  std::vector<std::shared_ptr<CALayer>> sublayers_;
  std::function<void()> observer_;
  CALayer* superlayer_ = nullptr;
  double zPosition_ = 0;
};

/// An outline: an ellipse inscribed in a rectangle, or the rectangle itself.
class CAShapeLayer final : public CALayer {
 public:
  enum class Path { ellipse, rectangle };

  Path path = Path::rectangle;
  CGRect pathRect;
  UIColor strokeColor = colors::kClear;
  UIColor fillColor = colors::kBlack;
  double lineWidth = 1;  ///< points
};

}  // namespace corvana::platform
