#include "devices/qtquick/PreviewItem.h"

#include <QPointer>
#include <QQuickWindow>
#include <QSGSimpleTextureNode>
#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include <opencv2/imgproc.hpp>

namespace corvana::devices {

using platform::PixelBuffer;
using platform::PixelFormat;

namespace {

cv::Mat plane(const PixelBuffer& picture, int channels, int rows) {
  // OpenCV has no read-only pictures; nothing writes to this one.
  return {rows, picture.width(), CV_8UC(channels), const_cast<std::uint8_t*>(picture.plane(0))};
}

/// Blue, green, red, unused: the order in memory of `QImage::Format_RGB32`.
cv::Mat toBgra(const PixelBuffer& picture) {
  cv::Mat result;
  switch (picture.format()) {
    case PixelFormat::rgb24:
      cv::cvtColor(plane(picture, 3, picture.height()), result, cv::COLOR_RGB2BGRA);
      break;
    case PixelFormat::gray8:
      cv::cvtColor(plane(picture, 1, picture.height()), result, cv::COLOR_GRAY2BGRA);
      break;
    case PixelFormat::i420:
      // Odd sizes are refused by the conversion; cameras do not have them.
      if (picture.width() % 2 != 0 || picture.height() % 2 != 0) break;
      cv::cvtColor(plane(picture, 1, picture.height() * 3 / 2), result, cv::COLOR_YUV2BGRA_I420);
      break;
  }
  return result;
}

/// The part of a picture that is seen when it fills `size`.
cv::Rect visiblePart(const cv::Size& picture, const QSize& size) {
  const double scale = std::max(static_cast<double>(size.width()) / picture.width,
                                static_cast<double>(size.height()) / picture.height);
  const int width =
      std::clamp(static_cast<int>(std::lround(size.width() / scale)), 1, picture.width);
  const int height =
      std::clamp(static_cast<int>(std::lround(size.height() / scale)), 1, picture.height);
  return {(picture.width - width) / 2, (picture.height - height) / 2, width, height};
}

}  // namespace

QImage previewPicture(const PixelBuffer& picture, const QSize& size) {
  if (size.isEmpty() || picture.width() < 1 || picture.height() < 1) return {};
  const cv::Mat whole = toBgra(picture);
  if (whole.empty()) return {};
  QImage image(size, QImage::Format_RGB32);
  cv::Mat target(size.height(), size.width(), CV_8UC4, image.bits(),
                 static_cast<std::size_t>(image.bytesPerLine()));
  cv::resize(whole(visiblePart(whole.size(), size)), target, target.size(), 0, 0, cv::INTER_LINEAR);
  cv::flip(target, target, 1);
  return image;
}

platform::PixelBufferRef loadPicture(const std::filesystem::path& file) {
  const QImage image =
      QImage(QString::fromStdString(file.string())).convertToFormat(QImage::Format_RGB888);
  if (image.isNull()) return nullptr;
  std::vector<std::uint8_t> bytes;
  const auto rowBytes = static_cast<std::ptrdiff_t>(image.width()) * 3;
  for (int y = 0; y < image.height(); ++y)
    bytes.insert(bytes.end(), image.scanLine(y), image.scanLine(y) + rowBytes);
  return std::make_shared<PixelBuffer>(image.width(), image.height(), PixelFormat::rgb24,
                                       std::move(bytes));
}

void PreviewFeed::push(const platform::PixelBufferRef& picture) {
  if (!picture) return;
  QSize size;
  {
    const std::lock_guard lock(mutex_);
    last_ = picture;
    size = size_;
  }
  QImage image = previewPicture(*picture, size);
  const std::lock_guard lock(mutex_);
  if (!image.isNull()) latest_ = std::move(image);
  if (onPicture_) onPicture_();
}

void PreviewFeed::setSize(const QSize& size) {
  platform::PixelBufferRef last;
  {
    const std::lock_guard lock(mutex_);
    if (size_ == size) return;
    size_ = size;
    last = last_;
  }
  push(last);
}

QImage PreviewFeed::latest() const {
  const std::lock_guard lock(mutex_);
  return latest_;
}

void PreviewFeed::clear() {
  const std::lock_guard lock(mutex_);
  latest_ = {};
  last_.reset();
}

void PreviewFeed::setOnPicture(std::function<void()> onPicture) {
  const std::lock_guard lock(mutex_);
  onPicture_ = std::move(onPicture);
}

PreviewItem::PreviewItem(QQuickItem* parent) : QQuickItem(parent) {
  setFlag(ItemHasContents);
}

PreviewItem::~PreviewItem() {
  if (feed_) feed_->setOnPicture(nullptr);
}

void PreviewItem::setFeed(std::shared_ptr<PreviewFeed> feed) {
  feed_ = std::move(feed);
  feed_->clear();
  // The feed drops the function before this item is gone, so a posted call finds it or nothing.
  feed_->setOnPicture([this] {
    QMetaObject::invokeMethod(
        this, [this] { update(); }, Qt::QueuedConnection);
  });
  resizeFeed();
}

void PreviewItem::resizeFeed() {
  if (!feed_ || !window()) return;
  feed_->setSize((size() * window()->effectiveDevicePixelRatio()).toSize());
}

void PreviewItem::geometryChange(const QRectF& newGeometry, const QRectF& oldGeometry) {
  QQuickItem::geometryChange(newGeometry, oldGeometry);
  if (newGeometry.size() != oldGeometry.size()) resizeFeed();
}

void PreviewItem::itemChange(ItemChange change, const ItemChangeData& data) {
  QQuickItem::itemChange(change, data);
  if (change == ItemSceneChange || change == ItemDevicePixelRatioHasChanged) resizeFeed();
}

QSGNode* PreviewItem::updatePaintNode(QSGNode* node, UpdatePaintNodeData*) {
  const QImage image = feed_ ? feed_->latest() : QImage();
  auto* textureNode = static_cast<QSGSimpleTextureNode*>(node);
  if (image.isNull()) {
    delete textureNode;
    return nullptr;
  }
  if (!textureNode) {
    textureNode = new QSGSimpleTextureNode;
    textureNode->setOwnsTexture(true);
  }
  textureNode->setTexture(window()->createTextureFromImage(image));
  textureNode->setRect(boundingRect());
  textureNode->markDirty(QSGNode::DirtyMaterial);
  return textureNode;
}

}  // namespace corvana::devices
