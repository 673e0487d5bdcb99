#include "devices/qtquick/Drawings.h"

#include <QPainter>
#include <QPainterPath>

#include "devices/qtquick/Conversions.h"

namespace corvana::devices {

using platform::CALayer;
using platform::CAShapeLayer;

namespace {

void collect(const CALayer& layer, std::vector<CAShapeLayer>& shapes) {
  for (const auto& sublayer : layer.sublayers()) {
    if (const auto* shape = dynamic_cast<const CAShapeLayer*>(sublayer.get())) {
      shapes.push_back(*shape);
    }
    collect(*sublayer, shapes);
  }
}

}  // namespace

void OutlineItem::show(const CALayer& root) {
  shapes_.clear();
  collect(root, shapes_);
  QRectF box;
  for (const CAShapeLayer& shape : shapes_) {
    const double margin = shape.lineWidth;
    box |= toQt(shape.pathRect).adjusted(-margin, -margin, margin, margin);
  }
  const QRectF area = box.intersected(QRectF(QPointF(), parentItem()->size())).toAlignedRect();
  setPosition(area.topLeft());
  setSize(area.size());
  setVisible(!area.isEmpty());
  update();
}

void OutlineItem::paint(QPainter* painter) {
  painter->translate(-position());
  for (const CAShapeLayer& shape : shapes_) {
    painter->setPen(QPen(toQt(shape.strokeColor), shape.lineWidth));
    painter->setBrush(toQt(shape.fillColor));
    if (shape.path == CAShapeLayer::Path::ellipse) {
      painter->drawEllipse(toQt(shape.pathRect));
    } else {
      painter->drawRect(toQt(shape.pathRect));
    }
  }
}

void ShadeItem::redraw() {
  emit changed();
  update();
}

void ShadeItem::paint(QPainter* painter) {
  QPainterPath path;
  path.addRect(boundingRect());
  if (radius_ < 0) {
    path.addEllipse(opening_);
  } else {
    path.addRoundedRect(opening_, radius_, radius_);
  }
  painter->fillPath(path, color_);
}

void OvalItem::redraw() {
  emit changed();
  update();
}

void OvalItem::paint(QPainter* painter) {
  painter->setPen(QPen(color_, lineWidth_));
  const qreal margin = lineWidth_ / 2;
  painter->drawEllipse(boundingRect().adjusted(margin, margin, -margin, -margin));
}

}  // namespace corvana::devices
