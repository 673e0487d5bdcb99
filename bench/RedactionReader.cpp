// Says of a film how many of its pictures show what is on a card: print that can be read, a face as
// small as the photo on one; and how many show a live face. Usage: redaction-reader FILM
// ENGINE_RESOURCES [EVERY]
#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "devices/recorded/MediaFile.h"
#include "engine/document/text/NetworkTextReader.h"
#include "engine/vision/FaceDetector.h"
#include "engine/vision/ImageOps.h"
#include "platform/foundation/VirtualRunLoop.h"

namespace {

using namespace corvana;

constexpr int kLeastLetters = 3;
/// Of the picture's width: a live face is wider, a photo on a card is not.
constexpr double kLeastLiveShare = 0.22;

struct Counts {
  int pictures = 0, print = 0, photo = 0, head = 0;
};

int lettersIn(const std::string& text) {
  return static_cast<int>(std::ranges::count_if(
      text, [](unsigned char letter) { return letter >= 0x80 || std::isalnum(letter) != 0; }));
}

class Reader {
 public:
  explicit Reader(const std::filesystem::path& resources)
      : text_(
            engine::NetworkTextReader::load(engine::NetworkTextReader::Models::inFolder(resources))
                .value()),
        faces_(
            engine::FaceDetector::load(resources / "face_detection_short_range.tflite").value()) {}

  void look(const platform::PixelBuffer& picture, Counts& counts) {
    ++counts.pictures;
    int letters = 0;
    for (const engine::TextLine& line : text_.read(picture))
      letters += lettersIn(line.text);
    counts.print += letters >= kLeastLetters ? 1 : 0;
    const auto faces = faces_.detect(picture, engine::FaceDetector::Search::everywhere);
    const auto isLive = [&](const engine::Face& face) {
      return face.box.width > kLeastLiveShare * picture.width();
    };
    counts.head += std::ranges::any_of(faces, isLive) ? 1 : 0;
    counts.photo += std::ranges::all_of(faces, isLive) ? 0 : 1;
  }

 private:
  engine::NetworkTextReader text_;
  engine::FaceDetector faces_;
};

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) {
    std::fprintf(stderr, "usage: redaction-reader FILM ENGINE_RESOURCES [EVERY]\n");
    return 2;
  }
  const int every = argc > 3 ? std::max(1, std::atoi(argv[3])) : 5;
  platform::VirtualRunLoop loop;
  const auto film = devices::MediaFile::open(loop, argv[1]);
  if (!film) {
    std::fprintf(stderr, "redaction-reader: %s\n", film.error().sentence.c_str());
    return 2;
  }
  Reader reader(argv[2]);
  Counts counts;
  int number = 0;
  bool ended = false;
  (*film)->onEnd = [&ended] { ended = true; };
  (*film)->onError = [&ended](const platform::Fault&) { ended = true; };
  (*film)->camera()->start([&](const platform::CMSampleBufferRef& sample) {
    if (number++ % every == 0) reader.look(*engine::rgbPicture(sample->image), counts);
  });
  loop.runUntil([&ended] { return ended; }, platform::TimePoint::max());
  (*film)->camera()->stop();
  std::printf("{\"pictures\": %d, \"print\": %d, \"photo\": %d, \"head\": %d}\n", counts.pictures,
              counts.print, counts.photo, counts.head);
}
