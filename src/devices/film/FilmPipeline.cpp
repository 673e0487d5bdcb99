#include "devices/film/FilmPipeline.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <utility>

#include <gst/app/gstappsrc.h>
#include <gst/audio/audio.h>

#include "devices/film/FilmFault.h"
#include "devices/film/FilmRemux.h"
#include "devices/film/FilmSettings.h"
#include "devices/film/FilmTap.h"
#include "devices/gstreamer/GstPicture.h"

namespace corvana::devices {

using platform::Fault;
using platform::FaultCause;

namespace {

/// Far more than an encoder needs for what waits in front of it: only a hung one takes so long.
constexpr auto kAnswerLimit = std::chrono::seconds(60);
/// A fragment plays once all of it is written: half of the second that a film may lose.
constexpr int kFragmentMilliseconds = 500;
/// The muxer takes no picture before it has its sound, which may come this much later: an encoder
/// that waited meanwhile would keep the caller from handing over the sound.
constexpr const char* kUntilItsSound =
    "queue max-size-buffers=0 max-size-bytes=0 max-size-time=1000000000 ! ";  // in nanoseconds

std::string replaced(std::string text, const std::string& mark, int value) {
  for (auto at = text.find(mark); at != std::string::npos; at = text.find(mark)) {
    text.replace(at, mark.size(), std::to_string(value));
  }
  return text;
}

Fault faultOf(const std::filesystem::path& path, const GError& error) {
  if (g_error_matches(&error, GST_RESOURCE_ERROR, GST_RESOURCE_ERROR_NO_SPACE_LEFT)) {
    return filmFault(path, "written", "the disk is full", FaultCause::diskFull);
  }
  if (error.domain == GST_RESOURCE_ERROR) {
    return filmFault(path, "written", describe(error), FaultCause::folderLost);
  }
  return filmFault(path, "encoded", describe(error), FaultCause::filmFailed);
}

}  // namespace

/// Shared with the streaming threads and with every frame on its way, which may outlive the film.
struct FilmPipeline::State {
  std::filesystem::path path;
  std::mutex mutex;
  std::condition_variable changed;
  int framesWaiting = 0;
  bool ended = false;
  std::optional<Fault> error;

  void fail(Fault fault) {
    const std::lock_guard lock(mutex);
    if (!error) error = std::move(fault);
    changed.notify_all();
  }

  template <class Condition>
  void wait(std::unique_lock<std::mutex>& lock, Condition condition) {
    if (changed.wait_for(lock, kAnswerLimit, [&] { return error || condition(); })) return;
    error =
        filmFault(path, "encoded", "the encoder does not answer any more", FaultCause::filmFailed);
  }

  static GstBusSyncReply onMessage(GstBus*, GstMessage* message, gpointer data) {
    State& state = **static_cast<std::shared_ptr<State>*>(data);
    if (GST_MESSAGE_TYPE(message) == GST_MESSAGE_ERROR) {
      GError* raw = nullptr;
      gst_message_parse_error(message, &raw, nullptr);
      const GstPtr<GError> error(raw);
      state.fail(faultOf(state.path, *error));
    } else if (GST_MESSAGE_TYPE(message) == GST_MESSAGE_EOS) {
      const std::lock_guard lock(state.mutex);
      state.ended = true;
      state.changed.notify_all();
    }
    gst_message_unref(message);
    return GST_BUS_DROP;
  }

  static void release(gpointer data) { delete static_cast<std::shared_ptr<State>*>(data); }
};

namespace {

/// Keeps a frame's memory alive while the encoder reads it, and counts it out.
template <class State>
struct FrameHold {
  platform::PixelBufferRef image;
  std::shared_ptr<State> state;

