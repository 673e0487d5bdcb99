#include "devices/gstreamer/MediaElements.h"

#include <algorithm>

#include "devices/gstreamer/GstSupport.h"

namespace corvana::devices {
namespace {

const char* const kBase = "gstreamer1.0-plugins-base";
const char* const kGood = "gstreamer1.0-plugins-good";
const char* const kBad = "gstreamer1.0-plugins-bad";
const char* const kUgly = "gstreamer1.0-plugins-ugly";
const char* const kLibav = "gstreamer1.0-libav";

struct NeededElement {
  const char* element;
  const char* package;
  const char* purpose;
};

const NeededElement kNeeded[] = {
    {"filesrc", "libgstreamer1.0-0", "reading media files"},
    {"fdsink", "libgstreamer1.0-0", "writing the film"},
    {"appsrc", kBase, "handing pictures and sound to GStreamer"},
    {"decodebin", kBase, "reading media files"},
    {"videoconvert", kBase, "converting pictures"},
    {"videoscale", kBase, "scaling pictures"},
    {"audioconvert", kBase, "converting sound"},
    {"audioresample", kBase, "converting sound"},
    {"videoflip", kGood, "turning pictures upright"},
    {"v4l2src", kGood, "taking pictures with cameras"},
    {"audiobuffersplit", kBad, "listening to microphones"},
    {"qtdemux", kGood, "reading MP4 files"},
    {"mp4mux", kGood, "writing the film"},
    {"jpegdec", kGood, "reading JPEG pictures"},
    {"jpegenc", kGood, "writing JPEG pictures"},
    {"pngenc", kGood, "writing PNG pictures"},
    {"avdec_h264", kLibav, "reading H.264 video"},
    {"avdec_aac", kLibav, "reading AAC sound"},
};

/// Best first. One thread for x264: with more, its rate control depends on which slice is done
/// first, and the same frames no longer give the same bytes. Its arithmetic coding is left out: at
/// the same rate it makes the picture better by 0.2 dB, and costs a sixth of the time that encoding
/// takes and two fifths of what decoding does.
const VideoEncoder kVideoEncoders[] = {
    {"vah265enc", platform::kAVVideoCodecTypeHEVC, true, "NV12",
     "rate-control=cbr bitrate=%b key-int-max=%k b-frames=0", "h265parse"},
    {"vaapih265enc", platform::kAVVideoCodecTypeHEVC, true, "NV12",
     "rate-control=cbr bitrate=%b keyframe-period=%k max-bframes=0", "h265parse"},
    {"nvh265enc", platform::kAVVideoCodecTypeHEVC, true, "NV12",
     "zerolatency=true bitrate=%b gop-size=%k", "h265parse"},
    {"x265enc", platform::kAVVideoCodecTypeHEVC, false, "I420",
     "speed-preset=ultrafast tune=zerolatency bitrate=%b key-int-max=%k", "h265parse"},
    {"x264enc", platform::kAVVideoCodecTypeH264, false, "I420",
     "speed-preset=superfast tune=zerolatency threads=1 cabac=false bitrate=%b key-int-max=%k", ""},
    {"openh264enc", platform::kAVVideoCodecTypeH264, false, "I420",
     "complexity=low multi-thread=1 rate-control=bitrate bitrate=%B gop-size=%k", "h264parse"},
};

/// Delays measured with a click that was encoded and decoded again.
const AudioEncoder kAudioEncoders[] = {{"avenc_aac", 1024}, {"voaacenc", 1600}};

}  // namespace

bool isElementInstalled(const std::string& element) {
  initGStreamer();
  return GstPtr<GstElementFactory>(gst_element_factory_find(element.c_str())) != nullptr;
}

std::vector<MissingElement> missingElements() {
  std::vector<MissingElement> missing;
  for (const NeededElement& needed : kNeeded) {
    if (isElementInstalled(needed.element)) continue;
    missing.push_back({needed.element, needed.package, needed.purpose});
  }
  if (!encoderFor(platform::kAVVideoCodecTypeH264)) {
    missing.push_back({"x264enc", kUgly, "encoding the film's pictures"});
  }
  if (!aacEncoder()) missing.push_back({"avenc_aac", kLibav, "encoding the film's sound"});
  return missing;
}

std::optional<VideoEncoder> encoderFor(const platform::AVVideoCodecType& codec) {
  for (const VideoEncoder& encoder : kVideoEncoders) {
    if (encoder.codec == codec && isElementInstalled(encoder.element)) return encoder;
  }
  return {};
}

std::vector<platform::AVVideoCodecType> realTimeVideoCodecs(VideoCodecChoice choice) {
  std::vector<platform::AVVideoCodecType> codecs;
  const auto hevc = encoderFor(platform::kAVVideoCodecTypeHEVC);
  const bool isForced = choice == VideoCodecChoice::hevc;
  if (hevc && (isForced || (hevc->hardware && choice == VideoCodecChoice::automatic))) {
    codecs.push_back(hevc->codec);
  }
  if (!isForced && encoderFor(platform::kAVVideoCodecTypeH264)) {
    codecs.emplace_back(platform::kAVVideoCodecTypeH264);
  }
  return codecs;
}

std::optional<AudioEncoder> aacEncoder() {
  for (const AudioEncoder& encoder : kAudioEncoders) {
    if (isElementInstalled(encoder.element)) return encoder;
  }
  return {};
}

}  // namespace corvana::devices
