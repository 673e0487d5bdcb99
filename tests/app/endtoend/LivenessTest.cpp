#include <algorithm>

#include <gtest/gtest.h>

#include "app/endtoend/Program.h"

namespace corvana::tests {
namespace {

using nlohmann::json;

/// What became of a film that is over before a card is shown.
struct SelfieRun {
  std::string selfie;               ///< how the selfie ended
  std::vector<std::string> signs;   ///< of life and of fraud that were seen
  std::vector<std::string> missed;  ///< tasks
  std::string complaints;
};

SelfieRun capture(const char* script, const json& options,
                  const std::vector<std::string>& more = {}) {
  const ScratchFolder scratch;
  const Session session = Session::of(script);
  writeBytes(scratch / "options.json", options.dump());
  std::vector<std::string> arguments{"capture",
                                     "--reference",
                                     session.reference,
                                     "--text-file",
                                     session.text,
                                     "--camera",
                                     session.camera,
                                     "--output",
                                     scratch / "run",
                                     "--date",
                                     "2026-03-01",
                                     "--options",
                                     scratch / "options.json",
                                     "--keep"};
  arguments.insert(arguments.end(), more.begin(), more.end());
  const ProgramRun done = runVideoid(arguments);
  EXPECT_EQ(done.exitCode, 1) << done.errors;
  SelfieRun run;
  const json result = json::parse(done.output);
  run.selfie = result["attempts"].at(0)["reason"];
  for (const json& sign : eventsOf(scratch / "run", "sign")) {
    if (sign["seen"] == true) run.signs.push_back(sign["name"]);
  }
  for (const json& task : eventsOf(scratch / "run", "task")) {
    if (task["step"] == "missed") run.missed.push_back(task["name"]);
  }
  run.complaints = schemaComplaints(scratch / "run");
  for (const std::string& breach : breachesOf(scratch / "run"))
    run.complaints += breach;
  return run;
}

bool has(const std::vector<std::string>& names, const char* name) {
  return std::ranges::find(names, name) != names.end();
}

TEST(Liveness, TasksThatAreDoneAsDrawnGiveASelfieAndOthersFail) {
  const json active{{"selfieCapture.liveness", "active"}};
  const SelfieRun matching = capture("tasks", active, {"--challenge-seed", "0"});
  EXPECT_EQ(matching.selfie, "accepted");
  EXPECT_EQ(matching.missed, std::vector<std::string>{});
  EXPECT_EQ(matching.complaints, "");

  const SelfieRun other = capture("tasks", active, {"--challenge-seed", "1"});
  EXPECT_EQ(other.selfie, "failed");
  EXPECT_EQ(other.missed, std::vector<std::string>(2, "turnLeft"));
  EXPECT_EQ(other.complaints, "");
}

TEST(Liveness, NoSelfieIsTakenOfAPrintOrOfAFilmThatBeginsAgain) {
  const json shortly{{"selfieCapture.timeOutSeconds", 5}};
  const SelfieRun print = capture("print", shortly);
  EXPECT_EQ(print.selfie, "timedOut");
  EXPECT_FALSE(has(print.signs, "blink") || has(print.signs, "relief"));
  EXPECT_EQ(print.complaints, "");

  const SelfieRun loop = capture("loop", shortly);
  EXPECT_EQ(loop.selfie, "timedOut");
  EXPECT_TRUE(has(loop.signs, "repetition"));
  EXPECT_EQ(loop.complaints, "");
}

}  // namespace
}  // namespace corvana::tests
