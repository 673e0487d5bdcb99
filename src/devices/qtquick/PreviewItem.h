#pragma once

#include <QImage>
#include <QQuickItem>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>

#include <QtQml/qqmlregistration.h>

#include "platform/media/SampleBuffer.h"

namespace corvana::devices {

/// The latest picture of the camera, ready to be shown: mirrored as in a looking-glass, cut and
/// scaled to the size that is asked for. Fed on a queue of its own, read by the screen.
class PreviewFeed {
 public:
  /// Takes the camera's next picture, and scales it on the calling thread, which is neither the
  /// main queue nor the camera's. Any thread.
  void push(const platform::PixelBufferRef& picture);
  /// Sets the size of the pictures in pixels; empty: none are made. Any thread.
  void setSize(const QSize& size);
  /// The latest picture; null before the first. Any thread.
  QImage latest() const;
  /// Forgets the pictures so far. Any thread.
  void clear();
  /// Sets what is called after each picture, on the thread of `push`; may be null. Any thread.
  void setOnPicture(std::function<void()> onPicture);

 private:
  mutable std::mutex mutex_;
  QSize size_;
  QImage latest_;
  platform::PixelBufferRef last_;
  std::function<void()> onPicture_;
};

/// A picture that fills `size`, its aspect kept and the overhang cut evenly, mirrored. Null when
/// either is empty.
QImage previewPicture(const platform::PixelBuffer& picture, const QSize& size);

/// A picture file of any format that the toolkit reads, drawings included; null when it can't.
platform::PixelBufferRef loadPicture(const std::filesystem::path& file);

/// Shows a feed, as one texture.
class PreviewItem : public QQuickItem {
  Q_OBJECT
 public:
  explicit PreviewItem(QQuickItem* parent = nullptr);
  ~PreviewItem() override;

  /// Shows what the feed gets from now on: what it holds may be of another person.
  void setFeed(std::shared_ptr<PreviewFeed> feed);
  /// Whether the camera has given a picture.
  bool showsPicture() const { return feed_ && !feed_->latest().isNull(); }

 protected:
  void geometryChange(const QRectF& newGeometry, const QRectF& oldGeometry) override;
  void itemChange(ItemChange change, const ItemChangeData& data) override;
  QSGNode* updatePaintNode(QSGNode* node, UpdatePaintNodeData* data) override;

 private:
  void resizeFeed();

  std::shared_ptr<PreviewFeed> feed_;
};

}  // namespace corvana::devices
