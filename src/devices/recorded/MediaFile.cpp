#include "devices/recorded/MediaFile.h"

#include <utility>

#include "devices/recorded/FileCamera.h"
#include "devices/recorded/FileMicrophone.h"
#include "platform/foundation/Fault.h"

namespace corvana::devices {

MediaFile::~MediaFile() = default;

platform::Expected<std::shared_ptr<MediaFile>> MediaFile::open(platform::RunLoop& loop,
                                                               const std::filesystem::path& path,
                                                               VideoCodecChoice codecChoice) {
  const auto look = MediaProbe::start(path);
  if (!look) return tl::unexpected(look.error());
  return open(loop, **look, codecChoice);
}

platform::Expected<std::shared_ptr<MediaFile>> MediaFile::open(platform::RunLoop& loop,
                                                               MediaProbe& look,
                                                               VideoCodecChoice codecChoice) {
  const std::filesystem::path& path = look.path();
  const auto info = look.finish();
  if (!info) return tl::unexpected(info.error());
  auto video = VideoReader::open(path, *info);
  if (!video) return tl::unexpected(video.error());
  // Sound is decoded while the first picture is waited for.
  std::unique_ptr<AudioReader> audio;
  if (info->hasAudio) {
    auto opened = AudioReader::open(path);
    if (!opened) return tl::unexpected(opened.error());
    audio = std::move(*opened);
  }
  auto first = (*video)->next();
  if (!first) return tl::unexpected(first.error());
  if (!*first) return platform::failure(path.string() + " holds no picture: record it again.");
  const platform::Duration origin = (*video)->origin();

  std::shared_ptr<MediaFile> file(new MediaFile(loop, *info));
  const auto timeline = std::make_shared<FileTimeline>();
  const std::weak_ptr<MediaFile> weak = file;
  const auto error = [weak](const platform::Fault& fault) {
    if (const auto self = weak.lock()) self->reportError(fault);
  };
  const auto end = [weak] {
    const auto self = weak.lock();
    if (!self) return;
    self->post([](MediaFile& media) {
      if (media.onEnd) media.onEnd();
    });
  };
  file->camera_ =
      std::make_shared<FileCamera>(loop, timeline, *info, std::move(*video), std::move(**first),
                                   codecChoice, FileCamera::Reports{end, error});
  if (!audio) return file;
  if (const auto begun = audio->begin(origin); !begun) return tl::unexpected(begun.error());
  file->microphone_ =
      std::make_shared<FileMicrophone>(loop, timeline, info->duration, std::move(audio), error);
  return file;
}

platform::AVCaptureDeviceRef MediaFile::camera() const {
  return camera_;
}

platform::AVCaptureDeviceRef MediaFile::microphone() const {
  return microphone_;
}

std::uint64_t MediaFile::framesDropped() const {
  return camera_->framesDropped();
}

void MediaFile::post(std::function<void(MediaFile&)> report) {
  loop_.mainQueue().async([weak = weak_from_this(), report = std::move(report)] {
    if (const auto self = weak.lock()) report(*self);
  });
}

void MediaFile::reportError(const platform::Fault& fault) {
  post([fault](MediaFile& media) {
    if (std::exchange(media.errorReported_, true)) return;
    if (media.onError) media.onError(fault);
  });
}

}  // namespace corvana::devices
