// Records a film with a flash and a beep at a known second, in virtual or in real time, for
// kill-film and film-sync. In real time it writes the seconds of film it has handed over, one line
// a frame, so that whoever kills it knows the moment.
// With a key it seals the film in a seal.jsonl beside it.
// Usage: film-recorder FILM WIDTH HEIGHT FRAMES_PER_SECOND SECONDS media|real [KEY]

#include <cmath>
#include <cstdlib>
#include <functional>
#include <iostream>
#include <numbers>
#include <optional>
#include <string>

#include "app/seal/RunSeal.h"
#include "devices/film/FilmSettings.h"
#include "devices/film/FilmWriter.h"
#include "devices/system/RealRunLoop.h"
#include "platform/foundation/VirtualRunLoop.h"

namespace corvana {
namespace {

using platform::CMSampleBuffer;
using platform::Duration;

constexpr Duration kMark = std::chrono::seconds(3);
constexpr Duration kMarkLength = std::chrono::milliseconds(200);
constexpr Duration kBuffer = std::chrono::milliseconds(20);
constexpr int kSampleRate = 48000;

bool isMarked(Duration time) {
  return time >= kMark && time < kMark + kMarkLength;
}

struct Session {
  int width;
  int height;
  int framesPerSecond;
  double seconds;
  platform::TimePoint origin{};

  Duration timeOf(std::int64_t frame) const {
    return Duration(frame * 1'000'000'000 / framesPerSecond);
  }

  platform::CMSampleBufferRef picture(std::int64_t frame) const {
    constexpr auto kFormat = platform::PixelFormat::i420;
    std::vector<std::uint8_t> bytes(platform::PixelBuffer::byteCount(width, height, kFormat), 128);
    const int light = isMarked(timeOf(frame)) ? 180 : 40;
    for (int i = 0; i < width * height; ++i) {
      const int x = i % width + 3 * static_cast<int>(frame);
      bytes[static_cast<std::size_t>(i)] =
          static_cast<std::uint8_t>(light + (x * x / 64 + i / width) % 48);
    }
    auto sample = std::make_shared<CMSampleBuffer>();
    sample->presentationTime = origin + timeOf(frame);
    sample->duration = timeOf(1);
    sample->image =
        std::make_shared<platform::PixelBuffer>(width, height, kFormat, std::move(bytes));
    return sample;
  }

  platform::CMSampleBufferRef sound(Duration time) const {
    auto sample = std::make_shared<CMSampleBuffer>();
    sample->presentationTime = origin + time;
    sample->duration = kBuffer;
    sample->sampleRate = kSampleRate;
    sample->channels = 1;
    for (int i = 0; i < kSampleRate / 50; ++i) {
      const double wave = std::sin(2 * std::numbers::pi * 1000 * i / kSampleRate);
      sample->samples.push_back(static_cast<std::int16_t>(isMarked(time) ? 12000 * wave : 0));
    }
    return sample;
  }
};

template <class Loop>
int record(Loop& loop, const std::string& path, Session session,
           const std::optional<app::SigningKey>& key) {
  devices::FilmWriterFactory factory(loop);
  std::optional<app::RunSeal> seal;
  if (key) {
    seal.emplace(loop, std::filesystem::path(path).parent_path(), *key,
                 nlohmann::ordered_json::object(),
                 [](const platform::Fault& fault) { std::cerr << fault.sentence << '\n'; });
    factory.showTo(seal->witnesses());
  }
  const auto film = factory.make(
      path, devices::videoSettings(platform::kAVVideoCodecTypeH264, session.width, session.height),
      devices::audioSettings());
  if (!film) {
    std::cerr << film.error().sentence << '\n';
    return EXIT_FAILURE;
  }
  session.origin = loop.now() + std::chrono::milliseconds(100);
  bool isOver = false;
  Duration heard{};
  std::function<void(std::int64_t)> deliver = [&](std::int64_t frame) {
    for (; heard + kBuffer < session.timeOf(frame); heard += kBuffer)
      (*film)->appendAudio(session.sound(heard));
    (*film)->appendVideo(session.picture(frame));
    const double end = platform::inSeconds(session.timeOf(frame + 1));
    if (!loop.isVirtual()) std::cout << end << std::endl;
    if (end >= session.seconds) {
      loop.mainQueue().async([&isOver] { isOver = true; });
      return;
    }
    loop.scheduleDevice(session.origin + session.timeOf(frame + 1), platform::EventClass::frame,
                        [&deliver, frame] { deliver(frame + 1); });
  };
  loop.scheduleDevice(session.origin, platform::EventClass::frame, [&deliver] { deliver(0); });
  loop.runUntil([&isOver] { return isOver; }, platform::TimePoint::max());
  const auto finished = (*film)->finish();
  if (finished) return EXIT_SUCCESS;
  std::cerr << finished.error().sentence << '\n';
  return EXIT_FAILURE;
}

}  // namespace
}  // namespace corvana

int main(int count, char** arguments) {
  if (count != 7 && count != 8) {
    std::cerr
        << "usage: film-recorder FILM WIDTH HEIGHT FRAMES_PER_SECOND SECONDS media|real [KEY]\n";
    return EXIT_FAILURE;
  }
  const corvana::Session session{std::atoi(arguments[2]), std::atoi(arguments[3]),
                                 std::atoi(arguments[4]), std::atof(arguments[5])};
  std::optional<corvana::app::SigningKey> key;
  if (count == 8) {
    auto loaded = corvana::app::SigningKey::load(arguments[7]);
    if (!loaded) {
      std::cerr << loaded.error().sentence << '\n';
      return EXIT_FAILURE;
    }
    key = std::move(*loaded);
  }
  if (std::string(arguments[6]) == "real") {
    corvana::devices::RealRunLoop loop;
    return corvana::record(loop, arguments[1], session, key);
  }
  corvana::platform::VirtualRunLoop loop;
  return corvana::record(loop, arguments[1], session, key);
}
