#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "app/keys/Sha256.h"
#include "app/privacy/Consent.h"
#include "app/privacy/RunTerms.h"
#include "support/Scratch.h"

namespace corvana::tests {
namespace {

using nlohmann::json;

const engine::CalendarDate kToday{std::chrono::year(2026), std::chrono::month(2),
                                  std::chrono::day(27)};

TEST(Consent, TakesARecordAsItIsAndRefusesOneThatDoesNotSayWhatWasAgreedTo) {
  const ScratchFolder scratch;
  const json good{{"given", true},
                  {"statement", "I agree to be filmed."},
                  {"time", "2026-02-27T09:00:00Z"},
                  {"language", "en"}};
  const auto with = [&](const char* key, const json& value) {
    json changed = good;
    changed[key] = value;
    return changed.dump();
  };
  const std::pair<std::string, std::string> cases[] = {
      {good.dump(4), ""},
      {with("given", false), "given"},
      {with("given", "yes"), "given"},
      {with("statement", ""), "statement"},
      {with("time", "yesterday"), "time"},
      {with("signature", "X"), "signature"},
      {"{\"given\": true}", "statement"},
      {"[true]", "JSON object"},
      {"{", "not valid JSON"},
      {std::string(100'000, ' '), "larger than"},
  };
  for (const auto& [bytes, fault] : cases) {
    writeBytes(scratch / "consent.json", bytes);
    const auto read = app::readConsent(scratch / "consent.json");
    ASSERT_EQ(read.has_value(), fault.empty()) << bytes.substr(0, 99);
    if (read) {
      EXPECT_EQ(*read, bytes);
    } else {
      EXPECT_NE(read.error().sentence.find(fault), std::string::npos) << read.error().sentence;
      EXPECT_EQ(read.error().sentence.find("I agree"), std::string::npos);
    }
  }
  EXPECT_FALSE(app::readConsent(scratch / "none.json"));
}

TEST(RunTerms, SayUntilWhenARunIsKeptAndBindTheConsent) {
  const json open = app::termsToJson({}, kToday);
  EXPECT_EQ(open, (json{{"retention", {{"days", nullptr}, {"until", nullptr}}}}));
  EXPECT_FALSE(app::keptUntil(open));
  app::RunTerms terms;
  terms.consent = "{}";
  terms.retainDays = 3;
  const json limited = app::termsToJson(terms, kToday);
  EXPECT_EQ(limited["consent"], app::sha256Of("{}"));
  EXPECT_EQ(limited["retention"]["until"], "2026-03-02");
  EXPECT_EQ(engine::isoDate(*app::keptUntil(limited)), "2026-03-02");
  for (const json& strange :
       {json(5), json{{"retention", 5}}, json{{"retention", {{"until", "2026-13-45"}}}}})
    EXPECT_FALSE(app::keptUntil(strange)) << strange;
}

}  // namespace
}  // namespace corvana::tests
