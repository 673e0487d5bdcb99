#include "devices/gstreamer/GstPicture.h"

#include <utility>
#include <vector>

namespace corvana::devices {
namespace {

GstVideoFormat videoFormat(platform::PixelFormat format) {
  switch (format) {
    case platform::PixelFormat::rgb24:
      return GST_VIDEO_FORMAT_RGB;
    case platform::PixelFormat::gray8:
      return GST_VIDEO_FORMAT_GRAY8;
    case platform::PixelFormat::i420:
      return GST_VIDEO_FORMAT_I420;
  }
  return GST_VIDEO_FORMAT_UNKNOWN;
}

}  // namespace

GstPtr<GstCaps> pictureCaps(platform::PixelFormat format, int width, int height,
                            int framesPerSecond) {
  GstVideoInfo info;
  gst_video_info_set_format(&info, videoFormat(format), static_cast<guint>(width),
                            static_cast<guint>(height));
  info.fps_n = framesPerSecond;
  info.fps_d = 1;
  if (format == platform::PixelFormat::i420) {
    gst_video_colorimetry_from_string(&info.colorimetry, GST_VIDEO_COLORIMETRY_BT601);
  }
  return GstPtr<GstCaps>(gst_video_info_to_caps(&info));
}

GstPtr<GstBuffer> wrapPicture(const platform::PixelBuffer& image, int width, int height,
                              gpointer hold, GDestroyNotify release) {
  const auto bytes = const_cast<std::uint8_t*>(image.bytes().data());
  const gsize size = image.bytes().size();
  GstPtr<GstBuffer> buffer(
      gst_buffer_new_wrapped_full(GST_MEMORY_FLAG_READONLY, bytes, size, 0, size, hold, release));
  gsize offsets[GST_VIDEO_MAX_PLANES] = {};
  gint strides[GST_VIDEO_MAX_PLANES] = {};
  for (int plane = 0; plane < image.planeCount(); ++plane) {
    offsets[plane] = static_cast<gsize>(image.plane(plane) - image.bytes().data());
    strides[plane] = image.stride(plane);
  }
  gst_buffer_add_video_meta_full(buffer.get(), GST_VIDEO_FRAME_FLAG_NONE,
                                 videoFormat(image.format()), static_cast<guint>(width),
                                 static_cast<guint>(height), static_cast<guint>(image.planeCount()),
                                 offsets, strides);
  return buffer;
}

platform::PixelBufferRef copyPicture(GstSample* sample, platform::PixelFormat format) {
  GstVideoInfo info;
  GstVideoFrame frame;
  if (!gst_video_info_from_caps(&info, gst_sample_get_caps(sample)) ||
      GST_VIDEO_INFO_FORMAT(&info) != videoFormat(format) ||
      !gst_video_frame_map(&frame, &info, gst_sample_get_buffer(sample), GST_MAP_READ)) {
    return nullptr;
  }
  const int width = GST_VIDEO_INFO_WIDTH(&info);
  const int height = GST_VIDEO_INFO_HEIGHT(&info);
  std::vector<std::uint8_t> bytes;
  bytes.reserve(platform::PixelBuffer::byteCount(width, height, format));
  for (guint plane = 0; plane < GST_VIDEO_FRAME_N_PLANES(&frame); ++plane) {
    const auto* row = static_cast<const std::uint8_t*>(GST_VIDEO_FRAME_PLANE_DATA(&frame, plane));
    const auto rowBytes = static_cast<std::size_t>(GST_VIDEO_FRAME_COMP_WIDTH(&frame, plane) *
                                                   GST_VIDEO_FRAME_COMP_PSTRIDE(&frame, plane));
    for (int y = 0; y < GST_VIDEO_FRAME_COMP_HEIGHT(&frame, plane); ++y) {
      bytes.insert(bytes.end(), row, row + rowBytes);
      row += GST_VIDEO_FRAME_PLANE_STRIDE(&frame, plane);
    }
  }
  gst_video_frame_unmap(&frame);
  return std::make_shared<platform::PixelBuffer>(width, height, format, std::move(bytes));
}

}  // namespace corvana::devices
