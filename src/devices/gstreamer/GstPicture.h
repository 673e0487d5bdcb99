#pragma once

#include <gst/video/video.h>

#include "devices/gstreamer/GstSupport.h"
#include "platform/media/PixelBuffer.h"

/// Pictures on their way into and out of GStreamer; private to this folder. Any thread.
namespace corvana::devices {

/// The caps of a picture with square pixels, of which the left upper part of this size is used.
GstPtr<GstCaps> pictureCaps(platform::PixelFormat format, int width, int height,
                            int framesPerSecond);

/// A buffer over the picture's own memory, to be read only. `release(hold)` is called when the last
/// reader is done; until then the caller's hold keeps the picture alive.
GstPtr<GstBuffer> wrapPicture(const platform::PixelBuffer& image, int width, int height,
                              gpointer hold, GDestroyNotify release);

/// A copy of the picture in the sample; null when that holds none of the format.
platform::PixelBufferRef copyPicture(GstSample* sample, platform::PixelFormat format);

}  // namespace corvana::devices
