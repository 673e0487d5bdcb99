#include "devices/live/LiveFile.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdint>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

#include <gst/app/gstappsrc.h>

#include "devices/gstreamer/GstPicture.h"
#include "devices/recorded/MediaProbe.h"
#include "devices/recorded/StreamReader.h"
#include "platform/foundation/Fault.h"

namespace corvana::devices {
namespace {

/// What is read ahead hides the moment that opening the file anew takes.
const char* const kHead =
    "appsrc name=source is-live=true format=time ! "
    "queue max-size-buffers=%n max-size-bytes=0 max-size-time=0 ! clocksync";
constexpr const char* kPicturesAhead = "15";
constexpr const char* kSoundsAhead = "25";
constexpr std::int64_t kSoundSamples = AudioReader::kSampleRate / 50;
constexpr const char* kName = "Recorded file played live";

std::string head(const char* ahead) {
  std::string line = kHead;
  return line.replace(line.find("%n"), 2, ahead);
}

GstClockTime timeOf(std::int64_t samples) {
  return gst_util_uint64_scale(static_cast<guint64>(samples), GST_SECOND, AudioReader::kSampleRate);
}

GstClockTime clockNow() {
  const GstPtr<GstClock> clock(gst_system_clock_obtain());
  return gst_clock_get_time(clock.get());
}

void push(GstAppSrc* source, GstPtr<GstBuffer> buffer, GstClockTime instant) {
  GST_BUFFER_PTS(buffer.get()) = instant - gst_element_get_base_time(GST_ELEMENT(source));
  gst_app_src_push_buffer(source, buffer.release());
}

void fail(GstAppSrc* source, const std::string& sentence) {
  GST_ELEMENT_ERROR(source, STREAM, DECODE, ("%s", sentence.c_str()), (nullptr));
  gst_app_src_end_of_stream(source);
}

/// Feeds both pipelines; each calls it on a thread of its own.
class FilePlayer final : public std::enable_shared_from_this<FilePlayer> {
 public:
  /// The error is one sentence, as of `probe`.
  static platform::Expected<std::shared_ptr<FilePlayer>> open(const std::filesystem::path& path);

  LiveSource camera();
  /// In step with the camera; absent when the file has no sound.
  std::optional<LiveSource> microphone();

 private:
  FilePlayer(std::filesystem::path path, const MediaInfo& info);
  static void onPictureNeeded(GstAppSrc* source, guint, gpointer data);
  static void onSoundNeeded(GstAppSrc* source, guint, gpointer data);

  void feedPicture(GstAppSrc* source);
  void feedSound(GstAppSrc* source);
  platform::Expected<VideoReader::Picture> nextPicture();
  platform::Expected<std::vector<std::int16_t>> sound(std::int64_t position);
  platform::Expected<void> rewindPictures();
  platform::Expected<void> rewindSound();

  const std::filesystem::path path_;
  const MediaInfo info_;
  const std::int64_t length_;         ///< of one round, in samples
  platform::Duration soundOrigin_{};  ///< of the first picture on the file's time line
  std::atomic<bool> begun_ = false;

  /// GStreamer's clock when the first round begins.
  std::mutex mutex_;
  std::optional<GstClockTime> origin_;  // guarded by mutex_

  // The camera's thread only.
  std::unique_ptr<VideoReader> pictures_;
  platform::PixelBufferRef first_;
  std::optional<GstClockTime> still_;  ///< clock time of the next picture before the first round
  std::int64_t pictureRound_ = 0;

