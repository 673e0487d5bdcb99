#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <thread>

#include <gtest/gtest.h>

#include "Voice.h"
#include "devices/headless/RealRunLoop.h"
#include "engine/speech/PocketSphinxRecognizer.h"
#include "engine/speech/ReadingText.h"
#include "platform/foundation/VirtualRunLoop.h"

namespace {

using Samples = std::vector<std::int16_t>;
using Words = std::vector<std::string>;

const std::string kText =
    "I confirm that I open this account for myself, and that my answers are true.";

Words wordsOf(const std::string& text) {
  Words words;
  for (auto& word : engine::readingWords(text))
    words.push_back(word.spelling);
  return words;
}

/// Share of the text's words that were heard, in any order.
double heardShare(Words heard, const std::string& text) {
  Words written = wordsOf(text);
  std::sort(heard.begin(), heard.end());
  std::sort(written.begin(), written.end());
  Words common;
  std::set_intersection(heard.begin(), heard.end(), written.begin(), written.end(),
                        std::back_inserter(common));
  return static_cast<double>(common.size()) / static_cast<double>(written.size());
}

/// Writes down every call, results as "words" or "words." when final.
struct Notes final : corvana::SpeechRecognizerDelegate {
  void speechRecognition(const platform::SFSpeechRecognitionResult& result) override {
    words.clear();
    for (const auto& segment : result.bestTranscription.segments)
      words.push_back(segment.substring);
    std::string line;
    for (const std::string& word : words)
      line += word + ' ';
    results.push_back(line + (result.isFinal ? "." : ""));
  }
  void speechRecognition(const corvana::IDError& error) override {
    errors.push_back(error.localizedDescription());
  }

  Words words;
  std::vector<std::string> results;
  std::vector<std::string> errors;
};

platform::CMSampleBufferRef bufferOf(Samples samples, int rate, int channels) {
  auto buffer = std::make_shared<platform::CMSampleBuffer>();
  buffer->samples = std::move(samples);
  buffer->sampleRate = rate;
  buffer->channels = channels;
  return buffer;
}

const auto kPaths = engine::SpeechModelPaths::inFolder(engine::kDebianSpeechModelFolder);

class PocketSphinxRecognizer : public testing::Test {
 protected:
  void TearDown() override { corvana::SpeechRecognizer::options = {}; }

  void listen(const std::string& text, const engine::SpeechModelPaths& paths = kPaths) {
    corvana::SpeechRecognizer::options.contextualText = text;
    notes = std::make_shared<Notes>();
    recognizer = std::make_unique<engine::PocketSphinxRecognizer>(loop, paths);
    recognizer->setDelegate(notes);
    recognizer->start();
  }

  void append(Samples samples, int rate = 16000, int channels = 1) {
    recognizer->append(bufferOf(std::move(samples), rate, channels));
  }
  /// Plays the samples as a microphone that gives 20 ms at a time.
  void hear(const Samples& samples, int rate = 16000, int channels = 1) {
    const std::size_t size = static_cast<std::size_t>(rate / 50 * channels);
    for (std::size_t from = 0; from < samples.size(); from += size) {
      const std::size_t to = std::min(from + size, samples.size());
      append(Samples(samples.begin() + from, samples.begin() + to), rate, channels);
      loop.advance(std::chrono::milliseconds(20));
    }
  }
  void silence(int seconds) { hear(Samples(static_cast<std::size_t>(16000 * seconds))); }

