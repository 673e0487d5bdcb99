#include <gtest/gtest.h>

#include "app/recheck/Recheck.h"

namespace corvana::tests {
namespace {

using app::Judgement;
using app::Stand;

Judgement distance(double value, double limit = 0.4) {
  return {"selfieCapture", "selfieFace", value, limit, value <= limit, {}};
}

TEST(Comparison, TellsHowAJudgementStandsToTheRecordedOne) {
  const Judgement living{"selfieCapture", "liveness", {}, {}, {}, "living"};
  const Judgement spoof{"selfieCapture", "liveness", {}, {}, {}, "spoof"};
  const struct {
    const char* what;
    Judgement then, now;
    Stand stand;
  } cases[] = {
      {"noise", distance(0.10), distance(0.13), Stand::same},
      {"towards the limit", distance(0.10), distance(0.15), Stand::nearer},
      {"away from the limit", distance(0.15), distance(0.10), Stand::farther},
      {"beyond the limit", distance(0.39), distance(0.41), Stand::turned},
      {"under another limit", distance(0.30), distance(0.31, 0.3), Stand::turned},
      {"both beyond", distance(0.60), distance(0.50), Stand::nearer},
      {"no figure any more",
       distance(0.1),
       {"selfieCapture", "selfieFace", {}, 0.4, true, {}},
       Stand::turned},
      {"the same word", living, living, Stand::same},
      {"another word", living, spoof, Stand::turned},
  };
  for (const auto& c : cases) {
    const auto compared = app::compare({c.then}, {c.now});
    ASSERT_EQ(compared.size(), 1U) << c.what;
    EXPECT_EQ(compared.front().stand, c.stand) << c.what;
  }
}

TEST(Comparison, MissesWhatTheRecordHasUnlessItComesByChance) {
  const Judgement chance{"idCapture", "documentType", {}, {}, true, {}};
  EXPECT_TRUE(app::compare({chance}, {}).empty());
  EXPECT_TRUE(app::compare({}, {distance(0.1)}).empty()) << "it contradicts nothing";
  for (const auto& compared :
       {app::compare({distance(0.1)}, {}), app::compare({}, {distance(0.5)})}) {
    ASSERT_EQ(compared.size(), 1U);
    EXPECT_EQ(compared.front().stand, Stand::turned);
  }
}

TEST(Comparison, AgreesOnlyWhenEndingJudgementsAndInputsDo) {
  app::RecheckReport agreeing;
  agreeing.recordedEnding = agreeing.recheckedEnding = "result";
  agreeing.judgements = app::compare({distance(0.1)}, {distance(0.2)});
  EXPECT_TRUE(agreeing.agrees()) << "nearer to its limit is no difference yet";
  auto report = agreeing;
  report.recheckedEnding = "retry after selfieTimedOut";
  EXPECT_FALSE(report.agrees());
  report.recordedEnding = "";
  EXPECT_TRUE(report.agrees()) << "no film shows why the run ended";
  report = agreeing;
  report.contradictions.emplace_back("The text is not the one that the record names.");
  EXPECT_FALSE(report.agrees());
  report = agreeing;
  report.judgements = app::compare({distance(0.1)}, {distance(0.5)});
  EXPECT_FALSE(report.agrees());
}

}  // namespace
}  // namespace corvana::tests
