#include <algorithm>

#include <gtest/gtest.h>

#include "app/endtoend/Program.h"
#include "devices/recorded/MediaFile.h"
#include "engine/document/text/NetworkTextReader.h"
#include "engine/vision/FaceDetector.h"
#include "engine/vision/ImageOps.h"
#include "platform/foundation/VirtualRunLoop.h"

namespace corvana::tests {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using platform::CGRect;

/// Looks at films as somebody would who wants to know what is on the card.
class Looker {
 public:
  struct Seen {
    int pictures = 0;
    int withPrint = 0;  ///< in which three letters or digits can be read
    int withHead = 0;   ///< in which a face is as large as a live one
    int withPhoto = 0;  ///< in which there is a smaller face as well
  };

  /// Every twelfth picture of the film.
  Seen lookAt(const fs::path& film) {
    platform::VirtualRunLoop loop;
    const auto media = devices::MediaFile::open(loop, film).value();
    Seen seen;
    bool ended = false;
    int number = 0;
    media->onEnd = [&] { ended = true; };
    media->camera()->start([&](const platform::CMSampleBufferRef& sample) {
      if (number++ % 12 == 0) add(*engine::rgbPicture(sample->image), seen);
    });
    loop.runUntil([&] { return ended; }, platform::TimePoint::max());
    media->camera()->stop();
    return seen;
  }

 private:
  void add(const platform::PixelBuffer& picture, Seen& seen) {
    ++seen.pictures;
    int letters = 0;
    for (const engine::TextLine& line : reader_.read(picture))
      letters += static_cast<int>(std::ranges::count_if(line.text, [](unsigned char letter) {
        return letter >= 0x80 || std::isalnum(letter) != 0;
      }));
    if (letters >= 3) ++seen.withPrint;
    const auto faces = faces_.detect(picture, engine::FaceDetector::Search::everywhere);
    const auto isHead = [](const engine::Face& face) { return face.box.width > 200; };
    if (std::ranges::any_of(faces, isHead)) ++seen.withHead;
    if (!std::ranges::all_of(faces, isHead)) ++seen.withPhoto;
  }

