#include <algorithm>
#include <functional>
#include <map>

#include <gtest/gtest.h>

#include "app/endtoend/Program.h"

namespace tests {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;

/// A reference that reads well and needs no picture, so that other inputs can be tried cheaply.
fs::path plainReference(const ScratchFolder& scratch) {
  const json side = {{"isPhotoPresent", false},
                     {"shouldHavePhoto", false},
                     {"shouldHaveMrz", false},
                     {"shouldHaveBarcode", false}};
  const fs::path folder = scratch / "reference";
  fs::create_directories(folder);
  writeText(folder / "reference.json", json{{"formatVersion", 1}, {"front", side}}.dump());
  return folder;
}

fs::path shortVideo(const ScratchFolder& scratch) {
  const fs::path file = scratch / "video.mp4";
  const ProgramRun made = runProgram(
      "ffmpeg", {"-v", "error", "-f", "lavfi", "-i", "testsrc=duration=1:size=64x64", file});
  EXPECT_EQ(made.exitCode, 0) << made.errors;
  return file;
}

struct BadInput {
  const char* name;
  /// Changes the arguments of a run that would otherwise begin.
  std::function<void(std::map<std::string, std::string>&, const ScratchFolder&)> spoil;
  const char* sentence;
};

void PrintTo(const BadInput& input, std::ostream* out) {
  *out << input.sentence;
}

class BadInputs : public testing::TestWithParam<BadInput> {};

TEST_P(BadInputs, GetOneSentenceAndExitCodeTwo) {
  const ScratchFolder scratch;
  std::map<std::string, std::string> options{{"--reference", plainReference(scratch)},
                                             {"--text", "some words"},
                                             {"--camera", std::string(SAMPLES) + "/README.md"},
                                             {"--output", scratch / "run"}};
  GetParam().spoil(options, scratch);
  std::vector<std::string> arguments{"capture"};
  for (const auto& [name, value] : options) {
    arguments.push_back(name);
    arguments.push_back(value);
  }
  const ProgramRun run = runVideoid(arguments);
  EXPECT_EQ(run.exitCode, 2) << run.errors;
  EXPECT_NE(run.errors.find(GetParam().sentence), std::string::npos) << run.errors;
  EXPECT_EQ(std::ranges::count(run.errors, '\n'), 1) << run.errors;
  EXPECT_TRUE(run.output.empty()) << run.output;
}

using Options = std::map<std::string, std::string>;

void useOptionsFile(Options& options, const ScratchFolder& scratch, const std::string& content) {
  options["--options"] = scratch / "options.json";
  writeText(options["--options"], content);
}

void useReference(Options& options, const std::string& content) {
  writeText(fs::path(options["--reference"]) / "reference.json", content);
}

INSTANTIATE_TEST_SUITE_P(
    EndToEnd, BadInputs,
    testing::Values(
        BadInput{"cameraMissing",
                 [](Options& o, const ScratchFolder& s) { o["--camera"] = s / "none.mp4"; },
                 "none.mp4"},
        BadInput{"cameraNoVideo", [](Options&, const ScratchFolder&) {}, "README.md"},
        BadInput{"emptyText", [](Options& o, const ScratchFolder&) { o["--text"] = " \t"; },
                 "holds no word"},
        BadInput{"hugeText",
                 [](Options& o, const ScratchFolder&) { o["--text"] = std::string(9000, 'a'); },
                 "longer than 8000 bytes"},
        BadInput{"textNotUtf8", [](Options& o, const ScratchFolder&) { o["--text"] = "a\xff z"; },
                 "not valid UTF-8"},
        BadInput{"referenceMissing",
                 [](Options& o, const ScratchFolder& s) { o["--reference"] = s / "nowhere"; },
                 "videoid enroll"},
        BadInput{"referenceOfAnotherShape",
                 [](Options& o, const ScratchFolder&) { useReference(o, "[1, 2]"); },
                 "another shape"},
        BadInput{"referenceNotJson",
                 [](Options& o, const ScratchFolder&) { useReference(o, "{\"front\": "); },
                 "not valid JSON"},
        BadInput{"referencePictureOutside",
                 [](Options& o, const ScratchFolder&) {
                   useReference(o, R"({"formatVersion": 1, "front": {"isPhotoPresent": true,
                       "shouldHavePhoto": true, "shouldHaveMrz": false, "shouldHaveBarcode": false,
                       "faceImage": "../secret.png"}})");
                 },
                 "faceImage"},
        BadInput{"referencePictureMissing",
                 [](Options& o, const ScratchFolder&) {
                   useReference(o, R"({"formatVersion": 1, "front": {"isPhotoPresent": true,
                       "shouldHavePhoto": true, "shouldHaveMrz": false, "shouldHaveBarcode": false,
                       "faceImage": "front-faceImage.png"}})");
                 },
                 "Enroll the card again"},
        BadInput{"unknownOption",
                 [](Options& o, const ScratchFolder& s) {
                   useOptionsFile(o, s, R"({"videoCapture.speed": 3})");
                 },
                 "no option \"videoCapture.speed\""},
        BadInput{"absurdOption",
                 [](Options& o, const ScratchFolder& s) {
                   useOptionsFile(o, s, R"({"videoCapture.readTextCountdownSeconds": -4})");
                 },
                 "a whole number from 0.0 to 600.0, not -4"},
        BadInput{"outputNotEmpty",
                 [](Options& o, const ScratchFolder& s) {
                   o["--camera"] = shortVideo(s);
                   o["--output"] = o["--reference"];
                 },
                 "not empty"},
        BadInput{"outputIsAFile",
                 [](Options& o, const ScratchFolder& s) {
                   o["--camera"] = shortVideo(s);
                   o["--output"] = s / "file";
                   writeText(o["--output"], "x");
                 },
                 "is a file"}),
    [](const auto& tested) { return tested.param.name; });

