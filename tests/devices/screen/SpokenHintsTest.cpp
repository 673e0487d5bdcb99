#include "capture/FlowTest.h"
#include "devices/screen/SpokenHints.h"

namespace corvana::tests {
namespace {

using Lines = std::vector<std::string>;

/// Writes down what is asked of it.
struct Voice final : platform::SpeechSynthesizer {
  void speak(const std::string& utterance) override { asked.push_back(utterance); }
  void stopSpeaking() override { asked.push_back("(silence)"); }
  Lines asked;
};

class Hints : public FlowTest {
 protected:
  Hints() {
    hub.add(hints);
    world.environment.presentations = &hub;
  }
  ~Hints() override { world.root->dismiss(false), world.advance(1000); }

  devices::ScreenHub hub;
  Voice voice;
  devices::SpokenHints hints{world.loop, voice};
};

TEST_F(Hints, NewestWordsAreSpokenOnceAndNoneWhileTheTextIsRead) {
  const struct {
    const char* what;
    std::function<void()> step;
    Lines heard;
  } steps[] = {
      {"the caption, in silence", [&] { enter(); }, {"(silence)", "Take a Selfie"}},
      {"a prompt that stays",
       [&] { selfie(Face::MoveCloser{}), world.advance(0.31); },
       {"Move closer"}},
      {"only the last of three",
       [&] {
         for (int i = 0; i < 3; ++i) {
           selfie(Face::MoveAway{}), world.advance(0.2);
           selfie(Face::AlignFace{}), world.advance(0.2);
         }
         world.advance(0.2);
       },
       {"Center your face in the oval"}},
      {"not again so soon", [&] { selfie(Face::MoveCloser{}), world.advance(1); }, {}},
      {"again after a while",
       [&] {
         selfie(Face::DetectingFace{}), world.advance(5);
         selfie(Face::MoveCloser{}), world.advance(1);
       },
       {"Move closer"}},
      {"a new phase", [&] { passSelfie(); }, {"Show the Front of Your ID"}},
      {"a hint of the host's own, as long as it stands",
       [&] {
         hints.hint("Hold still"), world.advance(0.4);
         hints.hint(""), world.advance(0.4);
       },
       {"Hold still"}},
      {"a turn of the card and what follows",
       [&] { passFront(); },
       {"Turn your ID over", "Show the Back of Your ID"}},
      {"a prompt that the text overtakes",
       [&] { card(ID::TooMuchGlare{}), world.advance(0.2), passBack(), world.advance(3); },
       {"(silence)"}},
      {"an alert while the text is read",
       [&] {
         world.speech().fail("deaf"), world.advance(2);
         world.alert()->choose(0), world.advance(2);
       },
       {}},
      {"a retry screen after it",
       [&] { world.tap("doneButton"), world.advance(2); },
       {"Voice does not match text. Please try again"}},
      {"the next run", [&] { world.tap("retryButton"), world.advance(2); }, {"Take a Selfie"}},
      {"the end", [&] { world.tap("closeButton"), world.advance(2); }, {"(silence)"}},
  };
  for (const auto& step : steps) {
    voice.asked.clear();
    step.step();
    EXPECT_EQ(voice.asked, step.heard) << step.what;
  }
}

}  // namespace
}  // namespace corvana::tests
