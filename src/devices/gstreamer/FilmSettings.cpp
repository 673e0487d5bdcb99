#include "devices/gstreamer/FilmSettings.h"

#include <algorithm>
#include <any>

namespace devices {
namespace {

using platform::WriterSettings;

constexpr int kVoiceSampleRate = 48000;
constexpr int kVoiceBitRate = 96000;
constexpr int kDefaultVideoBitRate = 4'000'000;
/// One a second at the usual rate: a player finds any place at once.
constexpr int kKeyFrameInterval = 30;

template <class Value>
Value setting(const WriterSettings& settings, const char* key, Value fallback) {
  const auto found = settings.find(key);
  if (found == settings.end()) return fallback;
  const Value* value = std::any_cast<Value>(&found->second);
  return value ? *value : fallback;
}

struct Range {
  const char* key;
  int value;
  int least;
  int most;
};

tl::expected<void, std::string> check(const Range& range) {
  if (range.value >= range.least && range.value <= range.most) return {};
  return tl::unexpected(std::string("The film setting ") + range.key + " is " +
                        std::to_string(range.value) + "; it must lie between " +
                        std::to_string(range.least) + " and " + std::to_string(range.most) + ".");
}

tl::expected<void, std::string> readVideo(const WriterSettings& settings, FilmFormat& format) {
  const auto codec =
      setting<std::string>(settings, platform::kAVVideoCodecKey, platform::kAVVideoCodecTypeH264);
  const auto encoder = encoderFor(codec);
  if (!encoder) {
    return tl::unexpected("No encoder for video of type " + codec +
                          " is installed: install gstreamer1.0-plugins-ugly.");
  }
  format.videoEncoder = *encoder;
  format.videoBitRate =
      setting(settings, platform::kAVVideoAverageBitRateKey, kDefaultVideoBitRate);
  format.keyFrameInterval =
      setting(settings, platform::kAVVideoMaxKeyFrameIntervalKey, kKeyFrameInterval);
  return check({platform::kAVVideoAverageBitRateKey, format.videoBitRate, 100'000, 100'000'000})
      .and_then([&] {
        return check({platform::kAVVideoMaxKeyFrameIntervalKey, format.keyFrameInterval, 1, 3000});
      });
}

tl::expected<void, std::string> readAudio(const WriterSettings& settings, FilmFormat& format) {
  const auto encoder = aacEncoder();
  if (!encoder) {
    return tl::unexpected(
        std::string("No encoder for AAC sound is installed: install gstreamer1.0-libav."));
  }
  format.hasAudio = true;
  format.audioEncoder = *encoder;
  format.sampleRate = setting(settings, platform::kAVSampleRateKey, kVoiceSampleRate);
  format.channels = setting(settings, platform::kAVNumberOfChannelsKey, 1);
  format.audioBitRate = setting(settings, platform::kAVEncoderBitRateKey, kVoiceBitRate);
  return check({platform::kAVSampleRateKey, format.sampleRate, 8000, 96000})
      .and_then([&] {
        return check({platform::kAVNumberOfChannelsKey, format.channels, 1, 2});
      })
      .and_then([&] {
        return check({platform::kAVEncoderBitRateKey, format.audioBitRate, 16'000, 320'000});
      });
}

}  // namespace

WriterSettings videoSettings(const platform::AVVideoCodecType& codec, int width, int height) {
  // About four bits a second for each pixel keep the print of a card legible; HEVC needs less.
  const int bitsPerPixel = codec == platform::kAVVideoCodecTypeHEVC ? 3 : 4;
  const int bitRate = std::clamp(width * height * bitsPerPixel, 1'000'000, 20'000'000);
  return {{platform::kAVVideoCodecKey, codec},
          {platform::kAVVideoWidthKey, width},
          {platform::kAVVideoHeightKey, height},
          {platform::kAVVideoAverageBitRateKey, bitRate},
          {platform::kAVVideoMaxKeyFrameIntervalKey, kKeyFrameInterval}};
}

WriterSettings audioSettings() {
  return {{platform::kAVFormatIDKey, std::string("aac ")},
          {platform::kAVSampleRateKey, kVoiceSampleRate},
          {platform::kAVNumberOfChannelsKey, 1},
          {platform::kAVEncoderBitRateKey, kVoiceBitRate}};
}

tl::expected<FilmFormat, std::string> filmFormat(const std::optional<WriterSettings>& video,
                                                 const std::optional<WriterSettings>& audio) {
  FilmFormat format;
  if (const auto read = readVideo(video.value_or(WriterSettings{}), format); !read) {
    return tl::unexpected(read.error());
  }
  if (!audio) return format;
  if (const auto read = readAudio(*audio, format); !read) return tl::unexpected(read.error());
  return format;
}

}  // namespace devices
