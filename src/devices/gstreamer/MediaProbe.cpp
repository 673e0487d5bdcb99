#include "devices/gstreamer/MediaProbe.h"

#include <array>
#include <cmath>
#include <fstream>
#include <string_view>
#include <vector>

#include <gst/base/gsttypefindhelper.h>
#include <gst/pbutils/pbutils.h>

#include "devices/gstreamer/GstSupport.h"
#include "devices/gstreamer/MediaElements.h"

namespace devices {
namespace {

constexpr GstClockTime kProbeLimit = 30 * GST_SECOND;
constexpr std::size_t kHeadBytes = 65536;
constexpr double kUsualRate = 30;

/// Playlists and the like are none of these: a file must not make the program open others.
constexpr std::array kContainers = {
    std::string_view("video/quicktime"), std::string_view("video/x-matroska"),
    std::string_view("video/webm"),      std::string_view("video/x-msvideo"),
    std::string_view("video/mpeg"),      std::string_view("video/mpegts"),
    std::string_view("video/x-flv"),     std::string_view("application/ogg"),
    std::string_view("audio/x-m4a"),     std::string_view("application/x-3gp"),
};

using Failure = tl::unexpected<std::string>;

struct Unref {
  void operator()(gpointer object) const { g_object_unref(object); }
};
template <class T>
using ObjectPtr = std::unique_ptr<T, Unref>;

Failure notAVideo(const std::string& name, const std::string& why) {
  return Failure(name + " is not a video (" + why + "): use a recording such as MP4 or Matroska.");
}

tl::expected<void, std::string> checkFile(const std::filesystem::path& path) {
  const std::string name = path.string();
  std::error_code error;
  if (!std::filesystem::exists(path, error)) return Failure("There is no file " + name + ".");
  if (!std::filesystem::is_regular_file(path, error)) {
    return Failure(name + " is not a file: name a video file.");
  }
  std::ifstream file(path, std::ios::binary);
  std::vector<char> head(kHeadBytes);
  file.read(head.data(), static_cast<std::streamsize>(head.size()));
  if (file.bad() || (!file.is_open())) return Failure(name + " can't be read: check its rights.");
  const auto count = static_cast<gsize>(file.gcount());
  if (count == 0) return notAVideo(name, "it is empty");
  const GstPtr<GstCaps> type(gst_type_find_helper_for_data(
      nullptr, reinterpret_cast<const guint8*>(head.data()), count, nullptr));
  if (!type) return notAVideo(name, "its type is unknown");
  const std::string_view media = gst_structure_get_name(gst_caps_get_structure(type.get(), 0));
  for (const std::string_view container : kContainers) {
    if (media == container) return {};
  }
  if (media.starts_with("audio/")) return Failure(name + " holds sound but no picture.");
  return notAVideo(name, "it is " + std::string(media));
}

std::string missingDecoder(const std::string& name, GstDiscovererInfo* info) {
  // "gstreamer|1.0|program|description|decoder-type": the description is for people.
  const gchar** details = gst_discoverer_info_get_missing_elements_installer_details(info);
  std::string what = "a decoder";
  if (details && details[0]) {
    gchar** parts = g_strsplit(details[0], "|", 5);
    if (g_strv_length(parts) > 3) what = parts[3];
    g_strfreev(parts);
  }
  if (!isElementInstalled("avdec_h264")) {
    return name + " can't be decoded (" + what + " is missing): install gstreamer1.0-libav.";
  }
  return name + " can't be decoded (" + what + " is missing): convert it to H.264 and AAC in MP4.";
}

bool isTurned(GstDiscovererStreamInfo* stream) {
  const GstTagList* tags = gst_discoverer_stream_info_get_tags(stream);
  gchar* raw = nullptr;
  if (!tags || !gst_tag_list_get_string(tags, GST_TAG_IMAGE_ORIENTATION, &raw)) return false;
  const GstPtr<gchar> orientation(raw);
  const std::string_view text = orientation.get();
  return text.ends_with("rotate-90") || text.ends_with("rotate-270");
}

tl::expected<MediaInfo, std::string> readPicture(const std::string& name,
                                                 GstDiscovererStreamInfo* stream) {
  const auto* video = GST_DISCOVERER_VIDEO_INFO(stream);
  if (gst_discoverer_video_info_is_image(video)) return notAVideo(name, "it is a single picture");
  const double width = gst_discoverer_video_info_get_width(video);
  const double height = gst_discoverer_video_info_get_height(video);
  const double aspectNum = gst_discoverer_video_info_get_par_num(video);
  const double aspectDenom = gst_discoverer_video_info_get_par_denom(video);
  const double aspect = aspectNum > 0 && aspectDenom > 0 ? aspectNum / aspectDenom : 1;
  const double square = std::round(width * aspect);
  if (!(std::min(square, height) >= kMinPictureSize) ||
      !(std::max({square, width, height}) <= kMaxPictureSize)) {
    return Failure("The picture of " + name + " measures " + std::to_string(std::lround(square)) +
                   "x" + std::to_string(std::lround(height)) + " pixels: it must be " +
                   std::to_string(kMinPictureSize) + " to " + std::to_string(kMaxPictureSize) +
                   " wide and high.");
  }
  MediaInfo info;
  info.width = static_cast<int>(square);
  info.height = static_cast<int>(height);
  if (isTurned(stream)) std::swap(info.width, info.height);
  const double rateNum = gst_discoverer_video_info_get_framerate_num(video);
  const double rateDenom = gst_discoverer_video_info_get_framerate_denom(video);
  const double rate = rateDenom > 0 ? rateNum / rateDenom : 0;
  info.frameRate = rate >= 1 && rate <= 240 ? rate : kUsualRate;
  return info;
}

tl::expected<MediaInfo, std::string> describeFile(const std::string& name,
                                                  GstDiscovererInfo* found) {
  GList* videos = gst_discoverer_info_get_video_streams(found);
  GList* audios = gst_discoverer_info_get_audio_streams(found);
  tl::expected<MediaInfo, std::string> info = Failure(name + " holds no picture.");
  if (videos) {
    info = readPicture(name, GST_DISCOVERER_STREAM_INFO(videos->data));
  } else if (audios) {
    info = Failure(name + " holds sound but no picture.");
  }
  if (info) {
    info->hasAudio = audios != nullptr;
    const GstClockTime duration = gst_discoverer_info_get_duration(found);
    if (GST_CLOCK_TIME_IS_VALID(duration)) {
      info->duration = platform::Duration(static_cast<platform::Duration::rep>(duration));
    }
  }
  gst_discoverer_stream_info_list_free(videos);
  gst_discoverer_stream_info_list_free(audios);
  return info;
}

}  // namespace

tl::expected<MediaInfo, std::string> probe(const std::filesystem::path& path) {
  initGStreamer();
  if (const auto checked = checkFile(path); !checked) return Failure(checked.error());
  const std::string name = path.string();
  const GstPtr<gchar> uri(gst_filename_to_uri(path.c_str(), nullptr));
  const ObjectPtr<GstDiscoverer> discoverer(gst_discoverer_new(kProbeLimit, nullptr));
  if (!uri || !discoverer) {
    return Failure("Media files can't be read: install gstreamer1.0-plugins-base.");
  }
  GError* raw = nullptr;
  const ObjectPtr<GstDiscovererInfo> found(
      gst_discoverer_discover_uri(discoverer.get(), uri.get(), &raw));
  const GstPtr<GError> error(raw);
  const GstDiscovererResult result =
      found ? gst_discoverer_info_get_result(found.get()) : GST_DISCOVERER_ERROR;
  if (result == GST_DISCOVERER_OK) return describeFile(name, found.get());
  if (result == GST_DISCOVERER_MISSING_PLUGINS) return Failure(missingDecoder(name, found.get()));
  if (result == GST_DISCOVERER_TIMEOUT) return Failure(name + " can't be read: no picture came.");
  return Failure(name + " is damaged (" + (error ? describe(*error) : "it can't be read") +
                 "): record it again.");
}

}  // namespace devices
