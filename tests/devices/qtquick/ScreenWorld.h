#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "capture/FlowTest.h"
#include "devices/qtquick/QtScreen.h"
#include "devices/screen/ScreenHub.h"

namespace corvana::tests {

/// A flow on a window that nobody sees, in virtual time.
class ScreenWorld : public FlowTest {
 protected:
  ScreenWorld();
  ~ScreenWorld() override;

  /// Opens the window, once. The flow begins with `enter`.
  void open(const platform::CGSize& size = {360, 640}, const std::filesystem::path& folder = {});

  /// By its id in the topmost scene.
  QQuickItem& item(const std::string& id);
  /// What it takes of the window.
  QRectF place(const std::string& id) { return place(item(id)); }
  static QRectF place(const QQuickItem& item) {
    return item.mapRectToScene({0, 0, item.width(), item.height()});
  }
  /// With the mouse, in the middle.
  void click(const std::string& id) { click(item(id)); }
  void click(const QQuickItem& target);
  /// The first button of the alert on top.
  QQuickItem& alertButton();
  QColor pixel(double x, double y);

  devices::ScreenHub hub;
  std::unique_ptr<devices::QtScreen> screen;
};

/// A copy of the storyboards in which `from` of a scene's file is replaced by `to`.
class EditedStoryboards {
 public:
  EditedStoryboards(const std::string& file, const std::string& from, const std::string& to);
  ~EditedStoryboards();
  const std::filesystem::path& folder() const { return folder_; }

 private:
  std::filesystem::path folder_;
};

}  // namespace corvana::tests
