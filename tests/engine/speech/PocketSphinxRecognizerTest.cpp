#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <thread>

#include <gtest/gtest.h>

#include "devices/loudspeaker/EspeakSynthesizer.h"
#include "devices/system/RealRunLoop.h"
#include "engine/speech/PocketSphinxRecognizer.h"
#include "engine/speech/ReadingText.h"
#include "platform/foundation/Require.h"
#include "platform/foundation/VirtualRunLoop.h"
#include "support/Scratch.h"

namespace corvana::tests {
namespace {

using Samples = std::vector<std::int16_t>;
using Words = std::vector<std::string>;

/// A synthetic voice's reading of the text, 16 kHz mono.
Samples speak(const std::string& text, const std::string& voice = "slt") {
  const tests::ScratchFolder folder;
  const std::string file = folder / "voice.wav";
  const std::string command = FLITE_PROGRAM " -voice " + voice + " -t \"" + text + "\" -o " + file;
  platform::require(std::system(command.c_str()) == 0, "flite cannot speak: install it");
  const std::string bytes = tests::bytesOf(file);
  constexpr std::size_t kHeader = 44;
  platform::require(bytes.size() > kHeader, "flite made no sound");
  Samples samples((bytes.size() - kHeader) / 2);
  std::memcpy(samples.data(), bytes.data() + kHeader, samples.size() * 2);
  return samples;
}

/// As a 48 kHz stereo microphone would deliver it, the right channel quieter.
Samples asStereo48k(const Samples& samples) {
  Samples result;
  for (std::size_t i = 0; i < 3 * (samples.size() - 1); ++i) {
    const int step = static_cast<int>(i % 3);
    const int value = (samples[i / 3] * (3 - step) + samples[i / 3 + 1] * step) / 3;
    result.push_back(static_cast<std::int16_t>(value));
    result.push_back(static_cast<std::int16_t>(value / 2));
  }
  return result;
}

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
  const Words written = wordsOf(text);
  double common = 0;
  for (const std::string& word : written) {
    const auto found = std::ranges::find(heard, word);
    if (found == heard.end()) continue;
    heard.erase(found);
    ++common;
  }
  return common / static_cast<double>(written.size());
}

/// Writes down every call.
struct Notes final : corvana::SpeechRecognizerDelegate {
  void speechRecognition(const platform::SFSpeechRecognitionResult& result) override {
    words.clear();
    for (const auto& segment : result.bestTranscription.segments)
      words.push_back(segment.substring);
    results.push_back(words);
    isFinal = result.isFinal;
  }
  void speechRecognition(const corvana::IDError& error) override {
    errors.push_back(error.localizedDescription());
  }

  Words words;
  bool isFinal = false;
  std::vector<Words> results;
  std::vector<std::string> errors;
};

const auto kPaths = engine::SpeechModelPaths::inFolder(engine::kDebianSpeechModelFolder);

class PocketSphinxRecognizer : public testing::Test {
 protected:
  void listen(const std::string& text, const engine::SpeechModelPaths& paths = kPaths,
              platform::RunLoop* real = nullptr) {
    notes = std::make_shared<Notes>();
    recognizer = std::make_unique<engine::PocketSphinxRecognizer>(real ? *real : loop, paths, text);
    recognizer->setDelegate(notes);
    recognizer->start();
  }

