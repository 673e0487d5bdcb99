#include "devices/film/FilmSettings.h"

#include <algorithm>
#include <any>

#include "platform/foundation/Fault.h"

namespace corvana::devices {
namespace {

using platform::WriterSettings;

constexpr const char* kAac = "aac ";
constexpr int kVoiceSampleRate = 48000;
constexpr int kVoiceBitRate = 96000;
constexpr int kDefaultVideoBitRate = 4'000'000;
/// One a second at the usual rate: a player finds any place at once.
constexpr int kKeyFrameInterval = 30;

struct Profile {
  const char* name;
  const char* codec;
  const char* caps;
};

/// The first of a codec is its default.
constexpr Profile kProfiles[] = {
    {platform::kAVVideoProfileLevelH264HighAutoLevel, platform::kAVVideoCodecTypeH264,
     "video/x-h264,profile=high"},
    {platform::kAVVideoProfileLevelH264MainAutoLevel, platform::kAVVideoCodecTypeH264,
     "video/x-h264,profile=main"},
    {platform::kAVVideoProfileLevelH264BaselineAutoLevel, platform::kAVVideoCodecTypeH264,
     "video/x-h264,profile=constrained-baseline"},
    {platform::kAVVideoProfileLevelHEVCMainAutoLevel, platform::kAVVideoCodecTypeHEVC,
     "video/x-h265,profile=main"},
};

const char* defaultProfile(const platform::AVVideoCodecType& codec) {
  const auto profile = std::ranges::find(kProfiles, codec, &Profile::codec);
  return profile == std::end(kProfiles) ? "" : profile->name;
}

struct Range {
  int least;
  int most;
};

/// Settings one by one; the first fault stays.
class SettingsReader {
 public:
  template <class Value>
  Value value(const WriterSettings& settings, const char* key, Value fallback) {
    const auto found = settings.find(key);
    if (found == settings.end()) return fallback;
    if (const Value* value = std::any_cast<Value>(&found->second)) return *value;
    refuse(key, "is of another type than it must be; see WriterSettings.h");
    return fallback;
  }

  int number(const WriterSettings& settings, const char* key, int fallback, Range range) {
    const int number = value(settings, key, fallback);
    if (settings.contains(key) && (number < range.least || number > range.most)) {
      refuse(key, "is " + std::to_string(number) + "; it must lie between " +
                      std::to_string(range.least) + " and " + std::to_string(range.most));
    }
    return number;
  }

  void refuse(const std::string& key, const std::string& why) {
    refuse("The film setting " + key + " " + why + ".");
  }
  void refuse(const std::string& sentence) {
    if (!fault_) fault_ = sentence;
  }

  const std::optional<std::string>& fault() const { return fault_; }

