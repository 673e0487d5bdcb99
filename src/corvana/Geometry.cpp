#include "corvana/Geometry.h"

#include <algorithm>
#include <memory>
#include <vector>

namespace corvana {

using platform::CALayer;
using platform::CAShapeLayer;
using platform::CGRect;
using platform::CGSize;

namespace {

CGRect mapCentered(const CGRect& rect, const CGSize& from, const CGSize& to, double scale) {
  const double offsetX = (to.width - from.width * scale) * 0.5;
  const double offsetY = (to.height - from.height * scale) * 0.5;
  return {rect.x * scale + offsetX, rect.y * scale + offsetY, rect.width * scale,
          rect.height * scale};
}

bool isEmpty(const CGSize& size) {
  return size.width <= 0 || size.height <= 0;
}

}  // namespace

CGRect aspectFill(const CGRect& rect, const CGSize& from, const CGSize& to) {
  if (isEmpty(from)) return {};
  return mapCentered(rect, from, to, std::max(to.width / from.width, to.height / from.height));
}

CGRect aspectFit(const CGRect& rect, const CGSize& from, const CGSize& to) {
  if (isEmpty(from)) return {};
  return mapCentered(rect, from, to, std::min(to.width / from.width, to.height / from.height));
}

void removeShapeSublayers(CALayer& layer) {
  // A copy, since the list shrinks while it is walked.
  for (const auto& sublayer : std::vector(layer.sublayers())) {
    if (dynamic_cast<CAShapeLayer*>(sublayer.get())) sublayer->removeFromSuperlayer();
  }
}

void draw(CALayer& layer, const CGRect& rect, const platform::UIColor& color) {
  auto shape = std::make_shared<CAShapeLayer>();
  shape->path = CAShapeLayer::Path::rectangle;
  shape->pathRect = rect;
  shape->strokeColor = color;
  shape->fillColor = platform::colors::kClear;
  shape->lineWidth = 2;
  layer.addSublayer(shape);
}

}  // namespace corvana