  void append(Samples samples, int rate = 16000, int channels = 1) {
    auto buffer = std::make_shared<platform::CMSampleBuffer>();
    buffer->samples = std::move(samples);
    buffer->sampleRate = rate;
    buffer->channels = channels;
    recognizer->append(buffer);
  }
  /// Plays the samples as a microphone that gives 20 ms at a time.
  void hear(const Samples& samples, int rate = 16000, int channels = 1) {
    const std::size_t size = static_cast<std::size_t>(rate / 50 * channels);
    for (std::size_t from = 0; from < samples.size(); from += size) {
      const std::size_t to = std::min(from + size, samples.size());
      append(Samples(&samples[from], samples.data() + to), rate, channels);
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
  EXPECT_TRUE(notes->isFinal);
  const Words before = notes->words;
  hear(speak("and that my answers are true", "rms"));
  ASSERT_GE(notes->words.size(), before.size());
  EXPECT_TRUE(std::equal(before.begin(), before.end(), notes->words.begin()));
  EXPECT_GE(heardShare(notes->words, kText), 0.85);
  EXPECT_TRUE(notes->errors.empty());
}

TEST_F(PocketSphinxRecognizer, DoesNotHearTheTextInOtherSpeechAndWithoutOneHearsPlainEnglish) {
  const Samples voice = speak("The weather report says rain is coming from the west before lunch");
  listen(kText);
  hear(voice);
  EXPECT_FALSE(notes->words.empty());
  EXPECT_LT(heardShare(notes->words, kText), 0.25);
  listen("");
  hear(voice);
  EXPECT_GE(heardShare(notes->words, "weather rain is coming from the west lunch"), 0.6);
}

TEST_F(PocketSphinxRecognizer, GivesTheSameResultsEachTimeAndNoneWhileStopped) {
  const Samples voice = speak("I open this account for myself");
  std::vector<Words> first;
  const auto hearAll = [&] {
    hear(voice);
    silence(1);
    if (first.empty()) first = notes->results;
    EXPECT_EQ(notes->results, first);
  };
  listen(kText);
  hearAll();
  EXPECT_GE(first.size(), 3U);
  listen(kText);
  hearAll();

  append(voice);  // under way when it is stopped
  recognizer->stop();
  hear(voice);
  EXPECT_EQ(notes->results, first);
  notes->results.clear();
  recognizer->start();
  hearAll();  // what was heard before leaves no trace
}

TEST_F(PocketSphinxRecognizer, TakesAnyMicrophone) {
  const std::string read = "I confirm that I open this account for myself";
  listen(kText);
  hear(asStereo48k(speak(read)), 48000, 2);
  EXPECT_GE(heardShare(notes->words, read), 0.85);

  // What no microphone sends is passed over.
  loop.advance(std::chrono::seconds(1));
  const std::size_t results = notes->results.size();
  append({1, 2, 3}, 0, 1);
  append({1, 2, 3}, 16000, 0);
  append({1}, 48000, 2);
  recognizer->append(nullptr);
  loop.advance(std::chrono::seconds(1));
  EXPECT_EQ(notes->results.size(), results);
}

TEST_F(PocketSphinxRecognizer, UnderstandsSpokenHints) {
  using devices::EspeakSynthesizer;
  const std::string hint = "Make sure photo and text are visible";
  const Samples voice = EspeakSynthesizer::samples(hint, "en");
  listen(hint);
  hear(voice, EspeakSynthesizer::kSampleRate);
  EXPECT_GE(heardShare(notes->words, hint), 0.5);
  EXPECT_NE(voice, EspeakSynthesizer::samples(hint, "de")) << "another language's sounds";
}

TEST_F(PocketSphinxRecognizer, LearnsNamesAndNumbersOfTheText) {
  const std::string text = "My name is Zbigniew Müller, born in 1987.";
  listen(text);
  hear(speak("My name is Zbigniew Muller born in nineteen eighty seven"));
  EXPECT_EQ(notes->words, wordsOf(text));
}

TEST_F(PocketSphinxRecognizer, TellsOfABrokenModelOnce) {
  const tests::ScratchFolder folder;
  tests::writeBytes(folder / "en-us.lm.bin", "this is no language model, although long enough");
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
}

TEST_F(PocketSphinxRecognizer, HearsOnItsOwnThreadWhatCameWhileTheModelWasBuilt) {
  devices::RealRunLoop real;
  const Samples voice = speak("that I open this account for myself");
  const auto heardAll = [&] { return heardShare(notes->words, "open this account") == 1; };
  listen(kText, kPaths, &real);
  for (int run = 0; run < 2; ++run) {
    std::thread microphone([&] {
      for (std::size_t from = 0; from + 320 < voice.size(); from += 320)
        append(Samples(&voice[from], &voice[from + 320]));
    });
    // A deadline only so that a failure ends: nothing is said about how long hearing takes.
    real.runUntil(heardAll, real.now() + std::chrono::minutes(20));
    EXPECT_TRUE(heardAll());
    recognizer->stop();
    microphone.join();
    notes->words.clear();
    recognizer->start();
  }
  // Nor do a loop and a recogniser that end while sound is waiting lose their way.
  append(voice);
  recognizer.reset();
  real.shutDown();
}

}  // namespace
}  // namespace corvana::tests
