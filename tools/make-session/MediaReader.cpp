#include "MediaReader.h"

#include <cstring>
#include <functional>
#include <string>

#include <gst/app/gstappsink.h>
#include <gst/app/gstappsrc.h>
#include <gst/video/video.h>

#include "devices/gstreamer/GstSupport.h"

namespace session {
namespace {

using devices::GstPtr;

constexpr GstClockTime kPatience = 20 * GST_SECOND;

using OnSample = std::function<void(GstSample&)>;

/// The pipeline's own words on what went wrong; empty when nothing did.
std::string complaintOf(const GstPtr<GstElement>& pipeline) {
  const GstPtr<GstBus> bus(gst_element_get_bus(pipeline.get()));
  const GstPtr<GstMessage> message(gst_bus_timed_pop_filtered(bus.get(), 0, GST_MESSAGE_ERROR));
  if (!message) return {};
  GError* error = nullptr;
  gst_message_parse_error(message.get(), &error, nullptr);
  return devices::describe(*GstPtr<GError>(error));
}

/// Decodes `file` through `rest` of a launch line that ends in the sink.
Result<void> decode(const std::filesystem::path& file, const std::string& rest,
                    const OnSample& onSample) {
  const GstPtr<GstElement> pipeline = devices::launch("filesrc name=file ! decodebin ! " + rest +
                                                      " ! appsink name=sink sync=false");
  if (!pipeline) return fault("GStreamer lacks a decoder: install gstreamer1.0-plugins-good.");
  g_object_set(devices::child(pipeline, "file"), "location", file.c_str(), nullptr);
  gst_element_set_state(pipeline.get(), GST_STATE_PLAYING);
  GstAppSink* sink = GST_APP_SINK(devices::child(pipeline, "sink"));
  bool any = false;
  while (const GstPtr<GstSample> sample{gst_app_sink_try_pull_sample(sink, kPatience)}) {
    any = true;
    onSample(*sample);
  }
  const std::string complaint = complaintOf(pipeline);
  if (any && complaint.empty()) return {};
  return fault(file.string() + " cannot be decoded" +
               (complaint.empty() ? "" : " (" + complaint + ")") + ": give another file.");
}

cv::Mat pictureOf(GstSample& sample) {
  GstVideoInfo info;
  GstVideoFrame frame;
  if (!gst_video_info_from_caps(&info, gst_sample_get_caps(&sample)) ||
      !gst_video_frame_map(&frame, &info, gst_sample_get_buffer(&sample), GST_MAP_READ))
    return {};
  const cv::Mat shared(GST_VIDEO_FRAME_HEIGHT(&frame), GST_VIDEO_FRAME_WIDTH(&frame), CV_8UC3,
                       GST_VIDEO_FRAME_PLANE_DATA(&frame, 0),
                       static_cast<std::size_t>(GST_VIDEO_FRAME_PLANE_STRIDE(&frame, 0)));
  cv::Mat picture = shared.clone();
  gst_video_frame_unmap(&frame);
  return picture;
}

void appendSound(GstSample& sample, std::vector<float>& sound) {
  GstBuffer* buffer = gst_sample_get_buffer(&sample);
  const std::size_t old = sound.size();
  sound.resize(old + gst_buffer_get_size(buffer) / sizeof(float));
  gst_buffer_extract(buffer, 0, sound.data() + old, (sound.size() - old) * sizeof(float));
}

/// Rows of RGB video lie at multiples of four bytes.
GstBuffer* bufferOf(const cv::Mat& picture) {
  const std::size_t rowBytes = static_cast<std::size_t>(picture.cols) * 3;
  const std::size_t stride = (rowBytes + 3) / 4 * 4;
  GstBuffer* buffer =
      gst_buffer_new_allocate(nullptr, stride * static_cast<std::size_t>(picture.rows), nullptr);
  for (int row = 0; row < picture.rows; ++row)
    gst_buffer_fill(buffer, static_cast<std::size_t>(row) * stride, picture.ptr(row), rowBytes);
  GST_BUFFER_PTS(buffer) = 0;
  return buffer;
}

}  // namespace

Result<cv::Mat> readPicture(const std::filesystem::path& file) {
  cv::Mat picture;
  auto read = decode(file, "videoconvert ! video/x-raw,format=RGB", [&](GstSample& sample) {
    if (picture.empty()) picture = pictureOf(sample);
  });
  if (!read) return fault(read.error());
  if (picture.empty()) return fault(file.string() + " holds no picture: give a JPEG or PNG file.");
  return picture;
}

Result<std::vector<float>> readSound(const std::filesystem::path& file, int rate) {
  std::vector<float> sound;
  auto read = decode(file,
                     "audioconvert ! audioresample quality=8 ! "
                     "audio/x-raw,format=F32LE,channels=1,layout=interleaved,rate=" +
                         std::to_string(rate),
                     [&](GstSample& sample) { appendSound(sample, sound); });
  if (!read) return fault(read.error());
  return sound;
}

Result<void> writePng(const std::filesystem::path& file, const cv::Mat& picture) {
  const GstPtr<GstElement> pipeline = devices::launch(
      "appsrc name=source format=time ! videoconvert ! pngenc snapshot=true ! filesink name=file");
  if (!pipeline) return fault("GStreamer lacks pngenc: install gstreamer1.0-plugins-good.");
  g_object_set(devices::child(pipeline, "file"), "location", file.c_str(), nullptr);
  GstAppSrc* source = GST_APP_SRC(devices::child(pipeline, "source"));
  const GstPtr<GstCaps> caps(gst_caps_new_simple(
      "video/x-raw", "format", G_TYPE_STRING, "RGB", "width", G_TYPE_INT, picture.cols, "height",
      G_TYPE_INT, picture.rows, "framerate", GST_TYPE_FRACTION, 1, 1, nullptr));
  gst_app_src_set_caps(source, caps.get());
  gst_element_set_state(pipeline.get(), GST_STATE_PLAYING);
  gst_app_src_push_buffer(source, bufferOf(picture));
  gst_app_src_end_of_stream(source);
  const GstPtr<GstBus> bus(gst_element_get_bus(pipeline.get()));
  const GstPtr<GstMessage> message(gst_bus_timed_pop_filtered(
      bus.get(), kPatience, static_cast<GstMessageType>(GST_MESSAGE_ERROR | GST_MESSAGE_EOS)));
  if (message && GST_MESSAGE_TYPE(message.get()) == GST_MESSAGE_EOS) return {};
  return fault(file.string() + " cannot be written: check the folder and the disk's free space.");
}

}  // namespace session
