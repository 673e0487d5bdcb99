// Records what a recorded file's camera and microphone deliver, in real time, as a run does, and
// looks at none of it: what a run costs beside it is what its judgements cost.
// Usage: camera-recorder FILE FILM

#include <cstdlib>
#include <iostream>
#include <memory>
#include <optional>

#include "devices/film/FilmSettings.h"
#include "devices/film/FilmWriter.h"
#include "devices/recorded/MediaFile.h"
#include "devices/system/RealRunLoop.h"

namespace corvana {
namespace {

int failed(const platform::Fault& fault) {
  std::cerr << fault.sentence << '\n';
  return EXIT_FAILURE;
}

int record(const char* file, const char* path) {
  devices::RealRunLoop loop;
  const auto media = devices::MediaFile::open(loop, file);
  if (!media) return failed(media.error());
  const auto camera = (*media)->camera();
  const auto microphone = (*media)->microphone();
  if (!microphone) return failed({"The file has no sound."});
  const auto& info = (*media)->info();
  devices::FilmWriterFactory factory(loop);
  const auto film = factory.make(
      path, devices::videoSettings(platform::kAVVideoCodecTypeH264, info.width, info.height),
      devices::audioSettings());
  if (!film) return failed(film.error());

  bool isOver = false;
  std::optional<platform::Fault> fault;
  (*media)->onEnd = [&] { isOver = true; };
  (*media)->onError = [&](const platform::Fault& found) {
    fault = found;
    isOver = true;
  };
  camera->start([&](const auto& sample) { (*film)->appendVideo(sample); });
  microphone->start([&](const auto& sample) { (*film)->appendAudio(sample); });
  loop.runUntil([&] { return isOver; }, platform::TimePoint::max());
  camera->stop();
  microphone->stop();
  if (fault) return failed(*fault);
  const auto finished = (*film)->finish();
  return finished ? EXIT_SUCCESS : failed(finished.error());
}

}  // namespace
}  // namespace corvana

int main(int count, char** arguments) {
  if (count == 3) return corvana::record(arguments[1], arguments[2]);
  std::cerr << "usage: camera-recorder FILE FILM\n";
  return EXIT_FAILURE;
}
