#include "FilmEncoder.h"

#include <string>
#include <utility>

#include <gst/app/gstappsrc.h>
#include <gst/gst.h>

#include "Picture.h"
#include "devices/film/Mp4Dates.h"
#include "devices/gstreamer/GstSupport.h"
#include "devices/gstreamer/MediaElements.h"

namespace corvana::session {
namespace {

using devices::GstPtr;

constexpr GstClockTime kEncodePatience = 120 * GST_SECOND;

/// One thread: with more, the same pictures need not become the same bytes.
std::string launchLine(const std::string& audioEncoder) {
  const std::string size = "width=" + std::to_string(kPictureWidth) +
                           ",height=" + std::to_string(kPictureHeight) +
                           ",framerate=" + std::to_string(kFramesPerSecond) + "/1";
  return "mp4mux name=mux faststart=true ! filesink name=file "
         "appsrc name=video format=time block=true max-bytes=11059200 "
         "caps=video/x-raw,format=I420,colorimetry=bt601,pixel-aspect-ratio=1/1," +
         size +
         " ! x264enc pass=qual quantizer=21 speed-preset=superfast threads=1 key-int-max=60 ! "
         "video/x-h264,profile=high ! h264parse ! queue max-size-time=0 max-size-bytes=0 ! mux. "
         "appsrc name=audio format=time max-bytes=0 "
         "caps=audio/x-raw,format=F32LE,layout=interleaved,channels=1,rate=" +
         std::to_string(kSoundRate) + " ! audioconvert ! " + audioEncoder +
         " bitrate=96000 ! aacparse ! queue ! mux.";
}

GstBuffer* bufferOf(const void* bytes, std::size_t size, GstClockTime start, GstClockTime end) {
  GstBuffer* buffer = gst_buffer_new_allocate(nullptr, size, nullptr);
  gst_buffer_fill(buffer, 0, bytes, size);
  GST_BUFFER_PTS(buffer) = start;
  GST_BUFFER_DURATION(buffer) = end - start;
  return buffer;
}

GstClockTime timeOf(std::size_t count, int rate) {
  return gst_util_uint64_scale(count, GST_SECOND, static_cast<guint64>(rate));
}

}  // namespace

struct FilmEncoder::State {
  GstPtr<GstElement> pipeline;
  std::filesystem::path file;
  std::size_t frames = 0;

  GstAppSrc* source(const char* name) const { return GST_APP_SRC(devices::child(pipeline, name)); }
};

FilmEncoder::FilmEncoder(std::unique_ptr<State> state) : state_(std::move(state)) {}
FilmEncoder::FilmEncoder(FilmEncoder&&) noexcept = default;
FilmEncoder::~FilmEncoder() = default;

Result<FilmEncoder> FilmEncoder::create(const std::filesystem::path& file,
                                        const std::vector<float>& sound) {
  const auto audioEncoder = devices::aacEncoder();
  if (!audioEncoder) return fault("No AAC encoder is installed: install gstreamer1.0-libav.");
  auto state = std::make_unique<State>();
  state->pipeline = devices::launch(launchLine(audioEncoder->element));
  if (!state->pipeline)
    return fault("GStreamer lacks an encoder: install gstreamer1.0-plugins-ugly, -good and -bad.");
  state->file = file;
  g_object_set(devices::child(state->pipeline, "file"), "location", file.c_str(), nullptr);
  gst_element_set_state(state->pipeline.get(), GST_STATE_PLAYING);
  // The encoder begins with samples of its own: as many of ours are left out to stay in step.
  std::size_t place = 0;
  constexpr std::size_t kChunk = kSoundRate / 50;
  for (std::size_t i = static_cast<std::size_t>(audioEncoder->delay); i < sound.size();
       i += kChunk) {
    const std::size_t count = std::min(kChunk, sound.size() - i);
    gst_app_src_push_buffer(state->source("audio"),
                            bufferOf(&sound[i], count * sizeof(float), timeOf(place, kSoundRate),
                                     timeOf(place + count, kSoundRate)));
    place += count;
  }
  gst_app_src_end_of_stream(state->source("audio"));
  return FilmEncoder(std::move(state));
}

void FilmEncoder::add(const cv::Mat& picture) {
  const std::size_t frame = state_->frames++;
  gst_app_src_push_buffer(state_->source("video"),
                          bufferOf(picture.data, picture.total(), timeOf(frame, kFramesPerSecond),
                                   timeOf(frame + 1, kFramesPerSecond)));
}

Result<void> FilmEncoder::finish() {
  gst_app_src_end_of_stream(state_->source("video"));
  const GstPtr<GstBus> bus(gst_element_get_bus(state_->pipeline.get()));
  const GstPtr<GstMessage> message(
      gst_bus_timed_pop_filtered(bus.get(), kEncodePatience,
                                 static_cast<GstMessageType>(GST_MESSAGE_ERROR | GST_MESSAGE_EOS)));
  const bool complete = message && GST_MESSAGE_TYPE(message.get()) == GST_MESSAGE_EOS;
  state_->pipeline.reset();
  if (!complete || !devices::setDates(state_->file, {}))
    return fault(state_->file.string() +
                 " cannot be written: check the folder and the disk's free space.");
  return {};
}

}  // namespace corvana::session
