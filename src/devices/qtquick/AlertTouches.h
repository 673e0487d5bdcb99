#pragma once

#include <QObject>
#include <QQuickItem>

#include "platform/uikit/UIViewController.h"

namespace corvana::devices {

/// Carries the user's answer from an alert's item, which owns it, to the alert.
class AlertTouches final : public QObject {
  Q_OBJECT
 public:
  AlertTouches(platform::UIAlertController& alert, QQuickItem& item)
      : QObject(&item), alert_(alert.weak_from_this()) {
    connect(&item, SIGNAL(chosen(int)), this, SLOT(choose(int)));
  }

 private slots:
  void choose(int index) {
    const auto alert = std::dynamic_pointer_cast<platform::UIAlertController>(alert_.lock());
    if (alert && index >= 0) alert->choose(static_cast<std::size_t>(index));
  }

 private:
  std::weak_ptr<platform::UIViewController> alert_;
};

}  // namespace corvana::devices
