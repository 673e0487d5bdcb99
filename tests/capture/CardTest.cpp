#include "FlowTest.h"

namespace corvana::tests {
namespace {

class Card : public FlowTest {
 protected:
  bool isAccepted() { return world.text("idOverlayLabel") == IDCapture::strings.flipToBack; }
  int mismatches() { return world.recorder().count("typeMismatch"); }
};

TEST_F(Card, IsTheSameWhenFewEnoughOfItsCharactersDiffer) {
  using Lines = std::vector<std::string>;
  const struct {
    Lines given, live;
    float threshold;
    bool same;
    const char* shown;
  } cases[] = {
      {{"\u00c4\u00d6", "\u00dcS"}, {"\u00c4\u00d6\u00dcX"}, 0.24F, false, "0.25"},
      {{"\u00c4\u00d6", "\u00dcS"}, {"\u00c4\u00d6\u00dcX"}, 0.25F, true, "0.25"},
      {{"AB"}, {"\u00c4\u00d6\u00dcX"}, 0.99F, false, "1.0"},
      {{"ABCDEFGHIJ"}, {"ABC"}, 0.7F, false, "0.7"},  // widened, 0.7F is less than 0.7
      {{"ABC"}, {"ABCDEFGHIJ"}, 0.71F, true, "0.7"},
      {{"ABCDEFGHIJ"}, {"ABCDEFG"}, 0.3F, true, "0.3"},  // and 0.3F more than 0.3
      {{""}, {}, 0, true, "nan"},
  };
  auto& options = VideoCapture::options;
  back.mrz.reset();
  for (const bool onBack : {false, true}) {
    for (const auto& test : cases) {
      SCOPED_TRACE(test.shown);
      (onBack ? back : front).ocrStrings = test.given;
      options.frontLevenshteinThreshold = options.backLevenshteinThreshold = 0;
      (onBack ? options.backLevenshteinThreshold : options.frontLevenshteinThreshold) =
          test.threshold;
      enter();
      passSelfie();
      if (onBack) passFront();
      DetectedData live = onBack ? back : front;
      live.ocrStrings = test.live;
      showSide(live);
      EXPECT_EQ(onBack ? mode() == VideoCaptureMode::readingText : isAccepted(), test.same);
      EXPECT_EQ(world.text("topMatchesLabel"), std::string("Levenshtein: ") + test.shown);
      world.tap("closeButton");
      world.advance(30);
    }
    front.ocrStrings = {{"MARTA"}};
  }
}

TEST_F(Card, OfAnotherTypeIsHeldBackForFiveSecondsHoweverOftenTheFrontIsShown) {
  DetectedData other = back;
  other.type = "DRIVING_LICENCE_BACK";
  enter();
  passSelfie();
  passFront();
  card(ID::ClassifiedDocument{other});
  EXPECT_EQ(mismatches(), 1);
  EXPECT_EQ(world.text("idOverlayLabel"), IDCapture::strings.frontBackMismatch);
  world.advance(1);
  card(ID::ClassifiedDocument{front});
  EXPECT_TRUE(isAccepted()) << "it is to be turned over again";
  world.advance(4);
  card(ID::ClassifiedDocument{other});
  EXPECT_EQ(mismatches(), 2) << "five seconds are not over";
  EXPECT_TRUE(world.view("progressView").isHidden());
  world.advance(0.01);
  card(ID::ClassifiedDocument{other});
  EXPECT_EQ(mismatches(), 2);
  EXPECT_EQ(world.progressView("progressView").progress(), 5.0F / 6) << "from now on it is read";
  card(ID::ClassifiedDocument{back});
  world.advance(5);
  card(ID::ClassifiedDocument{other});
  EXPECT_EQ(mismatches(), 3) << "the right type begins the time anew";
  selfie(Face::TimedOut{});
  world.advance(6);
  world.tap("retryButton");
  world.advance(1);
  passSelfie();
  card(ID::Success{front});  // even from a host that has not classified it
  world.advance(2);
  card(ID::ClassifiedDocument{other});
  EXPECT_EQ(mismatches(), 4) << "and so does another try";
}

}  // namespace
}  // namespace corvana::tests
