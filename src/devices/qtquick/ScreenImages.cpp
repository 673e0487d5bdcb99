#include "devices/qtquick/ScreenImages.h"

#include <QImageReader>
#include <QPainter>

namespace corvana::devices {
namespace {

QImage toImage(const platform::PixelBuffer& pixels) {
  if (pixels.format() != platform::PixelFormat::rgb24) return {};
  return QImage(pixels.plane(0), pixels.width(), pixels.height(), pixels.stride(0),
                QImage::Format_RGB888)
      .copy();
}

void paint(QImage& image, const QColor& color) {
  image = std::move(image).convertToFormat(QImage::Format_ARGB32_Premultiplied);
  QPainter painter(&image);
  painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
  painter.fillRect(image.rect(), color);
}

QImage readFile(const std::filesystem::path& file, const QSize& size) {
  QImageReader reader(QString::fromStdString(file.string()));
  const QSize own = reader.size();
  if (size.width() > 0 || size.height() > 0) {
    const QSize box(size.width() > 0 ? size.width() : 1 << 14,
                    size.height() > 0 ? size.height() : 1 << 14);
    reader.setScaledSize(own.scaled(box, Qt::KeepAspectRatio));
  }
  return reader.read();
}

}  // namespace

QString ScreenImages::address(const platform::UIImageRef& image) {
  if (!image) return {};
  std::string key = image->name();
  if (image->pixels()) {
    key = "picture-" + std::to_string(pictures_.size());
    for (const auto& [known, picture] : pictures_) {
      if (picture == image) key = known;
    }
    pictures_[key] = image;
  }
  return QStringLiteral("image://%1/%2").arg(kScheme, QString::fromStdString(key));
}

QImage ScreenImages::load(const std::string& key, const QSize& size) const {
  const auto picture = pictures_.find(key);
  if (picture != pictures_.end()) return toImage(*picture->second->pixels());
  for (const auto& folder : folders_) {
    for (const char* ending : {".svg", ".png"}) {
      std::error_code error;
      const auto file = folder / (key + ending);
      if (std::filesystem::is_regular_file(file, error)) return readFile(file, size);
    }
  }
  return {};
}

QImage ScreenImages::requestImage(const QString& id, QSize* size, const QSize& requestedSize) {
  const qsizetype mark = id.indexOf('?');
  const QString key = mark < 0 ? id : id.left(mark);
  QImage image = load(key.toStdString(), requestedSize);
  if (mark >= 0 && !image.isNull()) paint(image, QColor(id.mid(mark + 1)));
  if (size) *size = image.size();
  return image;
}

}  // namespace corvana::devices
