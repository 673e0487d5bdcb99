#include "devices/pictures/ImageFile.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <optional>
#include <vector>

#include <fcntl.h>
#include <gst/app/gstappsrc.h>
#include <gst/tag/tag.h>
#include <gst/video/video.h>
#include <sys/stat.h>
#include <unistd.h>

#include "devices/gstreamer/GstPicture.h"
#include "devices/pictures/ImageHeader.h"
#include "devices/pictures/PngDecoder.h"
#include "devices/recorded/StreamReader.h"
#include "platform/foundation/Fault.h"

namespace corvana::devices {
namespace {

constexpr std::uintmax_t kMostFileBytes = 128 * 1024 * 1024;

platform::Expected<std::string> readFile(const std::filesystem::path& path) {
  std::error_code error;
  const std::string name = path.string();
  if (!std::filesystem::exists(path, error))
    return platform::failure("There is no file " + name + ".");
  if (!std::filesystem::is_regular_file(path, error))
    return platform::failure(name + " is not a file.");
  const auto size = std::filesystem::file_size(path, error);
  if (size > kMostFileBytes) {
    return platform::failure(name + " is too large for a picture: scale it down.");
  }
  std::string bytes(size, '\0');
  std::ifstream file(path, std::ios::binary);
  file.read(bytes.data(), static_cast<std::streamsize>(size));
  if (!file) return platform::failure(name + " can't be read: check its rights and disk.");
  return bytes;
}

GstVideoOrientationMethod orientationIn(std::string_view exif) {
  GstVideoOrientationMethod method = GST_VIDEO_ORIENTATION_IDENTITY;
  if (exif.empty()) return method;
  const GstPtr<GstBuffer> buffer(gst_buffer_new_memdup(exif.data(), exif.size()));
  const GstPtr<GstTagList> tags(gst_tag_list_from_exif_buffer_with_tiff_header(buffer.get()));
  if (tags) gst_video_orientation_from_tag(tags.get(), &method);
  return method;
}

tl::unexpected<platform::Fault> isDamaged(const std::string& name) {
  return platform::failure(name + " is damaged: make or copy the picture again.");
}

/// Encodes a picture with the element named in `encoder`.
platform::Expected<std::string> encode(const std::string& name, const platform::PixelBuffer& image,
                                       const std::string& encoder) {
  auto stream = StreamReader::open(
      name, "appsrc name=source format=time ! videoconvert ! video/x-raw,format=RGB ! " + encoder);
  if (!stream) return tl::unexpected(stream.error());
  GstAppSrc* source = GST_APP_SRC(stream->element("source"));
  const auto caps = pictureCaps(image.format(), image.width(), image.height(), 1);
  gst_app_src_set_caps(source, caps.get());
  stream->start();
  GstPtr<GstBuffer> buffer = wrapPicture(image, image.width(), image.height(), nullptr, nullptr);
  GST_BUFFER_PTS(buffer.get()) = 0;
  gst_app_src_push_buffer(source, buffer.release());
  gst_app_src_end_of_stream(source);
  const auto sample = stream->pull();
  if (!sample || !*sample) return platform::failure("The picture " + name + " can't be encoded.");
  GstBuffer* encoded = gst_sample_get_buffer(sample->get());
  std::string bytes(gst_buffer_get_size(encoded), '\0');
  gst_buffer_extract(encoded, 0, bytes.data(), bytes.size());
  return bytes;
}

bool writeAll(int file, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = ::write(file, bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

platform::Expected<void> writePicture(const std::filesystem::path& path,
                                      const platform::PixelBuffer& image,
                                      const std::string& encoder) {
  const std::string name = path.string();
  const auto bytes = encode(name, image, encoder);
  if (!bytes) return tl::unexpected(bytes.error());
  std::string part = name + ".XXXXXX";
  const int file = ::mkstemp(part.data());
  const bool isWhole = file >= 0 && writeAll(file, *bytes);
  int error = errno;
  const bool isClosed = file >= 0 && ::close(file) == 0;
  if (isWhole && isClosed && ::rename(part.c_str(), path.c_str()) == 0) return {};
  if (isWhole) error = errno;
  const std::string reason = std::strerror(error);
  if (file >= 0) ::unlink(part.c_str());
  return platform::failure("The picture " + name + " can't be written (" + reason +
                           "): check its folder and disk.");
}

}  // namespace

platform::Expected<platform::PixelBufferRef> readImage(const std::filesystem::path& path) {
  const std::string name = path.string();
  const auto bytes = readFile(path);
  if (!bytes) return tl::unexpected(bytes.error());
  const auto header = readImageHeader(*bytes);
  if (!header) return platform::failure(name + " is not a picture: use a JPEG or PNG file.");
  if (header->width <= 0 || header->height <= 0 ||
      header->width > kMostImagePixels / header->height) {
    return platform::failure(name + " claims " + std::to_string(header->width) + "x" +
                             std::to_string(header->height) +
                             " pixels: use a picture of at most 64 million.");
  }
  // A reference's pictures: a run waits for them before it shows anything.
  if (header->type == ImageHeader::Type::png) {
    auto image = decodePng(*bytes);
    if (image) return image;
    return isDamaged(name);
  }
  auto stream = StreamReader::open(name,
                                   "filesrc name=file ! jpegdec ! videoconvert ! videoflip "
                                   "name=turn ! videoconvert ! video/x-raw,format=RGB");
  if (!stream) return tl::unexpected(stream.error());
  g_object_set(stream->element("file"), "location", path.c_str(), nullptr);
  g_object_set(stream->element("turn"), "video-direction", orientationIn(header->exif), nullptr);
  stream->start();
  const auto sample = stream->pull();
  if (!sample) return tl::unexpected(sample.error());
  auto image = *sample ? copyPicture(sample->get(), platform::PixelFormat::rgb24) : nullptr;
  if (image) return image;
  return isDamaged(name);
}

platform::Expected<void> writePng(const std::filesystem::path& path,
                                  const platform::PixelBuffer& image) {
  return writePicture(path, image, "pngenc snapshot=true");
}

platform::Expected<void> writeJpeg(const std::filesystem::path& path,
                                   const platform::PixelBuffer& image, int quality) {
  return writePicture(path, image, "jpegenc quality=" + std::to_string(quality) + " snapshot=true");
}

}  // namespace corvana::devices
