#include "devices/recorded/Container.h"

#include <fstream>
#include <string_view>
#include <vector>

#include <gst/base/gsttypefindhelper.h>

#include "devices/gstreamer/GstSupport.h"
#include "platform/foundation/Fault.h"

namespace corvana::devices {
namespace {

constexpr std::size_t kHeadBytes = 65536;

/// Nothing else is opened: a playlist would make the program open other files.
constexpr struct {
  std::string_view type;
  const char* demuxer;
} kContainers[] = {
    {"video/quicktime", "qtdemux"},        {"audio/x-m4a", "qtdemux"},
    {"application/x-3gp", "qtdemux"},      {"video/x-matroska", "matroskademux"},
    {"audio/x-matroska", "matroskademux"}, {"video/webm", "matroskademux"},
    {"audio/webm", "matroskademux"},       {"video/x-msvideo", "avidemux"},
};

tl::unexpected<platform::Fault> notAVideo(const std::string& name, const std::string& why) {
  return platform::failure(name + " is not a video (" + why +
                           "): use an MP4, Matroska or AVI file.");
}

}  // namespace

platform::Expected<std::string> demuxerOf(const std::filesystem::path& path) {
  initGStreamer();
  const std::string name = path.string();
  std::error_code error;
  if (!std::filesystem::exists(path, error)) {
    return platform::failure("There is no file " + name + ".");
  }
  if (!std::filesystem::is_regular_file(path, error)) {
    return platform::failure(name + " is not a file: name a video file.");
  }
  std::ifstream file(path, std::ios::binary);
  if (!file) return platform::failure(name + " can't be read: check its rights.");
  std::vector<char> head(kHeadBytes);
  file.read(head.data(), static_cast<std::streamsize>(head.size()));
  if (file.bad()) return platform::failure(name + " can't be read: check its disk.");
  const auto count = static_cast<gsize>(file.gcount());
  if (count == 0) return notAVideo(name, "it is empty");
  const GstPtr<GstCaps> caps(gst_type_find_helper_for_data(
      nullptr, reinterpret_cast<const guint8*>(head.data()), count, nullptr));
  if (!caps) return notAVideo(name, "its type is unknown");
  const std::string type = gst_structure_get_name(gst_caps_get_structure(caps.get(), 0));
  for (const auto& container : kContainers) {
    if (type == container.type) return container.demuxer;
  }
  if (type.starts_with("audio/")) return platform::failure(name + " holds sound but no picture.");
  return notAVideo(name, "it is " + type);
}

}  // namespace corvana::devices
