#include "devices/recorded/StreamReader.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <utility>

#include <gst/app/gstappsink.h>
#include <gst/pbutils/pbutils.h>

#include "devices/gstreamer/GstPicture.h"
#include "devices/gstreamer/MediaElements.h"
#include "devices/recorded/Container.h"
#include "platform/foundation/Fault.h"

namespace corvana::devices {
namespace {

constexpr GstClockTime kPullSlice = 100 * GST_MSECOND;
constexpr int kPullSlices = 300;
/// A camera does not stand still for so long; times further apart than this are made up.
constexpr platform::Duration kLongestGap = std::chrono::seconds(10);
/// Pictures closer than this are one: no camera is faster.
constexpr platform::Duration kShortestGap = std::chrono::milliseconds(3);
/// Containers give the time of sound coarsely: smaller jumps than this are not meant.
constexpr std::int64_t kSoundJump = AudioReader::kSampleRate / 25;

const char* const kPictureConversion =
    "videoconvert n-threads=2 ! %o videoscale add-borders=false ! "
    "videoconvert n-threads=2 ! "
    "video/x-raw,format=I420,colorimetry=bt601,pixel-aspect-ratio=1/1,width=%w,height=%h";
const char* const kSoundConversion =
    "audioconvert dithering=none ! audioresample ! "
    "audioconvert dithering=none ! audio/x-raw,format=S16LE,rate=48000,channels=1";

/// Pictures larger than this (HD) are decoded by as many threads as there are cores. With smaller
/// ones a thread that decodes the next picture mostly waits, row by row, for what it copies from
/// this one, which costs a quarter more processor time and holds every picture back.
constexpr int kPixelsForOneThread = 1920 * 1088;

/// It copies upright pictures too.
const char* const kTurn = "videoflip video-direction=auto !";

void replace(std::string& text, const std::string& mark, const std::string& value) {
  text.replace(text.find(mark), mark.size(), value);
}

/// Called for each element of a pipeline, of which only libav's decoders have this property.
void decodeOnOneThread(GstBin*, GstBin*, GstElement* element, gpointer) {
  const char* const property = "max-threads";
  if (g_object_class_find_property(G_OBJECT_GET_CLASS(element), property) != nullptr) {
    g_object_set(element, property, 1, nullptr);
  }
}

}  // namespace

StreamReader::StreamReader(std::string name, GstPtr<GstElement> pipeline)
    : name_(std::move(name)), pipeline_(std::move(pipeline)), sink_(element("sink")) {}

platform::Expected<StreamReader> StreamReader::open(std::string name, const std::string& line) {
  GstPtr<GstElement> pipeline = launch(line + " ! appsink name=sink sync=false max-buffers=4");
  if (pipeline) return StreamReader(std::move(name), std::move(pipeline));
  return platform::failure(name +
                           " can't be read or written: elements of GStreamer are missing; install "
                           "gstreamer1.0-plugins-base, -good and gstreamer1.0-libav.");
}

void StreamReader::useOneDecodingThread() {
  g_signal_connect(pipeline_.get(), "deep-element-added", G_CALLBACK(decodeOnOneThread), nullptr);
}

void StreamReader::start() {
  gst_element_set_state(pipeline_.get(), GST_STATE_PLAYING);
}

platform::Expected<GstPtr<GstSample>> StreamReader::pull() {
  for (int slice = 0; slice < kPullSlices; ++slice) {
    GstPtr<GstSample> sample(gst_app_sink_try_pull_sample(GST_APP_SINK(sink_), kPullSlice));
    if (sample) return sample;
    readMessages();
    if (error_) return platform::failure(missing_.value_or(*error_));
    if (gst_app_sink_is_eos(GST_APP_SINK(sink_))) return GstPtr<GstSample>();
  }
  return platform::failure(name_ + " can't be decoded any further: record it again.");
}

void StreamReader::readMessages() {
  const GstPtr<GstBus> bus(gst_element_get_bus(pipeline_.get()));
  const auto wanted = static_cast<GstMessageType>(GST_MESSAGE_ERROR | GST_MESSAGE_ELEMENT);
  while (const GstPtr<GstMessage> message{gst_bus_pop_filtered(bus.get(), wanted)}) {
    if (gst_is_missing_plugin_message(message.get())) {
      const GstPtr<gchar> what(gst_missing_plugin_message_get_description(message.get()));
      missing_ = name_ + " can't be decoded (" + what.get() + " is missing): " +
                 (isElementInstalled("avdec_h264") ? "convert it to H.264 and AAC in MP4."
                                                   : "install gstreamer1.0-libav.");
    } else if (GST_MESSAGE_TYPE(message.get()) == GST_MESSAGE_ERROR && !error_) {
      GError* raw = nullptr;
      gst_message_parse_error(message.get(), &raw, nullptr);
      const GstPtr<GError> error(raw);
      error_ = name_ + " is damaged (" + describe(*error) + "): record it again.";
    }
  }
}

std::optional<platform::Duration> StreamReader::timeOf(GstSample* sample) {
  const GstClockTime time =
      gst_segment_to_running_time(gst_sample_get_segment(sample), GST_FORMAT_TIME,
                                  GST_BUFFER_PTS(gst_sample_get_buffer(sample)));
  // Later than a century is no time either, and would not fit.
  if (!GST_CLOCK_TIME_IS_VALID(time) || time > clockTime(std::chrono::hours(24 * 36500))) return {};
  return platform::Duration(static_cast<platform::Duration::rep>(time));
}

platform::Expected<StreamReader> openStream(const std::filesystem::path& path,
                                            const std::string& stream,
                                            const std::string& conversion) {
  const auto demuxer = demuxerOf(path);
  if (!demuxer) return tl::unexpected(demuxer.error());
  // The demuxer stands outside of the decoding bin, which may swallow its errors and never end.
  auto reader = StreamReader::open(path.string(), "filesrc name=file ! " + *demuxer +
                                                      " name=demuxer demuxer." + stream +
                                                      " ! decodebin ! " + conversion);
  if (reader) g_object_set(reader->element("file"), "location", path.c_str(), nullptr);
  return reader;
}

VideoReader::VideoReader(const std::filesystem::path& path, const MediaInfo& info,
                         StreamReader reader)
    : name_(path.string()), info_(info), reader_(std::move(reader)) {}

platform::Expected<std::unique_ptr<VideoReader>> VideoReader::open(
    const std::filesystem::path& path, const MediaInfo& info) {
  std::string conversion = kPictureConversion;
  replace(conversion, "%o", info.isUpright ? "" : kTurn);
  replace(conversion, "%w", std::to_string(info.width));
  replace(conversion, "%h", std::to_string(info.height));
  auto reader = openStream(path, "video_0", conversion);
  if (!reader) return tl::unexpected(reader.error());
  if (info.width * info.height <= kPixelsForOneThread) reader->useOneDecodingThread();
  reader->start();
  return std::unique_ptr<VideoReader>(new VideoReader(path, info, std::move(*reader)));
}

platform::Expected<bool> VideoReader::placePicture(GstSample* sample) {
  const auto usual = platform::seconds(1 / info_.frameRate);
  auto time = StreamReader::timeOf(sample);
  if (!origin_) origin_ = time.value_or(platform::Duration::zero());
  const platform::Duration place =
      time ? *time - *origin_ : last_.value_or(platform::Duration::zero()) + usual;
  if (last_ && place - *last_ > kLongestGap) {
    return platform::failure(name_ + " stands still for " +
                             std::to_string(std::llround(platform::inSeconds(place - *last_))) +
                             " s: its times are wrong; record it again.");
  }
  if (last_ && place - *last_ < kShortestGap) return false;
  last_ = place;
  return true;
}

platform::Expected<std::optional<VideoReader::Picture>> VideoReader::next() {
  for (;;) {
    const auto sample = reader_.pull();
    if (!sample) return tl::unexpected(sample.error());
    if (!*sample) return std::optional<Picture>();
    const auto placed = placePicture(sample->get());
    if (!placed) return tl::unexpected(placed.error());
    if (!*placed) continue;
    platform::PixelBufferRef image = copyPicture(sample->get(), platform::PixelFormat::i420);
    if (!image) return platform::failure(name_ + " holds a picture that can't be read.");
    return Picture{std::move(image), *last_};
  }
}

AudioReader::AudioReader(StreamReader reader) : reader_(std::move(reader)) {}

platform::Expected<std::unique_ptr<AudioReader>> AudioReader::open(
    const std::filesystem::path& path) {
  auto reader = openStream(path, "audio_0", kSoundConversion);
  if (!reader) return tl::unexpected(reader.error());
  reader->start();
  return std::unique_ptr<AudioReader>(new AudioReader(std::move(*reader)));
}

platform::Expected<void> AudioReader::begin(platform::Duration origin) {
  origin_ = origin;
  return readChunk();
}

std::int64_t AudioReader::chunkEnd() const {
  return chunkStart_ + static_cast<std::int64_t>(chunk_.size());
}

platform::Expected<void> AudioReader::readChunk() {
  const auto sample = reader_.pull();
  if (!sample) return tl::unexpected(sample.error());
  if (!*sample) {
    ended_ = true;
    return {};
  }
  const std::int64_t expected = chunkEnd();
  chunkStart_ = expected;
  if (const auto time = StreamReader::timeOf(sample->get())) {
    const std::int64_t start = std::llround(platform::inSeconds(*time - origin_) * kSampleRate);
    if (!started_ || start - expected > kSoundJump) chunkStart_ = start;
  }
  started_ = true;
  GstBuffer* buffer = gst_sample_get_buffer(sample->get());
  chunk_.resize(gst_buffer_get_size(buffer) / sizeof(std::int16_t));
  gst_buffer_extract(buffer, 0, chunk_.data(), chunk_.size() * sizeof(std::int16_t));
  return {};
}

platform::Expected<std::vector<std::int16_t>> AudioReader::read(std::int64_t position,
                                                                std::int64_t count) {
  std::vector<std::int16_t> out(static_cast<std::size_t>(count), 0);
  const std::int64_t end = position + count;
  while (!ended_) {
    const std::int64_t from = std::max(position, chunkStart_);
    const std::int64_t until = std::min(end, chunkEnd());
    if (from < until) {
      std::copy_n(chunk_.begin() + (from - chunkStart_), until - from,
                  out.begin() + (from - position));
    }
    if (chunkEnd() >= end) break;
    if (const auto chunk = readChunk(); !chunk) return tl::unexpected(chunk.error());
  }
  return out;
}

}  // namespace corvana::devices