TEST(Commands, AMissingModelIsTheMachinesLack) {
  const ScratchFolder scratch;
  fs::create_directories(scratch / "capture");
  setenv("CORVANA_RESOURCES", (scratch / "").c_str(), 1);
  const ProgramRun doctor = runVideoid({"doctor"});
  const ProgramRun capture =
      runVideoid({"capture", "--reference", plainReference(scratch), "--text", "a", "--camera",
                  shortVideo(scratch), "--output", scratch / "run"});
  unsetenv("CORVANA_RESOURCES");
  EXPECT_EQ(doctor.exitCode, 3);
  EXPECT_NE(doctor.output.find("LACKING  model facenet.tflite"), std::string::npos)
      << doctor.output;
  EXPECT_EQ(capture.exitCode, 3);
  EXPECT_NE(capture.errors.find("facenet.tflite"), std::string::npos) << capture.errors;
  EXPECT_FALSE(fs::exists(scratch / "run"));
}

TEST(Commands, OptionsListEveryKeyWithDefaultAndMeaning) {
  const ProgramRun run = runVideoid({"options", "--print"});
  ASSERT_EQ(run.exitCode, 0);
  const json list = json::parse(run.output);
  EXPECT_GE(list.size(), 12U);
  for (const json& option : list) {
    EXPECT_TRUE(option.contains("key") && option.contains("default") && option.contains("meaning"))
        << option;
  }
}

TEST(Commands, WrongUseIsExitCodeTwo) {
  for (const std::vector<std::string>& arguments : {std::vector<std::string>{},
                                                    {"fly"},
                                                    {"capture"},
                                                    {"capture", "--on-alert", "cancel"},
                                                    {"capture", "--done", "soon"},
                                                    {"enroll", "--front", "none.png"}}) {
    EXPECT_EQ(runVideoid(arguments).exitCode, 2);
  }
  for (const char* command : {"enroll", "capture", "simulate", "verify", "doctor", "options"}) {
    EXPECT_EQ(runVideoid({command, "--help"}).exitCode, 0) << command;
  }
}

}  // namespace
}  // namespace tests
