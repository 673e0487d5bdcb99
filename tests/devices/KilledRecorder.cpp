// Records a film whose sound begins at SOUND_START seconds and dies at KILL_AT seconds, as a
// process does that is killed: nothing is flushed, nothing is closed.

#include <csignal>
#include <cstdlib>

#include "FilmMaterial.h"
#include "devices/gstreamer/FilmSettings.h"
#include "devices/gstreamer/FilmWriterFactory.h"
#include "platform/foundation/VirtualRunLoop.h"

int main(int argc, char** argv) {
  if (argc != 4) return 2;
  using namespace devices;
  const platform::Duration soundStart = platform::seconds(std::atof(argv[2]));
  const platform::Duration killAt = platform::seconds(std::atof(argv[3]));

  platform::VirtualRunLoop loop;
  FilmWriterFactory factory(loop);
  const auto film = factory.make(argv[1], videoSettings(platform::kAVVideoCodecTypeH264, 320, 240),
                                 audioSettings());
  if (!film) return 3;
  platform::Duration heard = soundStart;
  for (std::int64_t index = 0; test::frameTime(index) < killAt; ++index) {
    if (!(*film)->appendVideo(test::frame(index))) return 4;
    for (; heard + test::kBuffer <= test::frameTime(index); heard += test::kBuffer) {
      if (!(*film)->appendAudio(test::sound(heard, 8000))) return 5;
    }
  }
  std::raise(SIGKILL);
}
