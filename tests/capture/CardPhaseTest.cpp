#include "FlowTest.h"

namespace tests {
namespace {

namespace colors = platform::colors;
constexpr platform::UIColor kGreen = corvana::CaptureSessionViewController::greenColor;

class CardPhase : public FlowTest {
 protected:
  void begin() {
    enter();
    passSelfie();
  }
  void expectPrompt(const std::string& prompt, const platform::UIColor& frame) {
    EXPECT_EQ(cardPrompt(), prompt);
    EXPECT_EQ(world.view("idFrameImageView").tintColor(), frame) << prompt;
  }
  std::string silhouette() {
    const auto& image = world.imageView("idImageView").image();
    return image ? image->name() : "";
  }
  float progress() {
    auto& bar = world.progressView("progressView");
    EXPECT_EQ(bar.isHidden(), bar.progress() == 0);
    return bar.progress();
  }
  bool isFlipping() { return cardPrompt() == IDCapture::strings.flipToBack; }
  static DetectedData reading(DetectedData side, std::vector<std::string> strings) {
    side.ocrStrings = std::move(strings);
    return side;
  }
};

TEST_F(CardPhase, TurnsEachStateIntoItsPrompt) {
  begin();
  const auto& strings = IDCapture::strings;
  const std::pair<ID::Value, std::string> errors[] = {
      {ID::TooMuchGlare{}, strings.tooMuchGlare},
      {ID::MoveCloser{}, strings.moveCloser},
      {ID::MoveAway{}, strings.moveAway},
      {ID::AlignRectangle{}, strings.alignRectangle}};
  for (const auto& [state, prompt] : errors) {
    card(ID::DetectingBox{});
    EXPECT_EQ(silhouette(), "overlay_portrait_id_front");
    expectPrompt("", colors::kWhite);
    EXPECT_EQ(progress(), 0);
    card(state);
    expectPrompt(prompt, colors::kRed);
    EXPECT_EQ(world.view("idOverlayLabelView").backgroundColor(), colors::kRed);
    EXPECT_EQ(silhouette(), "");
  }
  card(ID::DetectingBox{});
  card(ID::Autofill{});
  expectPrompt("", colors::kWhite);
  EXPECT_EQ(silhouette(), "");
}

TEST_F(CardPhase, ShowsHowFarTheReadingHasCome) {
  begin();
  DetectedData box;
  const struct {
    std::optional<bool> isReal;
    std::optional<std::string> type;
    float box, classified;
  } cases[] = {{{}, {}, 0.33333334F, 0.6666667F},
               {false, {}, 0.33333334F, 0.6666667F},
               {true, {}, 0.6666667F, 0.6666667F},
               {false, "IDENTITY_CARD_FRONT", 0.6666667F, 0.8333333F}};
  for (const auto& test : cases) {
    box.isReal = test.isReal;
    box.type = test.type;
    card(ID::DetectedBox{box});
    expectPrompt("", kGreen);
    EXPECT_EQ(progress(), test.box);
    card(ID::DetectingBox{});
    card(ID::ClassifiedDocument{box});
    EXPECT_EQ(progress(), test.classified);
    EXPECT_EQ(silhouette(), "");
    card(ID::ClassifiedDocument{{}});
  }
}

TEST_F(CardPhase, NamesWhatIsMissingOnAClassifiedCard) {
  begin();
  const auto& strings = IDCapture::strings;
  DetectedData data = front;
  data.shouldHaveBarcode = true;
  card(ID::ClassifiedDocument{data});
  expectPrompt(strings.makeSureBarcodeVisible, colors::kRed);
  EXPECT_FALSE(world.view("selfieOverlayBezel1").isHidden());

  world.host.captureSession()->setCaptureMode(CaptureMode::barcode);
  card(ID::ClassifiedDocument{data});
  expectPrompt(strings.scanBarcode, colors::kClear);
  EXPECT_EQ(world.view("idOverlayLabelView").backgroundColor(), colors::kGray);
  for (const char* bezel : {"selfieOverlayBezel1", "selfieOverlayBezel4"})
    EXPECT_TRUE(world.view(bezel).isHidden());

  data.shouldHaveMrz = true;
  card(ID::ClassifiedDocument{data});
  expectPrompt(strings.makeSurePhotoTextVisible, colors::kRed);
  data.mrz = back.mrz;
  data.shouldHavePhoto = true;
  card(ID::ClassifiedDocument{data});
  expectPrompt(strings.makeSurePhotoTextVisible, colors::kRed);
  data.isPhotoPresent = true;
  data.barcode.emplace();
  card(ID::DetectingBox{});
  card(ID::ClassifiedDocument{data});
  expectPrompt("", colors::kWhite);
}

TEST_F(CardPhase, AsksForTheFrontBeforeAnythingElse) {
  begin();
  back.shouldHavePhoto = true;
  card(ID::ClassifiedDocument{back});
  expectPrompt(IDCapture::strings.useFront, colors::kRed);
  EXPECT_EQ(progress(), 0);
}

TEST_F(CardPhase, ShowsTheNumbersOfAFrontThatIsAccepted) {
  begin();
  showSide(reading(front, {"MARTAEXEM"}));  // 4 of 13 differ
  EXPECT_EQ(world.text("topMatchesLabel"), "Levenshtein: 0.3076923076923077");
  EXPECT_EQ(world.text("realnessScoresLabel"), "Face Distance: 0.0");
  EXPECT_TRUE(isFlipping());
}

TEST_F(CardPhase, AnEqualShareOfDifferencesStillMatches) {
  front.ocrStrings = {{"AB", "CD"}};
  back.mrz.reset();
  back.ocrStrings = {{"AB", "CD"}};
  VideoCapture::options.frontLevenshteinThreshold = 0.25F;
  VideoCapture::options.backLevenshteinThreshold = 0.25F;
  begin();
  showSide(reading(front, {"ABXY"}));
  EXPECT_FALSE(isFlipping());
  EXPECT_EQ(world.text("topMatchesLabel"), "Levenshtein: 0.5");
  showSide(reading(front, {"ABCX"}));
  EXPECT_TRUE(isFlipping());
  world.advance(2);
  showSide(reading(back, {"A", "BXY"}));
  EXPECT_EQ(mode(), VideoCaptureMode::idCapture);
  showSide(reading(back, {"A", "BXD"}));
  EXPECT_EQ(mode(), VideoCaptureMode::readingText);
}

TEST_F(CardPhase, TwoEmptyTextsMatch) {
  front.ocrStrings.emplace();
  begin();
  showSide(front);
  EXPECT_EQ(world.text("topMatchesLabel"), "Levenshtein: nan");
  EXPECT_TRUE(isFlipping());
}

TEST_F(CardPhase, IgnoresWhatCannotBeCompared) {
  begin();
  DetectedData unread = front;
  unread.ocrStrings.reset();
  card(ID::Success{unread});
  EXPECT_EQ(world.text("realnessScoresLabel"), "");
  world.tap("closeButton");
  world.advance(1);

  const auto given = std::exchange(front.ocrStrings, std::nullopt);
  begin();
  const DetectedData read = reading(front, *given);
  card(ID::Success{read});
  world.advance(4);
  card(ID::Success{read});
  EXPECT_EQ(cardPrompt(), "") << "the front can never complete, and nothing is said";
  EXPECT_EQ(world.text("topMatchesLabel"), "Levenshtein:");
}

TEST_F(CardPhase, TellsWhatDoesNotMatchAfterMoreThanThreeSeconds) {
  const std::string face = VideoCapture::strings.faceDoesNotMatch;
  const std::string id = VideoCapture::strings.idDoesNotMatch;
  DetectedData otherFace = front;
  otherFace.faceImage = faceImage(kStranger);
  DetectedData noFace = front;
  noFace.faceImage = nullptr;
  const DetectedData otherText = reading(front, {"somebody else"});
  DetectedData nothing = otherText;
  nothing.faceImage = nullptr;
  const std::tuple<DetectedData, std::string> cases[] = {
      {otherFace, face}, {noFace, face}, {otherText, id}, {nothing, face + "\n" + id}};
  begin();
  for (const auto& [side, prompt] : cases) {
    card(ID::Success{side});
    expectPrompt("", kGreen);
    world.advance(3.0);
    card(ID::Success{side});
    expectPrompt("", kGreen);
    world.advance(0.01);
    card(ID::Success{side});
    expectPrompt(prompt, colors::kRed);
    card(ID::Failed{});
    world.advance(1);
    world.tap("retryButton");
    world.advance(1);
    passSelfie();
  }
  card(ID::Success{noFace});
  EXPECT_EQ(world.text("realnessScoresLabel"), "Face Distance: None Found!");
}

TEST_F(CardPhase, TheGraceTimeBeginsAnewOnlyWithAnAcceptedFront) {
  begin();
  const DetectedData wrongFront = reading(front, {"somebody else"});
  card(ID::Success{wrongFront});
  world.advance(4);
  card(ID::DetectingBox{});
  card(ID::Success{wrongFront});
  EXPECT_EQ(cardPrompt(), VideoCapture::strings.idDoesNotMatch);
  passFront();
  DetectedData wrongBack = back;
  wrongBack.mrz->lines.back() = "STRANGER";
  card(ID::Success{wrongBack});
  EXPECT_EQ(cardPrompt(), "");
  world.advance(3.01);
  card(ID::Success{wrongBack});
  EXPECT_EQ(cardPrompt(), VideoCapture::strings.idDoesNotMatch);
}

TEST_F(CardPhase, ABackIsJudgedByItsMachineReadableZoneWhereThereIsOne) {
  begin();
  passFront();
  DetectedData other = back;  // same text, other zone
  other.mrz->lines.back() = "STRANGER";
  card(ID::Success{other});
  other.mrz.reset();
  card(ID::Success{other});
  EXPECT_EQ(mode(), VideoCaptureMode::idCapture);
  EXPECT_EQ(world.text("topMatchesLabel"), "Levenshtein:");
  card(ID::Success{reading(back, {"something else"})});
  EXPECT_EQ(mode(), VideoCaptureMode::readingText);
}

TEST_F(CardPhase, HoldsBackACardOfAnotherTypeForFiveSeconds) {
  begin();
  passFront();
  DetectedData license = back;
  license.type = "LICENSE_BACK";
  const auto show = [&] { card(ID::ClassifiedDocument{license}); };
  const auto& prompt = IDCapture::strings.frontBackMismatch;
  show();
  expectPrompt(prompt, colors::kRed);
  EXPECT_EQ(progress(), 0);
  EXPECT_EQ(silhouette(), "overlay_landscape_id_back") << "not handled at all";
  world.advance(5.0);
  show();
  EXPECT_EQ(progress(), 0);
  EXPECT_EQ(world.recorder().count("typeMismatch"), 2);
  world.advance(0.1);
  show();
  EXPECT_EQ(world.recorder().count("typeMismatch"), 2);
  EXPECT_EQ(progress(), 0.8333333F) << "now handled like any card";
  expectPrompt(prompt, colors::kRed);

  card(ID::ClassifiedDocument{back});
  show();
  EXPECT_EQ(world.recorder().count("typeMismatch"), 3) << "a card of the right type ends the run";
  license.type.reset();
  world.advance(6);
  card(ID::ClassifiedDocument{license});
  license.type = "LICENSE_BACK";
  show();
  EXPECT_EQ(world.recorder().count("typeMismatch"), 3) << "an unknown type does not";
}

TEST_F(CardPhase, ShowsTheFlipAgainWhenTheFrontComesBack) {
  begin();
  passFront();
  card(ID::ClassifiedDocument{front});
  EXPECT_TRUE(isFlipping());
  EXPECT_EQ(progress(), 1);
}

TEST_F(CardPhase, DropsEveryStateWhileTheCardIsTurned) {
  IDCapture::options.capture4K = true;
  begin();
  world.host.captureSession()->setCaptureMode(CaptureMode::barcode);
  showSide(front);
  expectPrompt(IDCapture::strings.flipToBack, colors::kWhite);
  EXPECT_EQ(world.view("idOverlayLabelView").backgroundColor(), colors::kGray);
  EXPECT_EQ(progress(), 1);
  EXPECT_EQ(silhouette(), "overlay_portrait_id_front");
  EXPECT_EQ(world.text("captureLabel"), IDCapture::strings.captureFront);
  EXPECT_EQ(world.host.captureSession()->captureMode(), CaptureMode::high);
  world.advance(0.5);
  EXPECT_EQ(silhouette(), "overlay_landscape_id_back");
  EXPECT_EQ(world.text("captureLabel"), IDCapture::strings.captureBack);
  world.advance(1.49);
  showSide(back);
  card(ID::TimedOut{});
  EXPECT_TRUE(isFlipping());
  EXPECT_EQ(mode(), VideoCaptureMode::idCapture);
  world.advance(0.01);
  expectPrompt("", colors::kWhite);
  EXPECT_EQ(progress(), 0);
  EXPECT_EQ(world.text("realnessScoresLabel"), "Realness Scores:");
  EXPECT_EQ(world.text("topMatchesLabel"), "Top Matches:");
  showSide(back);
  EXPECT_EQ(mode(), VideoCaptureMode::readingText);
}

TEST_F(CardPhase, PrefersTheHostsSilhouettes) {
  IDCapture::images.frontSilhouetteImage = std::make_shared<platform::UIImage>(nullptr, "my front");
  IDCapture::images.backSilhouetteImage = std::make_shared<platform::UIImage>(nullptr, "my back");
  begin();
  card(ID::DetectingBox{});
  EXPECT_EQ(silhouette(), "my front");
  passFront();
  EXPECT_EQ(silhouette(), "my back");
  EXPECT_EQ(world.text("captureLabel"), IDCapture::strings.captureBack);
}

TEST_F(CardPhase, ATypeTooShortForAFamilyStopsTheProgram) {
  front.type = "CARD";
  begin();
  passFront();
  EXPECT_DEATH(card(ID::ClassifiedDocument{back}), "too short");
}

}  // namespace
}  // namespace tests