  static void release(gpointer data) {
    const std::unique_ptr<FrameHold> hold(static_cast<FrameHold*>(data));
    const std::lock_guard lock(hold->state->mutex);
    --hold->state->framesWaiting;
    hold->state->changed.notify_all();
  }
};

}  // namespace

std::string FilmPipeline::launchLine(const FilmFormat& format) {
  const std::string source = " format=time max-bytes=0 max-buffers=0 max-time=0 ! ";
  const VideoEncoder& encoder = format.videoEncoder;
  std::string settings = replaced(encoder.settings, "%b", format.videoBitRate / 1000);
  settings = replaced(settings, "%B", format.videoBitRate);
  settings = replaced(settings, "%k", format.keyFrameInterval);
  // What the encoder is given stays the same whatever becomes of the camera's pictures.
  const std::string pictures = "video/x-raw,format=" + encoder.pictureFormat +
                               ",width=" + std::to_string(format.width) +
                               ",height=" + std::to_string(format.height) +
                               ",pixel-aspect-ratio=1/1,colorimetry=bt601,chroma-site=mpeg2 ! ";
  std::string line =
      "mp4mux name=mux streamable=true fragment-duration=" + std::to_string(kFragmentMilliseconds) +
      " ! fdsink name=file sync=false async=false appsrc name=video" + source +
      "videoconvert ! videoscale add-borders=true ! " + pictures + encoder.element + " " +
      settings + " ! " + format.profileCaps + " ! " +
      (encoder.parser.empty() ? "" : encoder.parser + " ! ") + kUntilItsSound + "mux.video_0";
  if (!format.hasAudio) return line;
  return line + " appsrc name=audio" + source + "audioconvert ! " + format.audioEncoder.element +
         " bitrate=" + std::to_string(format.audioBitRate) + " ! mux.audio_0";
}

FilmPipeline::FilmPipeline(const FilmFormat& format, std::shared_ptr<FilmFile> file)
    : format_(format),
      file_(std::move(file)),
      state_(std::make_shared<State>()),
      pipeline_(launch(launchLine(format))) {
  state_->path = file_->path();
}

FilmPipeline::~FilmPipeline() {
  if (pipeline_) gst_element_set_state(pipeline_.get(), GST_STATE_NULL);
}

void FilmPipeline::configureSources() {
  video_ = child(pipeline_, "video");
  if (!format_.hasAudio) return;

  audio_ = child(pipeline_, "audio");
  GstAudioInfo audio;
  gst_audio_info_set_format(&audio, GST_AUDIO_FORMAT_S16, format_.sampleRate, format_.channels,
                            nullptr);
  const GstPtr<GstCaps> audioCaps(gst_audio_info_to_caps(&audio));
  gst_app_src_set_caps(GST_APP_SRC(audio_), audioCaps.get());
}

void FilmPipeline::show(const std::shared_ptr<FilmWitness>& witness) {
  GstElement* mux = child(pipeline_, "mux");
  tapTrack(mux, "video_0", FilmTrack::video, witness);
  if (format_.hasAudio) tapTrack(mux, "audio_0", FilmTrack::audio, witness);
}

platform::Expected<std::unique_ptr<FilmPipeline>> FilmPipeline::start(
    const FilmFormat& format, std::shared_ptr<FilmFile> file,
    const std::shared_ptr<FilmWitness>& witness) {
  std::unique_ptr<FilmPipeline> film(new FilmPipeline(format, std::move(file)));
  if (!film->pipeline_) {
    return platform::failure("The film " + film->file_->path().string() +
                                 " can't be encoded: elements of GStreamer are missing; install "
                                 "gstreamer1.0-plugins-good, -ugly and gstreamer1.0-libav.",
                             FaultCause::filmFailed);
  }
  film->configureSources();
  setVideoTimescale(child(film->pipeline_, "mux"));
  if (witness) film->show(witness);
  g_object_set(child(film->pipeline_, "file"), "fd", film->file_->descriptor(), nullptr);

  const GstPtr<GstBus> bus(gst_element_get_bus(film->pipeline_.get()));
  gst_bus_set_sync_handler(bus.get(), &State::onMessage, new std::shared_ptr<State>(film->state_),
                           &State::release);
  if (gst_element_set_state(film->pipeline_.get(), GST_STATE_PLAYING) == GST_STATE_CHANGE_FAILURE) {
    film->state_->fail(filmFault(film->file_->path(), "begun", "the encoder does not start",
                                 FaultCause::filmFailed));
    return tl::unexpected(*film->error());
  }
  return film;
}

int FilmPipeline::framesWaiting() const {
  const std::lock_guard lock(state_->mutex);
  return state_->framesWaiting;
}

bool FilmPipeline::waitForRoom(int limit) {
  std::unique_lock lock(state_->mutex);
  state_->wait(lock, [&] { return state_->framesWaiting < limit; });
  return !state_->error;
}

void FilmPipeline::announce(const platform::PixelBuffer& image) {
  GstPtr<GstCaps> caps = pictureCaps(image.format(), even(image.width()), even(image.height()),
                                     format_.framesPerSecond);
  if (pictureCaps_ && gst_caps_is_equal(caps.get(), pictureCaps_.get())) return;
  gst_app_src_set_caps(GST_APP_SRC(video_), caps.get());
  pictureCaps_ = std::move(caps);
}

void FilmPipeline::pushVideo(platform::PixelBufferRef image, platform::Duration time,
                             platform::Duration duration) {
  using Hold = FrameHold<State>;
  {
    const std::lock_guard lock(state_->mutex);
    ++state_->framesWaiting;
  }
  const platform::PixelBuffer& pixels = *image;
  announce(pixels);
  GstPtr<GstBuffer> buffer = wrapPicture(pixels, even(pixels.width()), even(pixels.height()),
                                         new Hold{std::move(image), state_}, &Hold::release);
  GST_BUFFER_PTS(buffer.get()) = clockTime(time);
  GST_BUFFER_DURATION(buffer.get()) = clockTime(duration);
  gst_app_src_push_buffer(GST_APP_SRC(video_), buffer.release());
}

void FilmPipeline::pushAudio(const std::vector<std::int16_t>& samples, std::int64_t position) {
  // The encoder adds a start of its own: leaving that much out keeps sound and picture in step.
  const auto rate = static_cast<guint64>(format_.sampleRate);
  const std::int64_t count = static_cast<std::int64_t>(samples.size()) / format_.channels;
  const std::int64_t skipped =
      std::clamp<std::int64_t>(format_.audioEncoder.delay - position, 0, count);
  if (skipped == count) return;
  const auto bytes =
      static_cast<gsize>((count - skipped) * format_.channels) * sizeof(std::int16_t);
  GstBuffer* buffer = gst_buffer_new_memdup(samples.data() + skipped * format_.channels, bytes);
  const auto first = static_cast<guint64>(position + skipped - format_.audioEncoder.delay);
  const auto end = static_cast<guint64>(position + count - format_.audioEncoder.delay);
  GST_BUFFER_PTS(buffer) = gst_util_uint64_scale(first, GST_SECOND, rate);
  GST_BUFFER_DURATION(buffer) =
      gst_util_uint64_scale(end, GST_SECOND, rate) - GST_BUFFER_PTS(buffer);
  gst_app_src_push_buffer(GST_APP_SRC(audio_), buffer);
}

platform::Expected<void> FilmPipeline::finish() {
  gst_app_src_end_of_stream(GST_APP_SRC(video_));
  if (audio_) gst_app_src_end_of_stream(GST_APP_SRC(audio_));
  {
    std::unique_lock lock(state_->mutex);
    state_->wait(lock, [&] { return state_->ended; });
  }
  gst_element_set_state(pipeline_.get(), GST_STATE_NULL);
  if (const auto fault = error()) return tl::unexpected(*fault);
  return {};
}

std::optional<Fault> FilmPipeline::error() const {
  const std::lock_guard lock(state_->mutex);
  return state_->error;
}

}  // namespace corvana::devices
