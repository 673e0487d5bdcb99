#include "devices/live/LiveCamera.h"

#include <utility>

#include "devices/gstreamer/GstPicture.h"
#include "platform/foundation/Fault.h"

namespace corvana::devices {
namespace {

/// A tenth of a second at the usual rate.
constexpr std::size_t kMostPictures = 4;

const char* const kPictureConversion =
    "videoconvert name=head n-threads=2 ! videoflip video-direction=%d ! videoscale "
    "add-borders=true ! "
    "videoconvert n-threads=2 ! capsfilter name=size "
    "caps=video/x-raw,format=I420,colorimetry=bt601,pixel-aspect-ratio=1/1";

std::string conversion(CameraTurn turn) {
  const char* direction = "identity";
  if (turn == CameraTurn::right) direction = "90r";
  if (turn == CameraTurn::around) direction = "180";
  if (turn == CameraTurn::left) direction = "90l";
  std::string line = kPictureConversion;
  return line.replace(line.find("%d"), 2, direction);
}

platform::Duration durationOf(GstSample* sample, const GstVideoInfo& info) {
  if (info.fps_n > 0) return platform::seconds(double(info.fps_d) / info.fps_n);
  const GstClockTime given = GST_BUFFER_DURATION(gst_sample_get_buffer(sample));
  if (!GST_CLOCK_TIME_IS_VALID(given)) return {};
  return platform::Duration(static_cast<platform::Duration::rep>(given));
}

/// What the pictures are like, apart from their rate, which may follow the light.
std::string looksOf(const GstCaps* caps) {
  GstVideoInfo info;
  if (!gst_video_info_from_caps(&info, caps)) return {};
  return std::string(gst_video_format_to_string(GST_VIDEO_INFO_FORMAT(&info))) + " " +
         std::to_string(info.width) + "x" + std::to_string(info.height);
}

}  // namespace

LiveCamera::LiveCamera(platform::RunLoop& loop, LiveSource source, CameraTurn turn,
                       VideoCodecChoice codecChoice)
    : FilmingCamera(codecChoice), name_(source.name) {
  LiveStream::Setup setup;
  setup.kind = "camera";
  setup.source = std::move(source);
  setup.line = conversion(turn);
  setup.mostWaiting = kMostPictures;
  setup.setUp = [this](GstElement* pipeline) { setUp(pipeline); };
  setup.convert = [this](GstSample* sample) { return convert(sample); };
  stream_ = std::make_shared<LiveStream>(loop, std::move(setup));
}

platform::Expected<void> LiveCamera::open(platform::Duration patience) {
  return stream_->open(patience);
}

void LiveCamera::setUp(GstElement* pipeline) {
  sizeFilter_ = borrow(pipeline, "size");
  const GstPtr<GstPad> pad(gst_element_get_static_pad(borrow(pipeline, "head"), "sink"));
  gst_pad_add_probe(pad.get(), GST_PAD_PROBE_TYPE_EVENT_DOWNSTREAM, onCaps, this, nullptr);
}

GstPadProbeReturn LiveCamera::onCaps(GstPad*, GstPadProbeInfo* info, gpointer data) {
  auto& self = *static_cast<LiveCamera*>(data);
  GstEvent* event = GST_PAD_PROBE_INFO_EVENT(info);
  if (GST_EVENT_TYPE(event) != GST_EVENT_CAPS) return GST_PAD_PROBE_OK;
  GstCaps* caps = nullptr;
  gst_event_parse_caps(event, &caps);
  const std::string looks = looksOf(caps);
  if (!self.firstCaps_) self.firstCaps_ = looks;
  if (looks != *self.firstCaps_) self.changed_ = true;
  return GST_PAD_PROBE_OK;
}

LiveStream::Sample LiveCamera::convert(GstSample* sample) {
  GstVideoInfo info;
  if (!gst_video_info_from_caps(&info, gst_sample_get_caps(sample))) return nullptr;
  auto converted = std::make_shared<platform::CMSampleBuffer>();
  converted->duration = durationOf(sample, info);
  converted->image = copyPicture(sample, platform::PixelFormat::i420);
  if (!converted->image) return nullptr;
  if (width_ == 0) keepSize(info.width, info.height);
  judge(sample, *converted);
  const bool fits = info.width == width_ && info.height == height_;
  return fits ? converted : nullptr;
}

void LiveCamera::judge(GstSample* sample, const platform::CMSampleBuffer& converted) {
  const GstClockTime time = GST_BUFFER_PTS(gst_sample_get_buffer(sample));
  if (!GST_CLOCK_TIME_IS_VALID(time)) return;
  InjectionJudge::Picture picture = look(*converted.image);
  picture.time = platform::Duration(static_cast<platform::Duration::rep>(time));
  if (converted.duration > platform::Duration::zero()) picture.interval = converted.duration;
  judge_.add(picture);
  const std::lock_guard lock(signsMutex_);
  signs_ = judge_.signs();
}

std::vector<CameraSign> LiveCamera::signs() const {
  const std::lock_guard lock(signsMutex_);
  return signs_;
}

void LiveCamera::keepSize(int width, int height) {
  width_ = width;
  height_ = height;
  const GstPtr<GstCaps> caps(
      gst_caps_new_simple("video/x-raw", "format", G_TYPE_STRING, "I420", "colorimetry",
                          G_TYPE_STRING, "bt601", "pixel-aspect-ratio", GST_TYPE_FRACTION, 1, 1,
                          "width", G_TYPE_INT, width, "height", G_TYPE_INT, height, nullptr));
  g_object_set(sizeFilter_, "caps", caps.get(), nullptr);
}

}  // namespace corvana::devices