  engine::NetworkTextReader reader_ =
      engine::NetworkTextReader::load(engine::NetworkTextReader::Models::inFolder(ENGINE_RESOURCES))
          .value();
  engine::FaceDetector faces_ =
      engine::FaceDetector::load(ENGINE_RESOURCES "/face_detection_short_range.tflite").value();
};

bool anyFileHolds(const fs::path& folder, const std::string& text) {
  return std::ranges::any_of(fs::directory_iterator(folder), [&](const auto& entry) {
    return bytesOf(entry.path()).find(text) != std::string::npos;
  });
}

const fs::path kSealed = fs::path(SESSIONS) / "sealed";

TEST(Redact, ShowsTheHeadAloneAndIsSealedAndLinkedToTheRecord) {
  const ScratchFolder scratch;
  const fs::path copy = scratch / "copy";
  const ProgramRun made =
      runVideoid({"redact", kSealed, "--output", copy, "--key", fs::path(SESSIONS) / "sealed.key"});
  ASSERT_EQ(made.exitCode, 0) << made.errors;
  EXPECT_EQ(schemaComplaints(copy), "");

  Looker looker;
  const auto before = looker.lookAt(kSealed / "film.mp4");
  EXPECT_GT(before.withPrint, before.pictures / 4) << "or nothing could be found";
  EXPECT_GT(before.withPhoto, 2);
  const auto after = looker.lookAt(copy / "film.mp4");
  EXPECT_EQ(after.pictures, before.pictures);
  EXPECT_EQ(after.withPrint, 0);
  EXPECT_EQ(after.withPhoto, 0);
  // Where a further face seems to be near, the head is covered as well.
  EXPECT_GT(after.withHead, after.pictures * 8 / 10);

  EXPECT_TRUE(anyFileHolds(kSealed, "ERIKSSON"));
  // Of eight letters and more: shorter ones stand in sums and films by chance.
  for (const char* text : {"ERIKSSON", "ANNA MARIA", "D23145890", "12.08.1984", "8408129F"})
    EXPECT_FALSE(anyFileHolds(copy, text)) << text;
  const ProgramRun verified =
      runVideoid({"verify", copy, "--key", fs::path(SESSIONS) / "sealed.pem"});
  EXPECT_EQ(verified.exitCode, 0) << verified.errors;
  const std::string sum = runProgram("sha256sum", {kSealed / "result.json"}).output.substr(0, 64);
  EXPECT_NE(
      verified.output.find("redacted copy of the record whose result.json has the SHA-256 " + sum),
      std::string::npos)
      << verified.output;

  const json digests = json::parse(bytesOf(copy / "result.json"))["redaction"]["digests"];
  const json disclosures = json::parse(bytesOf(scratch / "copy.disclosures.json"));
  ASSERT_TRUE(disclosures.contains("subject") && disclosures.contains("back shown zone"));
  for (const auto& [name, disclosure] : disclosures.items()) {
    const ProgramRun digest = runProgram(
        "bash", {"-c", "printf %s \"$1\" | openssl dgst -sha256 -binary | basenc --base64url -w0",
                 "bash", disclosure.get<std::string>()});
    EXPECT_EQ(digest.output, digests.at(name).get<std::string>() + "=") << name;
  }

  const std::pair<std::vector<std::string>, std::string> refused[] = {
      {{"redact", copy, "--output", scratch / "x"}, "is a redacted copy already"},
      {{"redact", kSealed, "--output", copy, "--disclosures", scratch / "x"}, "is not empty"},
      {{"redact", kSealed, "--output", kSealed / "copy"}, "lies within the record"},
      {{"redact", kSealed, "--output", scratch / "y", "--disclosures", kSealed / "y"},
       "lies within"},
      {{"recheck", copy, "--reference", fs::path(SESSIONS) / "reference"}, "shows no card"},
  };
  for (const auto& [arguments, sentence] : refused) {
    const ProgramRun ended = runVideoid(arguments);
    EXPECT_EQ(ended.exitCode, 2) << sentence;
    EXPECT_NE(ended.errors.find(sentence), std::string::npos) << ended.errors;
  }
}

TEST(Redact, CoversTheFaceAndTakesSoundAndWordsOutWhereItIsAsked) {
  const ScratchFolder scratch;
  const fs::path run = scratch / "run";
  const fs::path copy = scratch / "copy";
  const Session session = Session::of("face-leaves");
  runVideoid({"capture", "--reference", session.reference, "--text-file", session.text, "--camera",
              session.camera, "--options", SAMPLES "/short-options.json", "--keep", "--output",
              run});
  const ProgramRun made = runVideoid({"redact", run, "--output", copy, "--mute", "--cover-face",
                                      "--disclosures", scratch / "kept.json"});
  ASSERT_EQ(made.exitCode, 0) << made.errors;
  EXPECT_EQ(schemaComplaints(copy), "");
  Looker looker;
  const fs::path film = copy / "film.mp4";
  const auto seen = looker.lookAt(film);
  EXPECT_GT(seen.pictures, 2);
  EXPECT_EQ(seen.withHead + seen.withPhoto + seen.withPrint, 0);
  EXPECT_FALSE(devices::probe(film).value().hasAudio);
  EXPECT_TRUE(json::parse(bytesOf(scratch / "kept.json")).contains("text"));
  EXPECT_EQ(json::parse(bytesOf(copy / "result.json"))["text"], nullptr);
  std::string text = bytesOf(session.text);
  text.resize(text.find_last_not_of("\n") + 1);
  EXPECT_FALSE(anyFileHolds(copy, text));
}

TEST(Redact, MakesNoCopyOfARecordThatDoesNotHold) {
  const ScratchFolder scratch;
  const fs::path run = scratch / "run";
  fs::copy(kSealed, run);
  writeBytes(run / "selfie.png", "another");
  const ProgramRun made = runVideoid({"redact", run, "--output", scratch / "copy"});
  EXPECT_EQ(made.exitCode, 2);
  EXPECT_NE(made.errors.find("does not hold"), std::string::npos) << made.errors;
  EXPECT_FALSE(fs::exists(scratch / "copy") || fs::exists(scratch / "copy.disclosures.json"));
}

}  // namespace
}  // namespace corvana::tests
