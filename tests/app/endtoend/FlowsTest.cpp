#include <algorithm>

#include <gtest/gtest.h>

#include "app/endtoend/Program.h"
#include "devices/recorded/MediaProbe.h"

namespace corvana::tests {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using Arguments = std::vector<std::string>;

/// As the sessions want it, which end before the time that a person gets.
Arguments withShortLimits(Arguments more = {}) {
  more.insert(more.end(), {"--options", SAMPLES "/short-options.json"});
  return more;
}

Arguments captureOf(const Session& session, const fs::path& run, const Arguments& more = {}) {
  Arguments arguments{"capture",    "--reference", session.reference, "--text-file",
                      session.text, "--camera",    session.camera,    "--output",
                      run,          "--date",      "2026-03-01"};
  arguments.insert(arguments.end(), more.begin(), more.end());
  return arguments;
}

double secondsOfFilm(const fs::path& file) {
  const auto film = devices::probe(file);
  EXPECT_TRUE(film) << film.error().sentence;
  return film ? platform::inSeconds(film->duration) : 0;
}

/// Phase and reason of each attempt.
std::vector<std::string> attemptsOf(const json& result) {
  std::vector<std::string> attempts;
  for (const json& attempt : result["attempts"])
    attempts.push_back(attempt["phase"].get<std::string>() + " " +
                       attempt["reason"].get<std::string>());
  return attempts;
}

/// A run that ended early leaves all the film it took in, and that is more than nothing.
void expectPartialFilmPlays(const fs::path& run) {
  const json recording = json::parse(bytesOf(run / "result.json"))["recording"];
  EXPECT_GT(recording["framesWritten"], 0);
  EXPECT_NEAR(secondsOfFilm(run / "film.partial.mp4"), recording["seconds"], 0.05);
}

TEST(EndToEnd, AGoodSessionEndsInAResultThatCanBeVerifiedAndRepeated) {
  const ScratchFolder scratch;
  const Session session = Session::of("short");
  const fs::path run = scratch / "run";
  ASSERT_EQ(runVideoid({"key", "new", "--key", scratch / "key"}).exitCode, 0);
  const Arguments sealed{"--key", scratch / "key", "--subject", "S-19"};
  const ProgramRun first = runVideoid(captureOf(session, run, withShortLimits(sealed)));
  ASSERT_EQ(first.exitCode, 0) << first.errors;
  EXPECT_EQ(first.output.find("S-19"), std::string::npos) << "whom the person is taken for";

  const json result = json::parse(first.output);
  for (const char* flag :
       {"idToSelfieMatch", "idToIdPhotoMatch", "idFrontDataMatch", "idBackDataMatch"}) {
    EXPECT_EQ(result["result"][flag], true) << flag;
  }
  EXPECT_EQ(result["recording"]["framesDropped"], 0);
  EXPECT_EQ(result["date"], "2026-03-01");
  EXPECT_EQ(result["hints"], json::array());
  EXPECT_EQ(attemptsOf(result),
            (std::vector<std::string>{"selfie accepted", "document accepted", "reading accepted"}));
  EXPECT_EQ(schemaComplaints(run), "");
  const auto surname = eventsOf(run, "field", "surname");
  ASSERT_EQ(surname.size(), 1U);
  EXPECT_EQ(surname.front()["agreement"], "agrees");
  EXPECT_EQ(bytesOf(run / "events.jsonl").find("ERIKSSON"), std::string::npos) << "a value";
  EXPECT_EQ(fs::status(run).permissions(), fs::perms::owner_all);
  EXPECT_FALSE(fs::exists(run / "film.partial.mp4"));

  const auto film = devices::probe(run / "film.mp4");
  ASSERT_TRUE(film) << film.error().sentence;
  EXPECT_TRUE(film->hasAudio);
  EXPECT_EQ(film->width, 720);
  EXPECT_NEAR(secondsOfFilm(run / "film.mp4"), result["recording"]["seconds"], 0.05);
  const double stopped = eventsOf(run, "call", "stopVideoWriter").back()["t"];
  const double started = eventsOf(run, "mode", "selfieCapture").front()["t"];
  EXPECT_NEAR(secondsOfFilm(run / "film.mp4"), stopped - started, 0.1);

  EXPECT_EQ(breachesOf(run), std::vector<std::string>{});
  EXPECT_EQ(runVideoid({"verify", run}).exitCode, 0);
  const fs::path again = scratch / "again";
  ASSERT_EQ(runVideoid(captureOf(session, again, withShortLimits(sealed))).exitCode, 0);
  for (const char* file : {"events.jsonl", "evidence.json", "result.json", "result.jws"})
    EXPECT_EQ(bytesOf(run / file), bytesOf(again / file)) << file;

  writeBytes(run / "events.jsonl", "another story\n");
  const ProgramRun verified = runVideoid({"verify", run});
  EXPECT_EQ(verified.exitCode, 1);
  EXPECT_NE(verified.errors.find("events.jsonl"), std::string::npos) << verified.errors;
}

struct FaultCase {
  const char* script;
  const char* retryMessage;
  /// How the last attempt of the run ended.
  const char* phase;
  const char* reason;
  /// The decision that must fail, and no decision of this name may pass; empty: none is made.
  std::string decision = {};
  /// The prompt that must be seen; empty: none.
  std::string prompt = {};
  /// The hint that must be seen; empty: none.
  std::string hint = {};
};

void PrintTo(const FaultCase& fault, std::ostream* out) {
  *out << fault.script;
}

class FaultySession : public testing::TestWithParam<FaultCase> {};

TEST_P(FaultySession, LeadsToTheRetryScreenAndThenToCancellation) {
  const FaultCase& fault = GetParam();
  const ScratchFolder scratch;
  const Session session = Session::of(fault.script);
  const fs::path run = scratch / "run";
  const ProgramRun kept = runVideoid(captureOf(session, run, withShortLimits({"--keep"})));
  EXPECT_EQ(kept.exitCode, 1) << kept.errors;
  EXPECT_EQ(json::parse(kept.output)["error"]["message"], "The video identification was canceled.");

  EXPECT_EQ(attemptsOf(json::parse(kept.output)).back(),
            std::string(fault.phase) + " " + fault.reason);
  EXPECT_EQ(schemaComplaints(run), "");
  EXPECT_EQ(breachesOf(run), std::vector<std::string>{});
  EXPECT_EQ(eventsOf(run, "retry").at(0)["text"], fault.retryMessage);
  const auto decisions = eventsOf(run, "decision", fault.decision);
  EXPECT_TRUE(fault.decision.empty() || !decisions.empty());
  for (const json& decision : decisions)
    EXPECT_TRUE(fault.decision.empty() || decision["passed"] == false) << decision;
  const auto isExpected = [&](const json& prompt) { return prompt["text"] == fault.prompt; };
  EXPECT_TRUE(fault.prompt.empty() || std::ranges::any_of(eventsOf(run, "prompt"), isExpected));
  EXPECT_TRUE(fault.hint.empty() || !eventsOf(run, "hint", fault.hint).empty());
}

constexpr auto kUnreadable = "Your ID could not be read. Please try again";
INSTANTIATE_TEST_SUITE_P(
    EndToEnd, FaultySession,
    testing::Values(FaultCase{"wrong-person", "Your face could not be captured. Please try again",
                              "selfie", "timedOut", "selfieFace", "The face does not match the ID"},
                    FaultCase{"wrong-card", kUnreadable, "document", "timedOut", "frontText"},
                    FaultCase{"wrong-back", kUnreadable, "document", "timedOut", "backMrz",
                              "This is not the same ID"},
                    FaultCase{"face-leaves", "Live Face Lost. Please try again", "document",
                              "outOfSight", "", "", "faceOutOfSight"},
                    FaultCase{"silence", "Voice does not match text. Please try again", "reading",
                              "tooFewWords", "spokenWords"}),
    [](const auto& tested) {
      std::string name = tested.param.script;
      std::ranges::replace(name, '-', '_');
      return name;
    });

/// A session in which nothing comes to an end by itself for minutes, however slow the machine is:
/// a person whose face is never accepted.
Session endlessSession(const ScratchFolder& scratch) {
  Session session = Session::of("wrong-person");
  const fs::path film = scratch / "endless.mp4";
  const ProgramRun looped = runProgram(
      "ffmpeg", {"-v", "error", "-stream_loop", "60", "-i", session.camera, "-c", "copy", film});
  EXPECT_EQ(looped.exitCode, 0) << looped.errors;
  session.camera = film;
  writeBytes(scratch / "patient.json", R"({"selfieCapture.timeOutSeconds": 600})");
  return session;
}

TEST(EndToEnd, SignalsAndALostFolderEndARunAtOnceAndLeaveWhatPlaysOrNothing) {
  const ScratchFolder scratch;
  const Session session = endlessSession(scratch);
  setenv("QT_QPA_PLATFORM", "offscreen", 1);
  const struct {
    const char* disturbance;
    Arguments world;
    const char* cause;
    const char* sentence;
  } cases[] = {{"kill -TERM $pid", {"--time", "media"}, "canceled", "was canceled"},
               {"kill -INT $pid", {"--time", "real", "--keep"}, "canceled", "was canceled"},
               {"kill -TERM $pid", {"--screen", "window", "--keep"}, "canceled", "was canceled"},
               {"rm -r \"$run\"", {"--screen", "headless"}, "folderLost", "removed"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.world[1]);
    const fs::path run = scratch / c.world[1];
    Arguments arguments = captureOf(session, run, c.world);
    arguments.insert(arguments.end(), {"--options", scratch / "patient.json"});
    const ProgramRun ended = runDisturbed(arguments, run, c.disturbance);
    EXPECT_EQ(ended.exitCode, 1);
    EXPECT_EQ(json::parse(ended.output)["error"]["cause"], c.cause);
    EXPECT_NE(ended.errors.find(c.sentence), std::string::npos) << ended.errors;
    EXPECT_FALSE(json::parse(ended.output)["attempts"].empty());
    const bool kept = c.world.back() == "--keep";
    EXPECT_EQ(fs::exists(run), kept);
    if (!kept) continue;
    expectPartialFilmPlays(run);
    EXPECT_EQ(runVideoid({"verify", run}).exitCode, 0);
  }
  unsetenv("QT_QPA_PLATFORM");
}

TEST(EndToEnd, ARetryThatSucceedsGivesTheFilmOfTheSecondRunAndKeepsTheFirstApart) {
  const ScratchFolder scratch;
  const Session lost = Session::of("face-leaves");
  const Session good = Session::of("short");
  writeBytes(scratch / "parts",
             "file '" + lost.camera.string() + "'\nfile '" + good.camera.string() + "'\n");
  Session both = good;
  both.camera = scratch / "both.mp4";
  const ProgramRun joined = runProgram("ffmpeg", {"-v", "error", "-f", "concat", "-safe", "0", "-i",
                                                  scratch / "parts", "-c", "copy", both.camera});
  ASSERT_EQ(joined.exitCode, 0) << joined.errors;

  const fs::path run = scratch / "run";
  const ProgramRun retried = runVideoid(
      captureOf(both, run,
                withShortLimits({"--on-retry", "retry", "--max-retries", "1", "--on-alert", "ok",
                                 "--done", "never", "--keep-failed-runs", "--no-evidence"})));
  ASSERT_EQ(retried.exitCode, 0) << retried.errors;
  const json recording = json::parse(retried.output)["recording"];
  EXPECT_EQ(recording["runs"], 2);
  EXPECT_EQ(attemptsOf(json::parse(retried.output)),
            (std::vector<std::string>{"selfie accepted", "document outOfSight", "selfie accepted",
                                      "document accepted", "reading accepted"}));
  const double seconds = secondsOfFilm(run / "film.run1.mp4") + secondsOfFilm(run / "film.mp4");
  EXPECT_NEAR(recording["framesWritten"].get<double>() / 30, seconds, 0.1);
  EXPECT_EQ(recording["framesCaptured"], recording["framesWritten"]);
  const ProgramRun verified = runVideoid({"verify", run});
  EXPECT_EQ(verified.exitCode, 0) << verified.errors;
  EXPECT_NE(verified.output.find("film.run1.mp4"), std::string::npos) << verified.output;
  EXPECT_EQ(breachesOf(run), std::vector<std::string>{});
  const double began = eventsOf(run, "call", "retry").front()["t"];
  const double stopped = eventsOf(run, "call", "stopVideoWriter").back()["t"];
  EXPECT_NEAR(secondsOfFilm(run / "film.mp4"), stopped - began, 0.5);
  EXPECT_EQ(std::distance(fs::directory_iterator(run), fs::directory_iterator()), 5)
      << "no evidence, which was not wanted";
}

TEST(EndToEnd, EnrollRefusesTheWrongSidesAndSaysWhy) {
  const ScratchFolder scratch;
  const Session session = Session::of("short");
  const std::string front = session.camera.parent_path() / "front.png";
  const std::string back = session.camera.parent_path() / "back.png";
  const ProgramRun swapped =
      runVideoid({"enroll", "--front", back, "--back", front, "--output", scratch / "swapped"});
  EXPECT_EQ(swapped.exitCode, 2);
  EXPECT_NE(swapped.errors.find("shows the other side"), std::string::npos) << swapped.errors;
  const ProgramRun twice =
      runVideoid({"enroll", "--front", front, "--back", front, "--output", scratch / "twice"});
  EXPECT_EQ(twice.exitCode, 2);
  EXPECT_FALSE(fs::exists(scratch / "twice"));
}

TEST(EndToEnd, EnrollRefusesACardWhoseDatesAreNotInOrderUnlessItIsAllowed) {
  const ScratchFolder scratch;
  const fs::path stills = Session::of("short").camera.parent_path();
  Arguments arguments{"enroll",
                      "--front",
                      stills / "front.png",
                      "--back",
                      stills / "back.png",
                      "--output",
                      scratch / "card",
                      "--date",
                      "2032-04-16",
                      "--least-age",
                      "48"};
  const ProgramRun refused = runVideoid(arguments);
  EXPECT_EQ(refused.exitCode, 2);
  arguments.push_back("--allow-conflict");
  const ProgramRun allowed = runVideoid(arguments);
  EXPECT_EQ(allowed.exitCode, 0) << allowed.errors;
  for (const std::string& errors : {refused.errors, allowed.errors}) {
    EXPECT_NE(errors.find("the card had expired on 2032-04-16, the holder was younger than 48"),
              std::string::npos)
        << errors;
  }
}

TEST(EndToEnd, EnrollRefusesACopyWithoutColourUnlessItIsAllowed) {
  const ScratchFolder scratch;
  const fs::path stills = Session::of("short").camera.parent_path();
  const std::string copy = scratch / "copy.png";
  const ProgramRun made =
      runProgram("ffmpeg", {"-v", "error", "-i", stills / "front.png", "-vf", "hue=s=0", copy});
  ASSERT_EQ(made.exitCode, 0) << made.errors;
  Arguments arguments{"enroll", "--front", copy, "--output", scratch / "card"};
  const ProgramRun refused = runVideoid(arguments);
  EXPECT_EQ(refused.exitCode, 2);
  EXPECT_NE(refused.errors.find("the front looks like a copy of the card on paper"),
            std::string::npos)
      << refused.errors;
  arguments.push_back("--allow-copy");
  const ProgramRun allowed = runVideoid(arguments);
  EXPECT_EQ(allowed.exitCode, 0) << allowed.errors;
  EXPECT_NE(allowed.errors.find("WARNING: the front looks like"), std::string::npos);
  const json reference = json::parse(bytesOf(scratch / "card" / "reference.json"));
  EXPECT_EQ(reference["front"]["isReal"], false);
  EXPECT_GE(reference["front"]["realness"]["photocopyScore"].get<double>(), 0.9);
}

TEST(EndToEnd, ALiveCameraThatDiesEndsTheFlowAndLeavesAFilmThatPlays) {
  const ScratchFolder scratch;
  Session session = Session::of("short");
  const std::string clip = scratch / "clip.mp4";
  const ProgramRun cut = runProgram(
      "ffmpeg", {"-v", "error", "-t", "2", "-i", session.camera, "-an", "-c", "copy", clip});
  ASSERT_EQ(cut.exitCode, 0) << cut.errors;
  const std::string microphone = "virtual:tone";
  session.camera = "virtual:" + clip;
  const fs::path run = scratch / "run";
  const Arguments live{"--microphone", microphone, "--screen", "headless"};
  EXPECT_EQ(runVideoid(captureOf(session, run, live)).exitCode, 2) << "it was not allowed";
  Arguments allowed = live;
  allowed.push_back("--allow-virtual-camera");
  // The clip is opened anew for each round.
  const ProgramRun lost = runDisturbed(captureOf(session, run, allowed), run, "rm '" + clip + "'");
  EXPECT_EQ(lost.exitCode, 1) << lost.errors;
  const json result = json::parse(lost.output);
  EXPECT_EQ(result["error"]["cause"], "cameraLost") << result["error"];
  EXPECT_EQ(result["camera"]["virtual"], true);
  EXPECT_EQ(result["microphone"]["name"], "Test tone");
  EXPECT_EQ(eventsOf(run, "devices").size(), 1U);
  expectPartialFilmPlays(run);
}

TEST(EndToEnd, TheCamerasEndEndsTheFlowAndLeavesAFilmThatPlays) {
  const ScratchFolder scratch;
  const Session session = Session::of("face-leaves");
  const fs::path run = scratch / "run";
  const ProgramRun ended =
      runVideoid(captureOf(session, run, {"--on-retry", "retry", "--max-retries", "5"}));
  EXPECT_EQ(ended.exitCode, 1);
  EXPECT_EQ(json::parse(ended.output)["error"]["cause"], "recordingEnded");
  EXPECT_EQ(std::distance(fs::directory_iterator(run), fs::directory_iterator()), 4)
      << "the films of runs that failed are gone, and the last run came to nothing worth a picture";
  expectPartialFilmPlays(run);
  EXPECT_EQ(breachesOf(run), std::vector<std::string>{});
  EXPECT_EQ(runVideoid({"verify", run}).exitCode, 0);
}

}  // namespace
}  // namespace corvana::tests
