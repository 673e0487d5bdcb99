#include <sstream>

#include <gtest/gtest.h>

#include "app/card/CardWatch.h"
#include "platform/foundation/VirtualRunLoop.h"
#include "support/Scratch.h"

namespace corvana::tests {
namespace {

using corvana::DetectedData;
using corvana::DocumentSide;
using corvana::FieldName;
using corvana::FieldSource;

class CardWatchTest : public testing::Test {
 protected:
  static DetectedData side(DocumentSide which, FieldSource source, const std::string& surname) {
    DetectedData data;
    data.side = which;
    data.fields = {{FieldName::surname, surname, source, 0.95F, false, std::nullopt}};
    return data;
  }

  std::vector<std::string> agreements() const {
    std::vector<std::string> all;
    std::istringstream lines(bytesOf(scratch / app::EventLog::kFileName));
    for (std::string line; std::getline(lines, line);) {
      const auto event = nlohmann::json::parse(line);
      EXPECT_EQ(line.find("MEIER"), std::string::npos) << "a value: " << line;
      if (event["event"] == "field") all.push_back(event["agreement"]);
    }
    return all;
  }

  ScratchFolder scratch;
  platform::VirtualRunLoop loop;
  app::EventLog events{loop, scratch / app::EventLog::kFileName,
                       [](const platform::Fault& fault) { FAIL() << fault.sentence; }};
  app::CardWatch watch{events,
                       {{std::chrono::year(2026), std::chrono::month(3), std::chrono::day(1)}, 0}};
};

TEST_F(CardWatchTest, TellsWhatBecomesOfAFieldOnceUntilItChanges) {
  watch.cardRead(side(DocumentSide::front, FieldSource::print, "MEIER"));
  EXPECT_TRUE(agreements().empty()) << "there is nothing yet to set it against";
  const DetectedData back = side(DocumentSide::back, FieldSource::zone, "MEIER");
  watch.cardRead(back);
  watch.cardRead(back);
  EXPECT_EQ(agreements(), std::vector<std::string>{"agrees"});
  EXPECT_TRUE(watch.hints().empty());
  watch.cardRead(side(DocumentSide::back, FieldSource::zone, "MAIER"));
  EXPECT_EQ(agreements(), (std::vector<std::string>{"agrees", "conflicts"}));
  EXPECT_EQ(app::hintsToJson(watch.hints()).dump(),
            R"([{"name":"conflict","field":"surname","source":"zone"}])");
}

TEST_F(CardWatchTest, HintsThatASideLooksLikeACopy) {
  DetectedData front = side(DocumentSide::front, FieldSource::print, "MEIER");
  front.isReal = true;
  watch.cardRead(front);
  EXPECT_TRUE(watch.hints().empty());
  front.isReal = false;
  watch.cardRead(front);
  EXPECT_EQ(app::hintsToJson(watch.hints()).dump(), R"([{"name":"suspectCopy"}])");
}

TEST_F(CardWatchTest, ForgetsTheCardWhenTheFlowBeginsAnew) {
  watch.cardRead(side(DocumentSide::front, FieldSource::print, "MEIER"));
  watch.cardRead(side(DocumentSide::back, FieldSource::zone, "MAIER"));
  EXPECT_EQ(watch.hints().size(), 1U);
  watch.happened({engine::RecorderEvent::Kind::call, "retry", {}});
  EXPECT_TRUE(watch.hints().empty());
}

}  // namespace
}  // namespace corvana::tests
