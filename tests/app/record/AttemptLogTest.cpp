#include <gtest/gtest.h>

#include "app/record/AttemptLog.h"
#include "platform/foundation/VirtualRunLoop.h"

namespace corvana::tests {
namespace {

using engine::RecorderEvent;
using Kind = RecorderEvent::Kind;
using nlohmann::ordered_json;

class AttemptLogTest : public testing::Test {
 protected:
  void after(double seconds, const RecorderEvent& event) {
    loop.advance(platform::seconds(seconds));
    log.happened(event);
  }
  static app::Outcome canceled() {
    return tl::unexpected(corvana::IDError(corvana::IDError::Strings::canceled));
  }
  /// Run, phase, length and reason of each.
  std::vector<std::string> told() const {
    std::vector<std::string> lines;
    for (const ordered_json& attempt : log.toJson()) {
      const double seconds = attempt["to"].get<double>() - attempt["from"].get<double>();
      lines.push_back(attempt["run"].dump() + " " + attempt["phase"].get<std::string>() + " " +
                      std::to_string(std::lround(seconds)) + " " +
                      attempt["reason"].get<std::string>());
    }
    return lines;
  }

  platform::VirtualRunLoop loop;
  app::AttemptLog log{loop};
};

TEST_F(AttemptLogTest, TellsHowEachPartOfEachRunEnded) {
  after(0, {Kind::mode, "selfieCapture", {}});
  after(9, {Kind::state, "selfieTimedOut", {}});
  after(1, {Kind::state, "selfieTimedOut", {}});
  after(1, {Kind::call, "stopVideoWriter", {}});
  after(4, {Kind::call, "retry", {}});
  after(0, {Kind::mode, "selfieCapture", {}});
  after(4, {Kind::mode, "idCapture", {}});
  after(3, {Kind::liveFace, "lost", {{"seconds", 0.1}, {"cause", "anotherPerson"}}});
  after(4, {Kind::call, "retry", {}});
  after(0, {Kind::mode, "selfieCapture", {}});
  after(2, {Kind::mode, "idCapture", {}});
  after(5, {Kind::mode, "readingText", {}});
  log.decided({"spokenWords", 0.2, 0.7, false});
  after(2, {Kind::call, "retry", {}});
  after(0, {Kind::mode, "selfieCapture", {}});
  after(6, {Kind::state, "alignFace", {}});
  log.finish(canceled());
  EXPECT_EQ(told(), (std::vector<std::string>{"1 selfie 9 timedOut", "2 selfie 4 accepted",
                                              "2 document 3 anotherPerson", "3 selfie 2 accepted",
                                              "3 document 5 accepted", "3 reading 0 tooFewWords",
                                              "4 selfie 6 canceled"}));
  EXPECT_EQ(log.toJson().back()["lastState"], "alignFace");
}

TEST_F(AttemptLogTest, HasTheLastFigureOfEachNameAndWhatThePersonWasToldLast) {
  const auto sign = [](double value, bool seen) {
    return RecorderEvent{
        Kind::sign, "relief", {{"value", value}, {"threshold", 0.05}, {"seen", seen}}};
  };
  after(0, {Kind::mode, "selfieCapture", {}});
  after(1, sign(0.01, false));
  after(1, {Kind::hint, "none", {}});
  log.decided({"selfieFace", 1.1, 0.9, false});
  after(1, {Kind::state, "detectedIssue", {{"issue", std::string("It is too dark here")}}});
  after(1, sign(0.06004, true));
  after(1, {Kind::state, "selfieTimedOut", {}});
  const ordered_json figures = {
      {{"name", "relief"}, {"value", 0.06}, {"threshold", 0.05}, {"seen", true}},
      {{"name", "selfieFace"}, {"value", 1.1}, {"threshold", 0.9}, {"passed", false}}};
  EXPECT_EQ(log.toJson()[0]["figures"], figures);
  EXPECT_EQ(log.toJson()[0]["issue"], "It is too dark here");
  log.finish(canceled());
  EXPECT_EQ(log.toJson().size(), 1U) << "nothing was under way";
}

}  // namespace
}  // namespace corvana::tests
