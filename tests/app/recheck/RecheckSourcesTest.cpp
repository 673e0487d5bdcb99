#include <gtest/gtest.h>

#include "app/keys/Sha256.h"
#include "app/recheck/RecheckSources.h"
#include "app/record/Files.h"
#include "support/Scratch.h"

namespace corvana::tests {
namespace {

namespace fs = std::filesystem;

/// Two references in one folder and two texts, and a run that was recorded with the second of both.
class RecheckSourcesTest : public testing::Test {
 protected:
  RecheckSourcesTest() {
    for (const char* name : {"a", "b"}) {
      fs::create_directories(scratch / "references" / name);
      writeBytes(scratch / "references" / name / "reference.json", name);
      writeBytes(scratch / (std::string(name) + ".txt"), std::string(name) + "\n");
    }
    run.folder = "run";
    run.result["reference"] = *app::sumsOf({scratch / "references/b/reference.json"});
    run.result["text"] = app::sha256Of("b");
  }
  ScratchFolder scratch;
  app::RecordedRun run;
};

TEST_F(RecheckSourcesTest, TakesOfSeveralWhatTheRecordNames) {
  const auto reference = app::referenceFor(run, {.references = {scratch / "references"}});
  ASSERT_TRUE(reference) << reference.error().sentence;
  EXPECT_EQ(*reference, scratch / "references/b");
  const auto text = app::textFor(run, {.textFiles = {scratch / "a.txt", scratch / "b.txt"}});
  ASSERT_TRUE(text) << text.error().sentence;
  EXPECT_EQ(*text, "b");
}

TEST_F(RecheckSourcesTest, ATextIsTheSameWhateverAnEditorPutsAroundIt) {
  for (const char* content : {"b", "b\r\n",
                              "\xef\xbb\xbf"
                              "b\n\n"}) {
    writeBytes(scratch / "b.txt", content);
    const auto text = app::textFor(run, {.textFiles = {scratch / "a.txt", scratch / "b.txt"}});
    ASSERT_TRUE(text) << text.error().sentence;
    EXPECT_EQ(*text, "b");
  }
}

TEST_F(RecheckSourcesTest, TakesASingleOneWhateverTheRecordNamesAndNeverGuesses) {
  EXPECT_EQ(app::referenceFor(run, {.references = {scratch / "references/a"}}),
            scratch / "references/a");
  EXPECT_EQ(app::textFor(run, {.text = "a"}), "a");
  run.result["reference"] = run.result["text"] = "another";
  for (const std::string& sentence :
       {app::referenceFor(run, {.references = {scratch / "references"}}).error().sentence,
        app::textFor(run, {.text = "a", .textFiles = {scratch / "b.txt"}}).error().sentence}) {
    EXPECT_NE(sentence.find("None of the"), std::string::npos) << sentence;
  }
  EXPECT_NE(app::textFor(run, {}).error().sentence.find("--text-file"), std::string::npos);
  run.text = "its own";
  EXPECT_EQ(app::textFor(run, {}), "its own");
}

}  // namespace
}  // namespace corvana::tests
