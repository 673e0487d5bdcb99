#include <gtest/gtest.h>

#include "app/report/EvidenceWatch.h"

namespace corvana::tests {
namespace {

using corvana::DetectedData;
using corvana::DocumentSide;
using engine::RecorderEvent;

class EvidenceWatchTest : public testing::Test {
 protected:
  static DetectedData side(DocumentSide which, const std::string& line) {
    DetectedData data;
    data.side = which;
    data.ocrStrings = {line};
    return data;
  }

  static platform::SFSpeechRecognitionResult words(const std::vector<std::string>& all) {
    platform::SFSpeechRecognitionResult result;
    for (const std::string& word : all)
      result.bestTranscription.segments.push_back({word});
    return result;
  }

  const app::Evidence& evidence() const { return watch.evidence(); }

  app::EvidenceWatch watch{{}, "I open this account"};
};

TEST_F(EvidenceWatchTest, KeepsTheSideThatWasJudgedAndNotTheNextOneThatIsSeen) {
  watch.cardRead(side(DocumentSide::front, "FIRST"));
  watch.decided({"frontFace", 0.1, 0.4, false});
  watch.cardRead(side(DocumentSide::front, "SECOND"));
  watch.decided({"frontFace", 0.1, 0.4, true});
  watch.decided({"frontText", 0.1, 0.4, true});
  watch.cardRead(side(DocumentSide::front, "SHOWN ON"));
  watch.decided({"documentType", {}, {}, true});
  EXPECT_EQ(evidence().front->ocrStrings->front(), "SECOND");
  EXPECT_FALSE(evidence().back);
  watch.cardRead(side(DocumentSide::back, "BACK"));
  watch.decided({"backMrz", {}, {}, true});
  EXPECT_EQ(evidence().back->ocrStrings->front(), "BACK");
}

TEST_F(EvidenceWatchTest, KeepsTheBestGuessAsTheFlowCountsIt) {
  watch.heard(words({"I", "open"}));
  watch.heard(words({"I", "open", "account"}));
  watch.heard(words({"eye"}));
  EXPECT_EQ(evidence().heard, (std::vector<std::string>{"i", "open", "account"}));
  EXPECT_EQ(evidence().spoken.size(), 3U);
}

TEST_F(EvidenceWatchTest, ForgetsARunThatWasRetried) {
  watch.selfieTaken({});
  watch.decided({"selfieFace", 0.1, 0.4, true});
  watch.cardRead(side(DocumentSide::front, "FIRST"));
  watch.decided({"frontText", 0.1, 0.4, true});
  watch.heard(words({"I", "open", "this", "account"}));
  watch.happened({RecorderEvent::Kind::call, "retry", {}});
  EXPECT_FALSE(evidence().selfie || evidence().front);
  EXPECT_TRUE(evidence().heard.empty() && evidence().spoken.empty());
  EXPECT_EQ(evidence().text, "I open this account");
  watch.heard(words({"open"}));
  EXPECT_EQ(evidence().heard, std::vector<std::string>{"open"});
}

/// A recogniser that says what it is told to.
class Parrot final : public corvana::SpeechRecognizer {
 public:
  bool isAvailable() const override { return true; }
  void setDelegate(std::weak_ptr<corvana::SpeechRecognizerDelegate> delegate) override {
    delegate_ = std::move(delegate);
  }
  void start() override { started = true; }
  void stop() override { started = false; }
  void append(const platform::CMSampleBufferRef&) override { ++buffers; }
  void say(const platform::SFSpeechRecognitionResult& result) {
    delegate_.lock()->speechRecognition(result);
  }
  bool started = false;
  int buffers = 0;

 private:
  std::weak_ptr<corvana::SpeechRecognizerDelegate> delegate_;
};

class Screen final : public corvana::SpeechRecognizerDelegate {
 public:
  void speechRecognition(const platform::SFSpeechRecognitionResult&) override { ++heard; }
  void speechRecognition(const corvana::IDError&) override {}
  int heard = 0;
};

TEST_F(EvidenceWatchTest, ListensInOnARecogniserWithoutBeingNoticed) {
  const auto parrot = std::make_shared<Parrot>();
  const auto screen = std::make_shared<Screen>();
  const auto listened = app::listenIn(parrot, [this](const auto& result) { watch.heard(result); });
  listened->setDelegate(screen);
  listened->start();
  listened->append(nullptr);
  parrot->say(words({"open"}));
  EXPECT_TRUE(parrot->started && listened->isAvailable());
  EXPECT_EQ(parrot->buffers, 1);
  EXPECT_EQ(screen->heard, 1);
  EXPECT_EQ(evidence().heard, std::vector<std::string>{"open"});
}

}  // namespace
}  // namespace corvana::tests
