#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include <gtest/gtest.h>
#include <unistd.h>

#include "app/SimulateCommand.h"
#include "support/HostTablesGuard.h"

namespace {

namespace fs = std::filesystem;
using app::ExitCode;

const fs::path kSamples = SIMULATE_SAMPLES;
const fs::path kGoldens = SIMULATE_GOLDENS;

struct Played {
  ExitCode exitCode;
  std::string out;
  std::string err;
};

Played simulate(const fs::path& script) {
  const tests::HostTablesGuard tables;
  std::ostringstream out;
  std::ostringstream err;
  const ExitCode exitCode = app::runSimulate({script, MODULE_RESOURCES}, out, err);
  return {exitCode, out.str(), err.str()};
}

std::string contentOf(const fs::path& path) {
  std::ifstream file(path);
  EXPECT_TRUE(file) << path << " is missing";
  std::ostringstream content;
  content << file.rdbuf();
  return content.str();
}

// The whole of what a user sees, as text. Renewed by running this test with
// CORVANA_RENEW_GOLDENS=1, and read before it is committed.
TEST(Simulate, SamplesShowWhatTheyDidBefore) {
  struct Case {
    const char* name;
    ExitCode exitCode;
  };
  for (const Case& c : {Case{"straight", ExitCode::result}, Case{"retry", ExitCode::flowError},
                        Case{"denied-microphone", ExitCode::flowError}}) {
    const Played run = simulate(kSamples / (std::string(c.name) + ".json"));
    EXPECT_EQ(run.exitCode, c.exitCode) << run.err;
    EXPECT_EQ(run.err, "");
    const fs::path golden = kGoldens / (std::string(c.name) + ".txt");
    if (std::getenv("CORVANA_RENEW_GOLDENS")) std::ofstream(golden) << run.out;
    EXPECT_EQ(run.out, contentOf(golden));
  }
}

class HostileScript : public testing::Test {
 protected:
  void SetUp() override {
    folder_ = fs::temp_directory_path() / ("simulate-" + std::to_string(getpid()));
    fs::create_directory(folder_);
  }
  void TearDown() override { fs::remove_all(folder_); }
  Played play(const std::string& content) {
    const fs::path script = folder_ / "script.json";
    std::ofstream(script) << content;
    return simulate(script);
  }
  fs::path folder_;
};

std::string scriptWith(const std::string& stepsAndMore) {
  return R"({"text": "a b", "front": {"ocr": ["x"]}, )" + stepsAndMore + "}";
}

TEST_F(HostileScript, EndsWithOneSentenceThatNamesThePlace) {
  const struct {
    std::string content;
    const char* sentence;
  } cases[] = {
      {"", "not valid JSON"},
      {"[]", "the script must be a JSON object"},
      {"{\"text\": \"a\"", "not valid JSON"},
      {std::string(100'000, '['), "JSON"},
      {R"({"front": {}, "steps": []})", "text: this key is missing"},
      {R"({"text": 7, "front": {}, "steps": []})", "text: must be a text"},
      {R"({"text": "a", "front": [], "steps": []})", "front must be a JSON object"},
      {R"({"text": "a", "front": {"ocr": "x"}, "steps": []})", "front.ocr: must be a list"},
      {R"({"text": "a", "front": {"ocr": [1]}, "steps": []})", "front.ocr: must be a list"},
      {R"({"text": "a", "front": {"type": "ID"}, "steps": []})", "front.type: must end in"},
      {R"({"text": "a", "front": {"face": "pattern:9"}, "steps": []})", "front.face: patterns"},
      {R"({"text": "a", "front": {"face": "no.png"}, "steps": []})", "front.face: "},
      {R"({"text": "a", "front": {"colour": 1}, "steps": []})", "front.colour: there is no such"},
      {scriptWith(R"("steps": {})"), "steps: must be a list"},
      {scriptWith(R"("steps": [1])"), "steps[0] must be a JSON object"},
      {scriptWith(R"("steps": [{"at": -1, "do": "foreground"}])"), "steps[0].at: must be a number"},
      {scriptWith(R"("steps": [{"at": 1e300, "do": "foreground"}])"), "steps[0].at: must be"},
      {scriptWith(R"("steps": [{"at": 1e999, "do": "foreground"}])"), "a number that is too large"},
      {scriptWith(R"("steps": [{"at": "1", "do": "foreground"}])"), "steps[0].at: must be"},
      {scriptWith(R"("steps": [{"at": 2, "do": "foreground"}, {"at": 1, "do": "foreground"}])"),
       "steps[1].at: must be a number from 2.0"},
      {scriptWith(R"("steps": [{"at": 1, "do": "dance"}])"),
       "steps[0].do: \"dance\" is not one of"},
      {scriptWith(R"("steps": [{"at": 1, "do": "selfie", "state": "success"}])"),
       "steps[0].face: this key is missing"},
      {scriptWith(R"("steps": [{"at": 1, "do": "card", "state": "success", "card": "back"}])"),
       "steps[0].card: must be"},
      {scriptWith(R"("steps": [{"at": 1, "do": "speech"}])"), "steps[0]: needs either"},
      {scriptWith(R"("steps": [{"at": 1, "do": "foreground", "loud": true}])"),
       "steps[0].loud: there is no such key"},
      {scriptWith(R"("until": 1e9, "steps": [])"), "until: must be a number"},
      {scriptWith(R"("options": {"speed": 1}, "steps": [])"), "\"speed\""},
      {scriptWith(R"("options": 3, "steps": [])"), "options"},
      {scriptWith(R"("world": {"microphone": "broken"}, "steps": [])"), "world.microphone"},
      {scriptWith(R"("steps": [{"at": 0.1, "do": "liveFace"}])"),
       "steps[0] comes while there is no recorder"},
      {scriptWith(R"("world": {"hasSpeechRecognizer": false},
                     "steps": [{"at": 1, "do": "speech", "heard": "a"}])"),
       "steps[0] has nobody to hear it"},
      {scriptWith(R"("steps": [])"), "The script ended before the flow did"},
  };
  for (const auto& c : cases) {
    const Played run = play(c.content);
    EXPECT_EQ(run.exitCode, ExitCode::wrongUse) << c.content;
    EXPECT_NE(run.err.find(c.sentence), std::string::npos) << run.err;
    EXPECT_EQ(run.err.find('\n'), run.err.size() - 1) << run.err;
  }
  EXPECT_EQ(simulate(folder_ / "none.json").exitCode, ExitCode::wrongUse);
}

TEST_F(HostileScript, AFaultOfTheWriterReachesTheCaller) {
  const Played run = play(R"({
    "text": "a", "options": {"videoCapture.readTextWordMatchThreshold": 0},
    "front": {"ocr": ["x"], "face": "pattern:0", "type": "PASSPORT_FRONT"},
    "steps": [
      {"at": 1, "do": "film", "error": "The disk is full."},
      {"at": 1, "do": "selfie", "state": "success", "face": "pattern:0"},
      {"at": 2, "do": "card", "state": "detectingBox"},
      {"at": 2, "do": "card", "state": "success", "card": "front"},
      {"at": 4, "do": "tap", "button": "done"}]})");
  EXPECT_EQ(run.exitCode, ExitCode::flowError) << run.err;
  EXPECT_NE(run.out.find("caller error The disk is full."), std::string::npos) << run.out;
  EXPECT_NE(run.out.find("At 2.000 s: idSuccess was reported for a card that was not classified"),
            std::string::npos)
      << run.out;
}

}  // namespace
