#pragma once

#include <QQuickImageProvider>
#include <QString>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/uikit/UIImage.h"

namespace corvana::devices {

/// The images of the views, by address, in any colour. Drawings are looked up by name in the
/// folders, as NAME.svg or NAME.png. Lives as long as the QML engine that owns it; main thread.
class ScreenImages final : public QQuickImageProvider {
 public:
  explicit ScreenImages(std::vector<std::filesystem::path> folders)
      : QQuickImageProvider(Image), folders_(std::move(folders)) {}

  /// The provider's name in addresses.
  static constexpr const char* kScheme = "views";

  /// The image's address; empty for no image. With "?#AARRGGBB" behind it everything that is not
  /// transparent takes that colour.
  QString address(const platform::UIImageRef& image);

  QImage requestImage(const QString& id, QSize* size, const QSize& requestedSize) override;

 private:
  QImage load(const std::string& key, const QSize& size) const;

  std::vector<std::filesystem::path> folders_;
  /// Pictures with pixels; drawings go by their names.
  std::map<std::string, platform::UIImageRef> pictures_;
};

}  // namespace corvana::devices
