#pragma once

#include <memory>
#include <string>

#include "platform/media/PixelBuffer.h"

namespace corvana::platform {

/// A picture that is shown or judged; equality is that of the object. A drawing known to the screen
/// only by its resource name has no pixels.
class UIImage {
 public:
  explicit UIImage(PixelBufferRef pixels, std::string name = {})
      : pixels_(std::move(pixels)), name_(std::move(name)) {}

  /// RGB pixels, rows from the top; null for a named drawing.
  const PixelBufferRef& pixels() const { return pixels_; }
  const std::string& name() const { return name_; }

 private:
  PixelBufferRef pixels_;
  std::string name_;
};

/// Null means no image.
using UIImageRef = std::shared_ptr<const UIImage>;

}  // namespace corvana::platform
