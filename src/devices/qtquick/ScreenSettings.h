#pragma once

#include <QObject>
#include <QVariantMap>

namespace corvana::devices {

/// What the person before the screen needs and how it looks; `screen` in the QML files.
class ScreenSettings final : public QObject {
  Q_OBJECT
  /// Factor on the size of all letters, 0.8 to 2.
  Q_PROPERTY(qreal textScale MEMBER textScale NOTIFY changed)
  /// Whether text runs from right to left, and the layout with it.
  Q_PROPERTY(bool rightToLeft MEMBER rightToLeft NOTIFY changed)
  /// Whether things may move that need not move.
  Q_PROPERTY(bool animated MEMBER animated NOTIFY changed)
  /// Words of the screen itself, for those who hear it instead of seeing it.
  Q_PROPERTY(QVariantMap words MEMBER words NOTIFY changed)

 public:
  qreal textScale = 1;
  bool rightToLeft = false;
  bool animated = true;
  QVariantMap words{{QStringLiteral("close"), QStringLiteral("Close")},
                    {QStringLiteral("progress"), QStringLiteral("Progress")},
                    {QStringLiteral("secondsLeft"), QStringLiteral("Time left")}};

 signals:
  void changed();
};

}  // namespace corvana::devices