 private:
  std::optional<std::string> fault_;
};

void readSize(SettingsReader& reader, const WriterSettings& settings, FilmFormat& format) {
  constexpr Range kSizes{kLeastFilmSize, kMostFilmSize};
  format.width = reader.number(settings, platform::kAVVideoWidthKey, 0, kSizes);
  format.height = reader.number(settings, platform::kAVVideoHeightKey, 0, kSizes);
  if (format.width % 2 != 0 || format.height % 2 != 0 ||
      (format.width == 0) != (format.height == 0)) {
    reader.refuse(
        "The film settings AVVideoWidthKey and AVVideoHeightKey belong together and "
        "must be even.");
  }
}

std::string profileCaps(SettingsReader& reader, const WriterSettings& compression,
                        const platform::AVVideoCodecType& codec) {
  const auto name = reader.value<std::string>(compression, platform::kAVVideoProfileLevelKey,
                                              defaultProfile(codec));
  std::string known;
  for (const Profile& profile : kProfiles) {
    if (profile.codec != codec) continue;
    if (profile.name == name) return profile.caps;
    known += (known.empty() ? "" : ", ") + std::string(profile.name);
  }
  reader.refuse(platform::kAVVideoProfileLevelKey,
                "is " + name + "; for " + codec + " it must be one of " + known);
  return {};
}

void readVideo(SettingsReader& reader, const WriterSettings& settings, FilmFormat& format) {
  const auto codec = reader.value<std::string>(settings, platform::kAVVideoCodecKey,
                                               platform::kAVVideoCodecTypeH264);
  const auto encoder = encoderFor(codec);
  if (!encoder) {
    return reader.refuse("No encoder for video of type " + codec +
                         " is installed: install gstreamer1.0-plugins-ugly for avc1, "
                         "gstreamer1.0-plugins-bad for hvc1.");
  }
  format.videoEncoder = *encoder;
  readSize(reader, settings, format);
  const auto compression =
      reader.value(settings, platform::kAVVideoCompressionPropertiesKey, WriterSettings{});
  format.videoBitRate = reader.number(compression, platform::kAVVideoAverageBitRateKey,
                                      kDefaultVideoBitRate, {100'000, 100'000'000});
  format.keyFrameInterval = reader.number(compression, platform::kAVVideoMaxKeyFrameIntervalKey,
                                          kKeyFrameInterval, {1, 3000});
  format.profileCaps = profileCaps(reader, compression, codec);
}

void readAudio(SettingsReader& reader, const WriterSettings& settings, FilmFormat& format) {
  const auto encoder = aacEncoder();
  if (!encoder) {
    return reader.refuse("No encoder for AAC sound is installed: install gstreamer1.0-libav.");
  }
  format.hasAudio = true;
  format.audioEncoder = *encoder;
  const auto type = reader.value<std::string>(settings, platform::kAVFormatIDKey, kAac);
  if (type != kAac) reader.refuse(platform::kAVFormatIDKey, "is " + type + "; it must be \"aac \"");
  format.sampleRate =
      reader.number(settings, platform::kAVSampleRateKey, kVoiceSampleRate, {8000, 96000});
  format.channels = reader.number(settings, platform::kAVNumberOfChannelsKey, 1, {1, 2});
  format.audioBitRate =
      reader.number(settings, platform::kAVEncoderBitRateKey, kVoiceBitRate, {16'000, 320'000});
}

}  // namespace

WriterSettings videoSettings(const platform::AVVideoCodecType& codec, int width, int height) {
  // About four bits a second for each pixel keep the print of a card legible; HEVC needs less.
  const int bitsPerPixel = codec == platform::kAVVideoCodecTypeHEVC ? 3 : 4;
  const int bitRate = std::clamp(width * height * bitsPerPixel, 1'000'000, 20'000'000);
  return {
      {platform::kAVVideoCodecKey, codec},
      {platform::kAVVideoWidthKey, even(width)},
      {platform::kAVVideoHeightKey, even(height)},
      {platform::kAVVideoCompressionPropertiesKey,
       WriterSettings{{platform::kAVVideoAverageBitRateKey, bitRate},
                      {platform::kAVVideoMaxKeyFrameIntervalKey, kKeyFrameInterval},
                      {platform::kAVVideoProfileLevelKey, std::string(defaultProfile(codec))}}}};
}

WriterSettings audioSettings() {
  return {{platform::kAVFormatIDKey, std::string(kAac)},
          {platform::kAVSampleRateKey, kVoiceSampleRate},
          {platform::kAVNumberOfChannelsKey, 1},
          {platform::kAVEncoderBitRateKey, kVoiceBitRate}};
}

platform::Expected<FilmFormat> filmFormat(const std::optional<WriterSettings>& video,
                                          const std::optional<WriterSettings>& audio) {
  FilmFormat format;
  SettingsReader reader;
  readVideo(reader, video.value_or(WriterSettings{}), format);
  if (audio) readAudio(reader, *audio, format);
  if (reader.fault()) return platform::failure(*reader.fault());
  return format;
}

}  // namespace corvana::devices
