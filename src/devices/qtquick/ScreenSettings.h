#pragma once

#include <QObject>
#include <QVariantMap>

namespace devices {

/// What the person before the screen needs and how it looks; `screen` in the QML files.
class ScreenSettings final : public QObject {
  Q_OBJECT
  /// Times the size of all letters, 1 to 2.
  Q_PROPERTY(qreal textScale MEMBER textScale NOTIFY changed)
  /// Also of the layout.
  Q_PROPERTY(bool rightToLeft MEMBER rightToLeft NOTIFY changed)
  /// False: nothing moves that need not move.
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

}  // namespace devices
