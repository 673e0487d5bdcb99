#include "SoundReader.h"

#include <string>

#include <gst/app/gstappsink.h>

#include "devices/gstreamer/GstSupport.h"

namespace corvana::session {
namespace {

using devices::GstPtr;

constexpr GstClockTime kReadPatience = 20 * GST_SECOND;

/// The pipeline's own words on what went wrong; empty when nothing did.
std::string complaintOf(const GstPtr<GstElement>& pipeline) {
  const GstPtr<GstBus> bus(gst_element_get_bus(pipeline.get()));
  const GstPtr<GstMessage> message(gst_bus_pop_filtered(bus.get(), GST_MESSAGE_ERROR));
  if (!message) return {};
  GError* error = nullptr;
  gst_message_parse_error(message.get(), &error, nullptr);
  return devices::describe(*GstPtr<GError>(error));
}

void append(GstSample& sample, std::vector<float>& sound) {
  GstBuffer* buffer = gst_sample_get_buffer(&sample);
  const std::size_t old = sound.size();
  sound.resize(old + gst_buffer_get_size(buffer) / sizeof(float));
  gst_buffer_extract(buffer, 0, sound.data() + old, (sound.size() - old) * sizeof(float));
}

}  // namespace

Result<std::vector<float>> readSound(const std::filesystem::path& file, int rate) {
  const GstPtr<GstElement> pipeline = devices::launch(
      "filesrc name=file ! decodebin ! audioconvert ! audioresample quality=8 ! "
      "audio/x-raw,format=F32LE,channels=1,layout=interleaved,rate=" +
      std::to_string(rate) + " ! appsink name=sink sync=false");
  if (!pipeline) return fault("GStreamer lacks a decoder: install gstreamer1.0-plugins-good.");
  g_object_set(devices::child(pipeline, "file"), "location", file.c_str(), nullptr);
  gst_element_set_state(pipeline.get(), GST_STATE_PLAYING);
  GstAppSink* sink = GST_APP_SINK(devices::child(pipeline, "sink"));
  std::vector<float> sound;
  while (const GstPtr<GstSample> sample{gst_app_sink_try_pull_sample(sink, kReadPatience)})
    append(*sample, sound);
  const std::string complaint = complaintOf(pipeline);
  if (!sound.empty() && complaint.empty()) return sound;
  return fault(file.string() + " holds no sound that can be decoded" +
               (complaint.empty() ? "" : " (" + complaint + ")") + ": give another file.");
}

}  // namespace corvana::session
