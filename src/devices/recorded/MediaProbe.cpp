#include "devices/recorded/MediaProbe.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <string_view>
#include <utility>

#include <gst/video/video.h>

#include "devices/gstreamer/GstSupport.h"
#include "devices/recorded/StreamReader.h"
#include "platform/foundation/Fault.h"

namespace corvana::devices {
namespace {

constexpr double kUsualRate = 30;

/// What a file's demuxer has found; written by its thread, so it must outlive the pipeline.
struct Streams {
  GstElement* sink = nullptr;
  std::atomic<bool> hasVideo = false;
  std::atomic<bool> hasAudio = false;
  std::atomic<bool> isComplete = false;

  static void onPad(GstElement*, GstPad* pad, gpointer data) {
    auto& streams = *static_cast<Streams*>(data);
    const std::string_view name = GST_PAD_NAME(pad);
    if (name.starts_with("video")) streams.hasVideo = true;
    if (name.starts_with("audio")) streams.hasAudio = true;
  }

  static void onAllPads(GstElement*, gpointer data) {
    auto& streams = *static_cast<Streams*>(data);
    streams.isComplete = true;
    if (streams.hasVideo) return;
    // Nothing will ever come: the reader must not wait for it.
    const GstPtr<GstPad> pad(gst_element_get_static_pad(streams.sink, "sink"));
    gst_pad_send_event(pad.get(), gst_event_new_eos());
  }
};

GstVideoOrientationMethod orientationOf(GstElement* sink) {
  const GstPtr<GstPad> pad(gst_element_get_static_pad(sink, "sink"));
  GstVideoOrientationMethod orientation = GST_VIDEO_ORIENTATION_IDENTITY;
  for (guint index = 0;; ++index) {
    const GstPtr<GstEvent> event(gst_pad_get_sticky_event(pad.get(), GST_EVENT_TAG, index));
    if (!event) return orientation;
    GstTagList* tags = nullptr;
    gst_event_parse_tag(event.get(), &tags);
    gst_video_orientation_from_tag(tags, &orientation);
  }
}

bool swapsSides(GstVideoOrientationMethod orientation) {
  return orientation == GST_VIDEO_ORIENTATION_90R || orientation == GST_VIDEO_ORIENTATION_90L ||
         orientation == GST_VIDEO_ORIENTATION_UL_LR || orientation == GST_VIDEO_ORIENTATION_UR_LL;
}

platform::Expected<MediaInfo> readPicture(const std::string& name, GstSample* sample) {
  GstVideoInfo video;
  if (!gst_video_info_from_caps(&video, gst_sample_get_caps(sample))) {
    return platform::failure(name + " holds a picture that can't be read.");
  }
  const double aspect = video.par_n > 0 && video.par_d > 0 ? double(video.par_n) / video.par_d : 1;
  const double width = std::round(video.width * aspect);
  const double largest = std::max({width, double(video.width), double(video.height)});
  if (!(std::min(width, double(video.height)) >= kLeastPictureSize &&
        largest <= kMostPictureSize)) {
    return platform::failure(
        "The picture of " + name + " measures " + std::to_string(std::llround(width)) + "x" +
        std::to_string(video.height) + " pixels: it must be " + std::to_string(kLeastPictureSize) +
        " to " + std::to_string(kMostPictureSize) + " wide and high.");
  }
  MediaInfo info;
  info.width = static_cast<int>(width);
  info.height = video.height;
  const double rate = video.fps_d > 0 ? double(video.fps_n) / video.fps_d : 0;
  info.frameRate = rate >= 1 && rate <= 240 ? rate : kUsualRate;
  return info;
}

}  // namespace

/// The pipeline goes first: what it has found is written until then.
struct MediaProbe::Look {
  explicit Look(StreamReader reader) : stream(std::move(reader)) {}

  Streams streams;
  StreamReader stream;
};

MediaProbe::MediaProbe(std::filesystem::path path, std::unique_ptr<Look> look)
    : path_(std::move(path)), look_(std::move(look)) {}

MediaProbe::~MediaProbe() = default;

platform::Expected<std::unique_ptr<MediaProbe>> MediaProbe::start(
    const std::filesystem::path& path) {
  auto stream = openStream(path, "video_0", "videoconvert");
  if (!stream) return tl::unexpected(stream.error());
  auto look = std::make_unique<Look>(std::move(*stream));
  look->streams.sink = look->stream.element("sink");
  GstElement* demuxer = look->stream.element("demuxer");
  g_signal_connect(demuxer, "pad-added", G_CALLBACK(&Streams::onPad), &look->streams);
  g_signal_connect(demuxer, "no-more-pads", G_CALLBACK(&Streams::onAllPads), &look->streams);
  look->stream.useOneDecodingThread();  // others would decode pictures that nobody asks for
  look->stream.start();
  return std::unique_ptr<MediaProbe>(new MediaProbe(path, std::move(look)));
}

platform::Expected<MediaInfo> MediaProbe::finish() {
  // Nobody needs decoders and pictures any longer than this.
  const std::unique_ptr<Look> look = std::move(look_);
  const std::string name = path_.string();
  const Streams& streams = look->streams;
  const auto sample = look->stream.pull();
  if (streams.isComplete && !streams.hasVideo) {
    return platform::failure(name +
                             (streams.hasAudio ? " holds sound but no picture." : " is empty."));
  }
  if (!sample) return tl::unexpected(sample.error());
  if (!*sample) return platform::failure(name + " holds no picture: record it again.");
  auto info = readPicture(name, sample->get());
  if (!info) return info;
  const GstVideoOrientationMethod orientation = orientationOf(streams.sink);
  info->isUpright = orientation == GST_VIDEO_ORIENTATION_IDENTITY;
  if (swapsSides(orientation)) std::swap(info->width, info->height);
  info->hasAudio = streams.hasAudio;
  gint64 duration = 0;
  GstElement* demuxer = look->stream.element("demuxer");
  if (gst_element_query_duration(demuxer, GST_FORMAT_TIME, &duration) && duration > 0) {
    info->duration = platform::Duration(duration);
  }
  return info;
}

platform::Expected<MediaInfo> probe(const std::filesystem::path& path) {
  return MediaProbe::start(path).and_then(
      [](const std::unique_ptr<MediaProbe>& look) { return look->finish(); });
}

}  // namespace corvana::devices
