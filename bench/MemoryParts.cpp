// Which parts of the program hold how much memory. Each is made and used as a run does it, one
// after the other, and stays; a JSON object names them and the megabytes by which the resident
// memory grew. Usage: memory-parts PHOTO_WITH_A_FACE FRONT BACK

#include <cmath>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>

#include <nlohmann/json.hpp>

#include "app/card/DocumentFolders.h"
#include "app/record/ScratchFolder.h"
#include "app/run/Resources.h"
#include "capture/FaceMatchDetector.h"
#include "devices/film/FilmSettings.h"
#include "devices/film/FilmWriter.h"
#include "devices/pictures/ImageFile.h"
#include "devices/screen/DirectoryBundle.h"
#include "devices/scripted/PatternFaces.h"
#include "devices/system/TerminalSystem.h"
#include "engine/document/DocumentAnalyzer.h"
#include "engine/speech/PocketSphinxRecognizer.h"
#include "engine/vision/FaceCrop.h"
#include "engine/vision/FaceDetector.h"
#include "engine/vision/FaceEmbedder.h"
#include "engine/vision/FaceLandmarks.h"
#include "platform/foundation/VirtualRunLoop.h"

namespace corvana {
namespace {

constexpr int kFilmPictures = 90;

double residentMb() {
  std::ifstream file("/proc/self/status");
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with("VmRSS:")) return std::stod(line.substr(6)) / 1024;
  }
  throw std::runtime_error("the kernel does not say how much memory is resident");
}

template <class Value, class Fault>
Value need(tl::expected<Value, Fault> made) {
  if (!made) throw std::runtime_error(made.error().sentence);
  return std::move(*made);
}

/// What looks at faces, and the face that it found.
struct Faces {
  std::shared_ptr<engine::FaceDetector> detector;
  engine::FaceLandmarks landmarks;
  engine::FaceEmbedder embedder;

  void lookAt(const platform::PixelBuffer& photo) {
    const auto found = detector->detect(photo);
    if (found.empty()) throw std::runtime_error("there is no face in the photograph");
    landmarks.locate(photo, found.front());
    embedder.embed(*engine::cropFace(photo, found.front())->pixels());
  }
};

/// A second of silence, so that the model is built and has listened.
void listen(platform::VirtualRunLoop& loop, corvana::SpeechRecognizer& recognizer) {
  auto sound = std::make_shared<platform::CMSampleBuffer>();
  sound->sampleRate = 48000;
  sound->channels = 1;
  sound->samples.resize(48000);
  recognizer.start();
  recognizer.append(sound);
  loop.runUntil([] { return false; }, loop.now() + platform::seconds(2));
}

void record(platform::AssetWriter& film) {
  constexpr auto kFormat = platform::PixelFormat::i420;
  const auto bytes = platform::PixelBuffer::byteCount(720, 1280, kFormat);
  for (int number = 0; number < kFilmPictures; ++number) {
    auto sample = std::make_shared<platform::CMSampleBuffer>();
    sample->presentationTime = platform::TimePoint(platform::seconds(number / 30.0));
    sample->duration = platform::seconds(1 / 30.0);
    sample->image = std::make_shared<platform::PixelBuffer>(
        720, 1280, kFormat, std::vector(bytes, static_cast<std::uint8_t>(number)));
    film.appendVideo(sample);
  }
}

void measure(const char* photo, const char* front, const char* back) {
  nlohmann::ordered_json parts = {{"program and libraries", std::lround(residentMb())}};
  double before = residentMb();
  const auto note = [&](const char* part) {
    parts[part] = std::lround(residentMb() - before);
    before = residentMb();
  };
  const auto resources = app::findResources();
  const auto picture = need(devices::readImage(photo));
  const platform::PixelBufferRef sides[] = {need(devices::readImage(front)),
                                            need(devices::readImage(back))};
  const auto documents = need(app::loadDocuments(resources, {}));
  before = residentMb();

  Faces faces{std::make_shared<engine::FaceDetector>(
                  need(engine::FaceDetector::load(resources.faceDetector()))),
              need(engine::FaceLandmarks::load(resources.faceLandmarks())),
              need(engine::FaceEmbedder::load(resources.faceModel()))};
  faces.lookAt(*picture);
  note("looking at faces");

  const devices::DirectoryBundle bundle(resources.module, nullptr);
  devices::StreamConsole console(std::cerr);
  capture::FaceMatchDetector matcher(bundle, console);
  matcher.faceMatch(devices::patternFace(0), devices::patternFace(1), 1);
  note("matching faces");

  auto reader = need(engine::DocumentAnalyzer::load(
      faces.detector, {.text = resources.textReader(), .documents = documents}));
  for (const auto& side : sides)
    need(reader.analyzeStill(side));
  note("reading cards");

  platform::VirtualRunLoop loop;
  engine::PocketSphinxRecognizer recognizer(
      loop, engine::SpeechModelPaths::inFolder(engine::kDebianSpeechModelFolder), "one two three");
  listen(loop, recognizer);
  note("hearing words");

  const auto folder = need(app::ScratchFolder::make());
  const auto film = need(devices::FilmWriterFactory(loop).make(
      folder.path() / "film.mp4",
      devices::videoSettings(platform::kAVVideoCodecTypeH264, 720, 1280),
      devices::audioSettings()));
  record(*film);
  note("recording a film");
  std::cout << parts.dump() << '\n';
}

}  // namespace
}  // namespace corvana

int main(int count, char** arguments) {
  if (count != 4) {
    std::cerr << "usage: memory-parts PHOTO_WITH_A_FACE FRONT BACK\n";
    return EXIT_FAILURE;
  }
  try {
    corvana::measure(arguments[1], arguments[2], arguments[3]);
  } catch (const std::exception& error) {
    std::cerr << "memory-parts: " << error.what() << ".\n";
    return EXIT_FAILURE;
  }
  return EXIT_SUCCESS;
}