  platform::VirtualRunLoop loop;
  std::shared_ptr<Notes> notes;
  std::unique_ptr<engine::PocketSphinxRecognizer> recognizer;
};

TEST_F(PocketSphinxRecognizer, HearsTheTextWhileItIsReadAndAfterPauses) {
  listen(kText);
  silence(2);
  EXPECT_TRUE(notes->results.empty());
  hear(speak("I confirm that I open this account for myself", "rms"));
  EXPECT_GE(notes->results.size(), 5U);
  silence(2);
  EXPECT_EQ(notes->results.back().back(), '.');
  const Words before = notes->words;
  hear(speak("and that my answers are true", "rms"));
  ASSERT_GE(notes->words.size(), before.size());
  EXPECT_TRUE(std::equal(before.begin(), before.end(), notes->words.begin()));
  EXPECT_GE(heardShare(notes->words, kText), 0.85);
  EXPECT_TRUE(notes->errors.empty());
}

TEST_F(PocketSphinxRecognizer, DoesNotHearTheTextInOtherSpeech) {
  listen(kText);
  hear(speak("The weather report says rain is coming from the west before lunch on Tuesday"));
  EXPECT_FALSE(notes->words.empty());
  EXPECT_LT(heardShare(notes->words, kText), 0.25);
}

TEST_F(PocketSphinxRecognizer, WithoutATextHearsPlainEnglish) {
  listen("");
  hear(speak("The weather report says rain is coming from the west before lunch"));
  EXPECT_GE(heardShare(notes->words, "weather rain is coming from the west lunch"), 0.6);
}

TEST_F(PocketSphinxRecognizer, GivesTheSameResultsEachTime) {
  const Samples voice = speak("I open this account for myself");
  std::vector<std::string> first;
  for (int run = 0; run < 2; ++run) {
    listen(kText);
    hear(voice);
    silence(1);
    if (run == 0) first = notes->results;
  }
  EXPECT_GE(first.size(), 3U);
  EXPECT_EQ(notes->results, first);

  // Neither does what was heard before a restart leave a trace.
  recognizer->stop();
  notes->results.clear();
  recognizer->start();
  hear(voice);
  silence(1);
  EXPECT_EQ(notes->results, first);
}

TEST_F(PocketSphinxRecognizer, IsSilentBeforeStartAndAfterStop) {
  const Samples voice = speak("I open this account");
  listen(kText);
  hear(voice);
  const std::size_t heard = notes->results.size();
  EXPECT_GT(heard, 0U);
  append(voice);
  recognizer->stop();
  hear(voice);
  EXPECT_EQ(notes->results.size(), heard);

  recognizer->start();
  hear(speak("this account for myself"));
  EXPECT_LE(notes->words.size(), 5U);
  EXPECT_GE(heardShare(notes->words, "this account for myself"), 0.75) << notes->results.back();
}

TEST_F(PocketSphinxRecognizer, TakesAnyMicrophone) {
  const Samples voice = speak("I confirm that I open this account for myself");
  listen(kText);
  hear(voice);
  const Words mono = notes->words;
  listen(kText);
  hear(asStereo48k(voice), 48000, 2);
  EXPECT_GE(heardShare(notes->words, "I confirm that I open this account for myself"), 0.85);
  EXPECT_NEAR(static_cast<double>(notes->words.size()), static_cast<double>(mono.size()), 1);

  // What no microphone sends is passed over.
  const std::size_t results = notes->results.size();
  append({1, 2, 3}, 0, 1);
  append({1, 2, 3}, 16000, 0);
  append({1}, 48000, 2);
  recognizer->append(nullptr);
  loop.advance(std::chrono::seconds(1));
  EXPECT_EQ(notes->results.size(), results);
}

TEST_F(PocketSphinxRecognizer, LearnsNamesAndNumbersOfTheText) {
  const std::string text = "My name is Zbigniew Müller, born in 1987.";
  listen(text);
  hear(speak("My name is Zbigniew Muller born in nineteen eighty seven"));
  EXPECT_EQ(notes->words, wordsOf(text));
}

TEST_F(PocketSphinxRecognizer, TellsOfABrokenModelOnce) {
  const auto folder = std::filesystem::path(testing::TempDir()) / "corvana-broken-speech-model";
  std::filesystem::create_directories(folder);
  std::ofstream(folder / "en-us.lm.bin") << "this is no language model, although long enough";
  auto paths = kPaths;
  paths.languageModel = folder / "en-us.lm.bin";
  listen(kText, paths);
  silence(1);
  recognizer->stop();
  recognizer->start();
  silence(1);
  ASSERT_EQ(notes->errors.size(), 1U);
  EXPECT_NE(notes->errors[0].find("cannot be loaded"), std::string::npos);
  EXPECT_TRUE(notes->results.empty());

  paths.languageModel = folder / "absent";
  listen(kText, paths);
  silence(1);
  EXPECT_FALSE(recognizer->isAvailable());
  ASSERT_EQ(notes->errors.size(), 1U);
  EXPECT_NE(notes->errors[0].find("absent is missing"), std::string::npos);
  std::filesystem::remove_all(folder);
}

TEST(PocketSphinxRecognizerInRealTime, HearsOnItsOwnThreadWhatCameWhileTheModelWasBuilt) {
  devices::RealRunLoop loop;
  const auto notes = std::make_shared<Notes>();
  corvana::SpeechRecognizer::options.contextualText = kText;
  auto recognizer = std::make_unique<engine::PocketSphinxRecognizer>(loop, kPaths);
  recognizer->setDelegate(notes);
  const Samples voice = speak("that I open this account for myself");
  const auto heardAll = [&] { return heardShare(notes->words, "open this account") == 1; };
  for (int run = 0; run < 2; ++run) {
    notes->words.clear();
    recognizer->start();
    std::thread microphone([&] {
      for (std::size_t from = 0; from + 320 < voice.size(); from += 320)
        recognizer->append(bufferOf(Samples(&voice[from], &voice[from + 320]), 16000, 1));
    });
    // A deadline only so that a failure ends: nothing is said about how long hearing takes.
    loop.runUntil(heardAll, loop.now() + std::chrono::minutes(5));
    EXPECT_TRUE(heardAll());
    recognizer->stop();
    microphone.join();
  }
  // Nor do a loop and a recogniser that end while sound is waiting lose their way.
  recognizer->start();
  recognizer->append(bufferOf(voice, 16000, 1));
  recognizer.reset();
  loop.shutDown();
  corvana::SpeechRecognizer::options = {};
}

}  // namespace
