#pragma once

#include <QColor>
#include <QQuickPaintedItem>
#include <memory>
#include <vector>

#include "platform/uikit/CALayer.h"

namespace corvana::devices {

/// The outlines that hang below a layer: the ellipse around the face, rectangles of the debug mode.
/// Takes only as much of the screen as they need.
class OutlineItem : public QQuickPaintedItem {
  Q_OBJECT
 public:
  explicit OutlineItem(QQuickItem* parent = nullptr) : QQuickPaintedItem(parent) {
    setAntialiasing(true);
  }
  void show(const platform::CALayer& root);
  void paint(QPainter* painter) override;

 private:
  std::vector<platform::CAShapeLayer> shapes_;
};

/// A shade over everything but an opening: an ellipse, or a rectangle with round corners.
class ShadeItem : public QQuickPaintedItem {
  Q_OBJECT
  Q_PROPERTY(QColor color MEMBER color_ WRITE setColor NOTIFY changed)
  Q_PROPERTY(QRectF opening MEMBER opening_ WRITE setOpening NOTIFY changed)
  /// Radius of the opening's corners in points; negative: the opening is an ellipse.
  Q_PROPERTY(qreal radius MEMBER radius_ WRITE setRadius NOTIFY changed)

 public:
  explicit ShadeItem(QQuickItem* parent = nullptr) : QQuickPaintedItem(parent) {
    setAntialiasing(true);
  }
  void setColor(const QColor& color) { color_ = color, redraw(); }
  void setOpening(const QRectF& opening) { opening_ = opening, redraw(); }
  void setRadius(qreal radius) { radius_ = radius, redraw(); }
  void paint(QPainter* painter) override;

 signals:
  void changed();

 private:
  void redraw();

  QColor color_ = Qt::transparent;
  QRectF opening_;
  qreal radius_ = -1;
};

/// The outline of an ellipse that fills the item.
class OvalItem : public QQuickPaintedItem {
  Q_OBJECT
  Q_PROPERTY(QColor color MEMBER color_ WRITE setColor NOTIFY changed)
  Q_PROPERTY(qreal lineWidth MEMBER lineWidth_ WRITE setLineWidth NOTIFY changed)

 public:
  explicit OvalItem(QQuickItem* parent = nullptr) : QQuickPaintedItem(parent) {
    setAntialiasing(true);
  }
  void setColor(const QColor& color) { color_ = color, redraw(); }
  void setLineWidth(qreal width) { lineWidth_ = width, redraw(); }
  void paint(QPainter* painter) override;

 signals:
  void changed();

 private:
  void redraw();

  QColor color_ = Qt::white;
  qreal lineWidth_ = 4;
};

}  // namespace corvana::devices