  // The microphone's thread only.
  std::unique_ptr<AudioReader> sound_;
  std::optional<GstClockTime> soundAt_;  ///< clock time of the next sound
  std::int64_t soundRound_ = 0;
};

std::function<void(GstElement*)> feeding(std::shared_ptr<FilePlayer> player, GstPtr<GstCaps> caps,
                                         void (*need)(GstAppSrc*, guint, gpointer)) {
  const std::shared_ptr<GstCaps> kept(caps.release(), gst_caps_unref);
  return [player = std::move(player), kept, need](GstElement* source) {
    g_object_set(source, "caps", kept.get(), nullptr);
    GstAppSrcCallbacks callbacks{};
    callbacks.need_data = need;
    gst_app_src_set_callbacks(GST_APP_SRC(source), &callbacks, player.get(), nullptr);
  };
}

FilePlayer::FilePlayer(std::filesystem::path path, const MediaInfo& info)
    : path_(std::move(path)),
      info_(info),
      length_(std::llround(platform::inSeconds(info.duration) * AudioReader::kSampleRate)) {}

platform::Expected<std::shared_ptr<FilePlayer>> FilePlayer::open(
    const std::filesystem::path& path) {
  const auto info = probe(path);
  if (!info) return tl::unexpected(info.error());
  std::shared_ptr<FilePlayer> player(new FilePlayer(path, *info));
  if (auto opened = player->rewindPictures(); !opened) return tl::unexpected(opened.error());
  auto first = player->pictures_->next();
  if (!first) return tl::unexpected(first.error());
  if (!*first) return platform::failure(path.string() + " holds no picture: record it again.");
  player->first_ = (*first)->image;
  player->soundOrigin_ = player->pictures_->origin();
  if (auto again = player->rewindPictures(); !again) return tl::unexpected(again.error());
  return player;
}

LiveSource FilePlayer::camera() {
  const int rate = std::max(static_cast<int>(std::lround(info_.frameRate)), 1);
  auto caps = pictureCaps(platform::PixelFormat::i420, info_.width, info_.height, rate);
  return {kName, true, head(kPicturesAhead),
          feeding(shared_from_this(), std::move(caps), onPictureNeeded),
          [self = shared_from_this()] { self->begun_ = true; }};
}

std::optional<LiveSource> FilePlayer::microphone() {
  if (!info_.hasAudio) return {};
  GstPtr<GstCaps> caps(gst_caps_new_simple(
      "audio/x-raw", "format", G_TYPE_STRING, "S16LE", "rate", G_TYPE_INT, AudioReader::kSampleRate,
      "channels", G_TYPE_INT, 1, "layout", G_TYPE_STRING, "interleaved", nullptr));
  return LiveSource{kName, true, head(kSoundsAhead),
                    feeding(shared_from_this(), std::move(caps), onSoundNeeded), nullptr};
}

void FilePlayer::onPictureNeeded(GstAppSrc* source, guint, gpointer data) {
  static_cast<FilePlayer*>(data)->feedPicture(source);
}

void FilePlayer::onSoundNeeded(GstAppSrc* source, guint, gpointer data) {
  static_cast<FilePlayer*>(data)->feedSound(source);
}

void FilePlayer::feedPicture(GstAppSrc* source) {
  if (!still_) still_ = clockNow();
  VideoReader::Picture picture{first_, {}};
  GstClockTime instant = *still_;
  if (begun_) {
    auto next = nextPicture();
    if (!next) return fail(source, next.error().sentence);
    picture = std::move(*next);
    const std::lock_guard lock(mutex_);
    if (!origin_) origin_ = *still_;
    instant = *origin_ + clockTime(picture.time);
  } else {
    *still_ += clockTime(platform::seconds(1 / info_.frameRate));
  }
  auto* hold = new platform::PixelBufferRef(picture.image);
  const auto letGo = [](gpointer kept) { delete static_cast<platform::PixelBufferRef*>(kept); };
  push(source, wrapPicture(*picture.image, info_.width, info_.height, hold, letGo), instant);
}

platform::Expected<VideoReader::Picture> FilePlayer::nextPicture() {
  const auto round = platform::Duration(static_cast<platform::Duration::rep>(timeOf(length_)));
  for (;;) {
    auto next = pictures_->next();
    if (!next) return tl::unexpected(next.error());
    if (*next && (*next)->time < round) {
      return VideoReader::Picture{std::move((*next)->image), (*next)->time + pictureRound_ * round};
    }
    if (auto again = rewindPictures(); !again) return tl::unexpected(again.error());
    ++pictureRound_;
  }
}

platform::Expected<void> FilePlayer::rewindPictures() {
  auto reader = VideoReader::open(path_, info_);
  if (!reader) return tl::unexpected(reader.error());
  pictures_ = std::move(*reader);
  return {};
}

void FilePlayer::feedSound(GstAppSrc* source) {
  if (!soundAt_) soundAt_ = clockNow();
  std::vector<std::int16_t> samples(kSoundSamples, 0);
  std::optional<GstClockTime> origin;
  {
    const std::lock_guard lock(mutex_);
    origin = origin_;
  }
  if (origin && *soundAt_ >= *origin) {
    const auto position =
        gst_util_uint64_scale_round(*soundAt_ - *origin, AudioReader::kSampleRate, GST_SECOND);
    auto read = sound(static_cast<std::int64_t>(position));
    if (!read) return fail(source, read.error().sentence);
    samples = std::move(*read);
  }
  const gsize size = samples.size() * sizeof(std::int16_t);
  GstPtr<GstBuffer> buffer(gst_buffer_new_allocate(nullptr, size, nullptr));
  gst_buffer_fill(buffer.get(), 0, samples.data(), size);
  push(source, std::move(buffer), *soundAt_);
  *soundAt_ += timeOf(kSoundSamples);
}

platform::Expected<std::vector<std::int16_t>> FilePlayer::sound(std::int64_t position) {
  std::vector<std::int16_t> out;
  while (std::ssize(out) < kSoundSamples) {
    if (!sound_ || position / length_ != soundRound_) {
      if (auto again = rewindSound(); !again) return tl::unexpected(again.error());
      soundRound_ = position / length_;
    }
    const std::int64_t place = position % length_;
    const auto count = std::min(kSoundSamples - std::ssize(out), length_ - place);
    const auto part = sound_->read(place, count);
    if (!part) return tl::unexpected(part.error());
    out.insert(out.end(), part->begin(), part->end());
    position += count;
  }
  return out;
}

platform::Expected<void> FilePlayer::rewindSound() {
  auto reader = AudioReader::open(path_);
  if (!reader) return tl::unexpected(reader.error());
  sound_ = std::move(*reader);
  return sound_->begin(soundOrigin_);
}

}  // namespace

platform::Expected<LiveFile> openLiveFile(const std::filesystem::path& path) {
  return FilePlayer::open(path).map([](const auto& player) {
    return LiveFile{player->camera(), player->microphone()};
  });
}

}  // namespace corvana::devices
