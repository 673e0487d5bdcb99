#include <cstdlib>
#include <filesystem>
#include <set>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "app/simulate/SimulateCommand.h"
#include "support/HostTablesGuard.h"
#include "support/Scratch.h"

namespace corvana::tests {
namespace {

namespace fs = std::filesystem;
using app::ExitCode;

const fs::path kSamples = SIMULATE_SAMPLES;
const fs::path kScripts = SIMULATE_SCRIPTS;
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

// The whole of what a user sees and hears and a caller gets, as text. CORVANA_RENEW_GOLDENS=1
// writes the goldens anew, and fails: they are to be read before they are committed.
TEST(Simulate, ScriptsShowWhatTheirGoldensSay) {
  std::set<fs::path> goldens;
  for (const auto& entry : fs::directory_iterator(kGoldens))
    goldens.insert(entry.path());
  for (const fs::path& folder : {kSamples, kScripts}) {
    for (const auto& entry : fs::directory_iterator(folder)) {
      const fs::path golden = kGoldens / entry.path().filename().replace_extension(".txt");
      const Played run = simulate(entry.path());
      const std::string shown =
          run.out + run.err + "exit code " + std::to_string(static_cast<int>(run.exitCode)) + '\n';
      EXPECT_TRUE(fs::exists(golden)) << golden << " is missing";
      EXPECT_EQ(tests::bytesOf(golden), shown) << golden << ", by " << entry.path();
      goldens.erase(golden);
      if (std::getenv("CORVANA_RENEW_GOLDENS")) tests::writeBytes(golden, shown);
    }
  }
  EXPECT_TRUE(goldens.empty()) << *goldens.begin() << " has no script";
  EXPECT_FALSE(std::getenv("CORVANA_RENEW_GOLDENS"))
      << "the goldens were renewed: read them, then run the test without CORVANA_RENEW_GOLDENS";
}

class HostileScript : public testing::Test {
 protected:
  Played play(const std::string& content) {
    tests::writeBytes(folder_ / "script.json", content);
    return simulate(folder_ / "script.json");
  }
  const tests::ScratchFolder folder_;
};

std::string scriptWith(const std::string& stepsAndMore) {
  return R"({"text": "a b", "front": {"ocr": ["x"]}, )" + stepsAndMore + "}";
}

TEST_F(HostileScript, EndsWithOneSentenceThatNamesThePlace) {
  const std::pair<std::string, const char*> cases[] = {
      {"", "not valid JSON"},
      {"[]", "the file must be a JSON object"},
      {"{\"text\": \"a\"", "not valid JSON"},
      {std::string(100'000, '['), "JSON"},
      {R"({"front": {}, "steps": []})", "text: this key is missing"},
      {R"({"text": 7, "front": {}, "steps": []})", "text: must be a text"},
      {R"({"text": "a", "front": [], "steps": []})", "front must be a JSON object"},
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
      {scriptWith(R"("world": {"microphone": "broken"}, "steps": [])"), "world.microphone"},
      {scriptWith(R"("appearance": {"card": {"errorLabelTextColor": "#12345G"}}, "steps": [])"),
       "appearance.card.errorLabelTextColor: must be a colour"},
      {scriptWith(R"("steps": [{"at": 1, "do": "cardDebug", "documentLocation": [1, 2, 3]}])"),
       "steps[0].documentLocation: must be a list of 4 numbers"},
      {scriptWith(R"("steps": [{"at": 0.1, "do": "liveFace"}])"),
       "steps[0] comes while there is no recorder"},
      {scriptWith(R"("world": {"hasSpeechRecognizer": false},
                     "steps": [{"at": 1, "do": "speech", "heard": "a"}])"),
       "steps[0] has nobody to hear it"},
      {scriptWith(R"("steps": [])"), "The script ended before the flow did"},
  };
  for (const auto& [content, sentence] : cases) {
    const Played run = play(content);
    EXPECT_EQ(run.exitCode, ExitCode::wrongUse) << content;
    EXPECT_NE(run.err.find(sentence), std::string::npos) << run.err;
    EXPECT_EQ(run.err.find('\n'), run.err.size() - 1) << run.err;
  }
  EXPECT_EQ(simulate(folder_ / "none.json").exitCode, ExitCode::wrongUse);
}

TEST_F(HostileScript, ThatBreaksTheHostsContractIsToldSo) {
  const Played run = play(scriptWith(R"("steps": [
      {"at": 2, "do": "card", "state": "success", "card": "front"},
      {"at": 4, "do": "tap", "button": "close"}])"));
  EXPECT_EQ(run.exitCode, ExitCode::flowError) << run.err;
  EXPECT_NE(run.out.find("At 2.000 s: idSuccess was reported for a card that was not classified"),
            std::string::npos)
      << run.out;
}

}  // namespace
}  // namespace corvana::tests
