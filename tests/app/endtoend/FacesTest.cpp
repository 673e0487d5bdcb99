#include <cmath>
#include <sstream>

#include <gtest/gtest.h>

#include "app/endtoend/Program.h"

namespace corvana::tests {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;

constexpr auto kOne = SAMPLES "/portraits/person_a.jpg";
constexpr auto kOther = SAMPLES "/portraits/person_b.jpg";

/// Makes a picture by ffmpeg; the inputs and what becomes of them.
fs::path picture(const fs::path& file, const std::vector<std::string>& how) {
  std::vector<std::string> arguments{"-v", "error"};
  arguments.insert(arguments.end(), how.begin(), how.end());
  arguments.insert(arguments.end(), {"-frames:v", "1", file});
  const ProgramRun made = runProgram("ffmpeg", arguments);
  EXPECT_EQ(made.exitCode, 0) << made.errors;
  return file;
}

/// The portrait as another photograph of the same person: darker, smaller, a little turned.
fs::path again(const ScratchFolder& scratch) {
  return picture(scratch / "again.jpg",
                 {"-i", kOne, "-vf", "rotate=0.1,eq=brightness=-0.1,scale=iw*0.8:-2"});
}

TEST(Faces, CompareTellsPeopleApartByTheLimitInUse) {
  const ScratchFolder scratch;
  const ProgramRun same = runVideoid({"compare", kOne, again(scratch)});
  EXPECT_EQ(same.exitCode, 0) << same.errors;
  const json near = json::parse(same.output);
  EXPECT_EQ(near["matches"], true);
  EXPECT_EQ(near["first"]["box"].size(), 4U);
  const ProgramRun strangers = runVideoid({"compare", kOne, kOther});
  EXPECT_EQ(strangers.exitCode, 1) << strangers.errors;
  const json far = json::parse(strangers.output);
  EXPECT_EQ(far["matches"], false);
  EXPECT_GT(far["distance"], far["limit"]);
  EXPECT_LT(near["distance"], near["limit"]);

  writeBytes(scratch / "lenient.json", R"({"videoCapture.idToSelfieMatchThreshold": 2})");
  const ProgramRun lenient =
      runVideoid({"compare", kOne, kOther, "--options", scratch / "lenient.json"});
  EXPECT_EQ(lenient.exitCode, 0) << lenient.errors;
  EXPECT_EQ(json::parse(lenient.output)["distance"], far["distance"]);
}

TEST(Faces, EmbedGivesNumbersByWhichCompareDecidesAndSaysWhatHasNone) {
  const ScratchFolder scratch;
  fs::create_directories(scratch / "photos");
  fs::copy(kOne, scratch / "photos/a.JPG");
  fs::copy(kOther, scratch / "photos/b.jpg");
  picture(scratch / "photos/c.png", {"-f", "lavfi", "-i", "testsrc=size=320x240"});
  picture(scratch / "photos/d.png", {"-i", kOne, "-i", kOther, "-filter_complex",
                                     "[0]scale=400:400[a];[1]scale=400:400[b];[a][b]hstack"});
  writeBytes(scratch / "photos/e.jpg", "no picture");
  writeBytes(scratch / "photos/notes.txt", "not looked at");
  const ProgramRun embedded = runVideoid({"embed", scratch / "photos"});
  EXPECT_EQ(embedded.exitCode, 1) << embedded.errors;
  std::vector<json> lines;
  std::istringstream stream(embedded.output);
  for (std::string line; std::getline(stream, line);)
    lines.push_back(json::parse(line));
  ASSERT_EQ(lines.size(), 5U) << embedded.output;
  const auto& [first, second] = std::pair(lines[0]["embedding"], lines[1]["embedding"]);
  ASSERT_EQ(first.size(), 128U);
  double squares = 0;
  for (std::size_t i = 0; i < first.size(); ++i)
    squares += std::pow(first[i].get<double>() - second[i].get<double>(), 2);
  const ProgramRun compared = runVideoid({"compare", kOne, kOther});
  EXPECT_NEAR(std::sqrt(squares), json::parse(compared.output)["distance"].get<double>(), 0.002);
  const char* sentences[] = {"No face was found", "shows 2 faces", "e.jpg"};
  for (std::size_t i = 0; i < std::size(sentences); ++i) {
    EXPECT_NE(lines[i + 2]["error"].get<std::string>().find(sentences[i]), std::string::npos)
        << lines[i + 2];
  }
}

TEST(Faces, RefuseWhatCannotBeComparedWithOneSentence) {
  const ScratchFolder scratch;
  const struct {
    std::vector<std::string> arguments;
    const char* sentence;
  } cases[] = {
      {{"compare", kOne, scratch / "none.jpg"}, "none.jpg"},
      {{"compare", kOne, SAMPLES "/README.md"}, "README.md"},
      {{"compare", kOne, picture(scratch / "small.png", {"-i", kOne, "-vf", "scale=120:-2"})},
       "pixels wide"},
      {{"embed", scratch / "nowhere"}, "no folder with JPEG or PNG"},
      {{"embed", kOne}, "no folder with JPEG or PNG"},
  };
  for (const auto& c : cases) {
    const ProgramRun run = runVideoid(c.arguments);
    EXPECT_EQ(run.exitCode, 2) << c.sentence;
    EXPECT_NE(run.errors.find(c.sentence), std::string::npos) << run.errors;
    EXPECT_EQ(std::count(run.errors.begin(), run.errors.end(), '\n'), 1) << run.errors;
    EXPECT_EQ(run.output, "");
  }
}

}  // namespace
}  // namespace corvana::tests
