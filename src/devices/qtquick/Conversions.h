#pragma once

#include <QColor>
#include <QRectF>
#include <QString>

#include "platform/geometry/Geometry.h"
#include "platform/uikit/UIColor.h"

namespace corvana::devices {

inline QColor toQt(const platform::UIColor& color) {
  return QColor::fromRgbF(static_cast<float>(color.red), static_cast<float>(color.green),
                          static_cast<float>(color.blue), static_cast<float>(color.alpha));
}

inline platform::UIColor fromQt(const QColor& color) {
  return {color.redF(), color.greenF(), color.blueF(), color.alphaF()};
}

inline QRectF toQt(const platform::CGRect& rect) {
  return {rect.x, rect.y, rect.width, rect.height};
}

inline platform::CGRect fromQt(const QRectF& rect) {
  return {rect.x(), rect.y(), rect.width(), rect.height()};
}

}  // namespace corvana::devices
