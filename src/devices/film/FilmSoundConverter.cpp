#include "devices/film/FilmSoundConverter.h"

#include <utility>
#include <vector>

#include <gst/audio/audio.h>

#include "devices/gstreamer/GstSupport.h"

namespace corvana::devices {
namespace {

constexpr int kLeastRate = 4000;
constexpr int kMostRate = 384'000;

GstAudioInfo infoOf(int sampleRate, int channels) {
  GstAudioInfo info;
  gst_audio_info_set_format(&info, GST_AUDIO_FORMAT_S16, sampleRate, channels, nullptr);
  return info;
}

struct Free {
  void operator()(GstAudioConverter* converter) const { gst_audio_converter_free(converter); }
};

platform::Duration durationOf(std::int64_t frames, int sampleRate) {
  return platform::Duration(frames * 1'000'000'000 / sampleRate);
}

}  // namespace

struct FilmSoundConverter::Run {
  int sampleRate;
  int channels;
  std::unique_ptr<GstAudioConverter, Free> converter;
  std::int64_t framesIn = 0;
  std::int64_t framesOut = 0;
};

FilmSoundConverter::FilmSoundConverter(int sampleRate, int channels)
    : sampleRate_(sampleRate), channels_(channels) {}

FilmSoundConverter::~FilmSoundConverter() = default;

platform::CMSampleBufferRef FilmSoundConverter::convert(const platform::CMSampleBufferRef& buffer) {
  if (buffer->sampleRate == sampleRate_ && buffer->channels == channels_) {
    run_.reset();
    return buffer;
  }
  if (buffer->sampleRate < kLeastRate || buffer->sampleRate > kMostRate || buffer->channels < 1 ||
      buffer->channels > 2) {
    return nullptr;
  }
  if (!run_ || run_->sampleRate != buffer->sampleRate || run_->channels != buffer->channels) {
    initGStreamer();
    GstAudioInfo in = infoOf(buffer->sampleRate, buffer->channels);
    GstAudioInfo out = infoOf(sampleRate_, channels_);
    run_ =
        std::make_unique<Run>(Run{buffer->sampleRate, buffer->channels,
                                  std::unique_ptr<GstAudioConverter, Free>(gst_audio_converter_new(
                                      GST_AUDIO_CONVERTER_FLAG_NONE, &in, &out, nullptr))});
  }
  auto converted = std::make_shared<platform::CMSampleBuffer>(*buffer);
  converted->sampleRate = sampleRate_;
  converted->channels = channels_;
  // The converter holds a little back, which comes first the next time.
  converted->presentationTime -=
      durationOf(run_->framesIn, buffer->sampleRate) - durationOf(run_->framesOut, sampleRate_);
  const gsize framesIn = buffer->samples.size() / static_cast<gsize>(buffer->channels);
  const gsize framesOut = gst_audio_converter_get_out_frames(run_->converter.get(), framesIn);
  converted->samples.assign(framesOut * static_cast<gsize>(channels_), 0);
  // The library takes the source as writable and does not write to it.
  gpointer source = const_cast<std::int16_t*>(buffer->samples.data());
  gpointer target = converted->samples.data();
  gst_audio_converter_samples(run_->converter.get(), GST_AUDIO_CONVERTER_FLAG_NONE, &source,
                              framesIn, &target, framesOut);
  run_->framesIn += static_cast<std::int64_t>(framesIn);
  run_->framesOut += static_cast<std::int64_t>(framesOut);
  return converted;
}

}  // namespace corvana::devices
