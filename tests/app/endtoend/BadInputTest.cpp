#include <algorithm>
#include <map>

#include <gtest/gtest.h>

#include "app/endtoend/Program.h"

namespace corvana::tests {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;

/// A reference that reads well, with a photo of that name or without any.
std::string reference(const std::string& picture = "face.jpg",
                      const std::string& reader = "PP-OCRv6 small Latin, 2") {
  json side{{"isPhotoPresent", !picture.empty()},
            {"shouldHavePhoto", !picture.empty()},
            {"shouldHaveMrz", false},
            {"shouldHaveBarcode", false}};
  if (!picture.empty()) side["faceImage"] = picture;
  return json{{"formatVersion", 1}, {"reader", reader}, {"front", side}}.dump();
}

fs::path plainReference(const ScratchFolder& scratch) {
  fs::create_directories(scratch / "reference");
  fs::copy_file(SAMPLES "/portraits/person_a.jpg", scratch / "reference/face.jpg",
                fs::copy_options::skip_existing);
  writeBytes(scratch / "reference/reference.json", reference());
  return scratch / "reference";
}

fs::path shortVideo(const ScratchFolder& scratch,
                    const std::string& source = "testsrc=duration=1:size=64x64") {
  fs::path file = scratch / "video.mp4";
  const ProgramRun made = runProgram("ffmpeg", {"-v", "error", "-f", "lavfi", "-i", source, file});
  EXPECT_EQ(made.exitCode, 0) << made.errors;
  return file;
}

TEST(Commands, BadInputGetsOneSentenceAndExitCodeTwo) {
  const ScratchFolder scratch;
  const struct {
    /// An argument, or a file that is given this content.
    std::string spoilt, value;
    const char* sentence;
  } cases[] = {
      {"--camera", scratch / "none.mp4", "none.mp4"},
      {"--camera", SAMPLES "/README.md", "README.md"},
      {"--camera", SAMPLES, "is a folder"},
      {"--text", " \t", "holds no word"},
      {"--text", std::string(9000, 'a'), "longer than 8000 bytes"},
      {"--text", "a\xff z", "not valid UTF-8"},
      {"--text", "a\x1b[2J z", "control character"},
      {"--reference", scratch / "nowhere", "videoid enroll"},
      {"reference/reference.json", "[1, 2]", "another shape"},
      {"reference/reference.json", "{\"front\": ", "not valid JSON"},
      {"reference/reference.json", reference("../a.png"), "faceImage"},
      {"reference/reference.json", reference("a.png"), "Enroll the card again"},
      {"reference/reference.json", reference({}), "faceImage"},
      {"reference/reference.json", reference("face.jpg", "another, 1"), "enroll the card again"},
      {"options.json", R"({"videoCapture.speed": 3})", "no option \"videoCapture.speed\""},
      {"options.json", R"({"selfieCapture.liveness": "active", "selfieCapture.liveness": "none"})",
       "names \"selfieCapture.liveness\" twice"},
      {"options.json", R"({"videoCapture.readTextCountdownSeconds": -4})",
       "a whole number from 0.0 to 600.0, not -4"},
      {"--language", "xx", "no language \"xx\""},
      {"--theme", SAMPLES "/README.md", "README.md"},
      {"--time", "media", "A window shows a run in real time"},
      {"--output", scratch.path(), "not empty"},
      {"--output", scratch / "video.mp4", "is a file"},
  };
  const std::string video = shortVideo(scratch);
  for (const auto& c : cases) {
    SCOPED_TRACE(c.sentence);
    std::map<std::string, std::string> options{{"--reference", plainReference(scratch)},
                                               {"--text", "some words"},
                                               {"--camera", video},
                                               {"--output", scratch / "run"}};
    if (c.spoilt.ends_with(".json")) {
      writeBytes(scratch / c.spoilt, c.value);
      if (c.spoilt == "options.json") options["--options"] = scratch / c.spoilt;
    } else {
      options[c.spoilt] = c.value;
    }
    if (c.spoilt == "--time") options["--screen"] = "window";
    std::vector<std::string> arguments{"capture"};
    for (const auto& [option, value] : options)
      arguments.insert(arguments.end(), {option, value});
    const ProgramRun run = runVideoid(arguments);
    EXPECT_EQ(run.exitCode, 2) << run.errors;
    EXPECT_NE(run.errors.find(c.sentence), std::string::npos) << run.errors;
    EXPECT_EQ(std::ranges::count(run.errors, '\n'), 1) << run.errors;
    EXPECT_TRUE(run.output.empty()) << run.output;
    EXPECT_FALSE(fs::exists(scratch / "run")) << "nothing has begun";
  }
}

TEST(Commands, ATakenFolderIsToldBeforeTheCardIsRead) {
  const ScratchFolder scratch;
  writeBytes(scratch / "unreadable.png", "");
  const ProgramRun run =
      runVideoid({"enroll", "--front", scratch / "unreadable.png", "--output", scratch.path()});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_NE(run.errors.find("is not empty"), std::string::npos) << run.errors;
}

TEST(Commands, AMissingModelIsTheMachinesLack) {
  const ScratchFolder scratch;
  fs::create_directories(scratch / "capture");
  setenv("CORVANA_RESOURCES", scratch.path().c_str(), 1);
  const ProgramRun doctor = runVideoid({"doctor"});
  const std::vector<std::string> arguments{
      "capture",           "--reference", plainReference(scratch), "--text", "a", "--camera",
      shortVideo(scratch), "--output",    scratch / "run"};
  const ProgramRun capture = runVideoid(arguments);
  EXPECT_FALSE(fs::exists(scratch / "run"));
  // Before a person the run has begun by the time that models are loaded.
  auto inRealTime = arguments;
  inRealTime.insert(inRealTime.end(), {"--time", "real"});
  const ProgramRun late = runVideoid(inRealTime);
  unsetenv("CORVANA_RESOURCES");
  EXPECT_EQ(doctor.exitCode, 3);
  EXPECT_NE(doctor.output.find("LACKING  model facenet.tflite"), std::string::npos)
      << doctor.output;
  for (const ProgramRun& run : {capture, late}) {
    EXPECT_EQ(run.exitCode, 3);
    EXPECT_NE(run.errors.find("model facenet.tflite"), std::string::npos) << run.errors;
  }
}

TEST(Commands, MissingResourcesAreTheMachinesLack) {
  const ScratchFolder scratch;
  setenv("CORVANA_RESOURCES", scratch.path().c_str(), 1);
  const ProgramRun screens = runVideoid({"screens", "--out", scratch / "pictures"});
  const ProgramRun report = runVideoid({"report", fs::path(SESSIONS) / "sealed"});
  unsetenv("CORVANA_RESOURCES");
  for (const ProgramRun& run : {screens, report}) {
    EXPECT_EQ(run.exitCode, 3);
    EXPECT_NE(run.errors.find("install the program's resources again"), std::string::npos)
        << run.errors;
  }
  EXPECT_FALSE(fs::exists(scratch / "pictures"));
}

TEST(Commands, DoctorNamesEachFigureAndWhatItIsHeldAgainst) {
  const ProgramRun run = runVideoid({"doctor", "--measure"});
  for (const char* measured : {"a film of 720x1280: ", "a search for faces: ", "reading a card"}) {
    EXPECT_NE(run.output.find(measured), std::string::npos) << run.output << run.errors;
  }
  const bool isSlow = run.output.find("SLOW     ") != std::string::npos;
  EXPECT_EQ(run.exitCode, isSlow ? 3 : 0) << run.output << run.errors;
}

TEST(Commands, ADiskWithoutRoomIsTheMachinesLack) {
  const ScratchFolder scratch;
  // The kernel's own file system never has room.
  const ProgramRun run =
      runVideoid({"capture", "--reference", plainReference(scratch), "--text", "a", "--camera",
                  shortVideo(scratch), "--output", "/proc/run"});
  EXPECT_EQ(run.exitCode, 3);
  EXPECT_NE(run.errors.find("0 MiB are free at \"/proc\""), std::string::npos) << run.errors;
}

TEST(Commands, WhatCannotBePrintedIsNoSuccess) {
  const ProgramRun run = runProgram("sh", {"-c", "\"$0\" options --print >/dev/full", VIDEOID});
  EXPECT_EQ(run.exitCode, 3);
  EXPECT_NE(run.errors.find("Standard output can't be written"), std::string::npos) << run.errors;
}

TEST(Commands, StandardInputThatBreaksOffIsNoShortAnswer) {
  const ScratchFolder scratch;
  writeBytes(scratch / "result.jws", "a seal");
  writeBytes(scratch / "request", "a request");
  const ProgramRun run =
      runProgram("sh", {"-c", "\"$0\" timestamp \"$1\" --request \"$1/request\" --answer - <\"$1\"",
                        VIDEOID, scratch.path()});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_NE(run.errors.find("Standard input can't be read"), std::string::npos) << run.errors;
}

TEST(Commands, AnAnswerWithoutEndIsRefusedAtOnce) {
  const ScratchFolder scratch;
  writeBytes(scratch / "result.jws", "a seal");
  writeBytes(scratch / "request", "a request");
  const ProgramRun run = runProgram(
      "bash", {"-c",
               "head -c 100000000 /dev/zero | \"$0\" timestamp \"$1\" --request \"$1/request\" "
               "--answer -; echo ${PIPESTATUS[*]}",
               VIDEOID, scratch.path()});
  EXPECT_TRUE(run.output.ends_with(" 2\n")) << run.output;
  EXPECT_FALSE(run.output.starts_with("0 ")) << "what sends it is not waited for";
  EXPECT_NE(run.errors.find("too long for a time stamp"), std::string::npos) << run.errors;
}

TEST(Commands, AFolderMayHaveAnyBytesForAName) {
  const ScratchFolder scratch;
  const fs::path folder = scratch / "run-\xff";
  const std::vector<std::string> capture{"capture",
                                         "--reference",
                                         plainReference(scratch),
                                         "--text",
                                         "a",
                                         "--camera",
                                         shortVideo(scratch, "testsrc2=duration=5:size=320x240"),
                                         "--output",
                                         folder};
  const ProgramRun ended = runVideoid(capture);
  EXPECT_EQ(ended.exitCode, 1) << ended.errors;
  EXPECT_NE(json::parse(ended.output)["folder"].get<std::string>().find("/run-"),
            std::string::npos);
  fs::remove_all(folder);
  // A film that outgrows its limit is told with its name, which comes into the result.
  std::vector<std::string> limited{"-c", "ulimit -f 8; trap '' XFSZ; exec \"$0\" \"$@\"", VIDEOID};
  limited.insert(limited.end(), capture.begin(), capture.end());
  const ProgramRun full = runProgram("bash", limited);
  EXPECT_EQ(full.exitCode, 1) << full.errors;
  EXPECT_EQ(json::parse(bytesOf(folder / "result.json"))["error"]["cause"], "folderLost");
}

TEST(Commands, WrongUseIsExitCodeTwo) {
  for (const std::vector<std::string>& arguments : {std::vector<std::string>{},
                                                    {"capture"},
                                                    {"capture", "--on-alert", "cancel"},
                                                    {"capture", "--done", "soon"},
                                                    {"capture", "--date", "2026-02-30"},
                                                    {"enroll", "--least-age", "-1"},
                                                    {"verify", "nowhere"},
                                                    {"enroll", "--front", "none.png"}}) {
    EXPECT_EQ(runVideoid(arguments).exitCode, 2);
  }
  const std::pair<std::string, std::string> numbers[] = {{"--done", "nan"},
                                                         {"--max-duration", "nan"},
                                                         {"--caller-pictures", "nan"},
                                                         {"--caller-pictures", "1e-300"}};
  for (const auto& [option, number] : numbers) {
    const ProgramRun run = runVideoid({"capture", "--reference", "here", option, number});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_NE(run.errors.find(option + ": give "), std::string::npos) << run.errors;
  }
  EXPECT_NE(runVideoid({"fly"}).errors.find("There is no command \"fly\""), std::string::npos);
  for (const char* command :
       {"enroll", "capture", "simulate", "verify", "documents", "doctor", "options"}) {
    EXPECT_EQ(runVideoid({command, "--help"}).exitCode, 0) << command;
  }
}

}  // namespace
}  // namespace corvana::tests
