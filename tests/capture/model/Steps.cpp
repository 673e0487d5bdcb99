#include "Steps.h"

#include "corvana/StateNames.h"
#include "devices/screen/ViewSearch.h"

namespace corvana::tests {

using corvana::CaptureMode;
using corvana::DetectedData;
using corvana::DocumentSide;
using ID = corvana::IDCaptureState;
using Face = corvana::SelfieCaptureState;
using Strings = std::vector<std::string>;

namespace {

constexpr platform::CGSize kSquare{1000, 1000};

devices::ScriptedSpeechRecognizer* recognizerOf(TestWorld& world) {
  return world.host.recorder() ? world.recorder().speechRecognizer() : nullptr;
}

std::string number(double value) {
  std::string text = std::to_string(value);
  return text.substr(0, text.find('.') + 4);
}

std::pair<platform::UIImageRef, std::string> anyFace(Dice& dice, int holderPercent) {
  if (dice.chance(holderPercent)) return {holdersFace(), " holder"};
  return dice.chance(85) ? std::pair{strangersFace(), " stranger"}
                         : std::pair{unreadableFace(), " unreadable"};
}

/// One thing about the card is not as on the reference.
std::string spoil(DetectedData& data, Dice& dice, bool keepsPromises) {
  static const Strings kTypes = {"IDENTITY_CARD_FRONT", "IDENTITY_CARD_BACK",
                                 "DRIVING_LICENCE_FRONT", "DRIVING_LICENCE_BACK"};
  static const Strings kOddTypes = {"ID_CARD", "SIXSIX", "identity_card_back"};
  static const std::vector<Strings> kReadings = {
      {"MARTAEXEM"}, {"MARTAEXEMPLA\u0308R"}, {"MARTAEXEMPLAR"}, {"NOBODY"}, {}};
  switch (dice.roll(keepsPromises ? 6 : 9)) {
    case 0:
      data.faceImage = anyFace(dice, 0).first;
      return ", other face";
    case 1:
      data.faceImage = nullptr;
      return ", no face";
    case 2:
      data.ocrStrings = dice.pick(kReadings);
      return ", other text of " + std::to_string(data.ocrStrings->size());
    case 3:
      data.mrz.emplace().lines = {"ANOTHER"};
      return ", other zone";
    case 4:
      data.type = dice.pick(kTypes);
      return ", type " + *data.type;
    case 5:
      data.shouldHavePhoto = dice.chance(50);
      data.shouldHaveMrz = dice.chance(30);
      data.shouldHaveBarcode = dice.chance(50);
      if (dice.chance(30)) data.mrz.reset();
      return std::string(", should have") + (data.shouldHavePhoto ? " photo" : "") +
             (data.shouldHaveMrz ? " zone" : "") + (data.shouldHaveBarcode ? " barcode" : "");
    case 6:
      data.ocrStrings.reset();
      return ", no text";
    case 7:
      data.side = dice.chance(50) ? std::optional(DocumentSide::back) : std::nullopt;
      return data.side ? ", side back" : ", no side";
    default:
      data.type = dice.chance(70) ? std::optional(dice.pick(kOddTypes)) : std::nullopt;
      return ", type " + data.type.value_or("(none)");
  }
}

std::pair<DetectedData, std::string> anyCard(Dice& dice, const Beginning& beginning, bool showBack,
                                             bool keepsPromises) {
  DetectedData data = showBack ? beginning.back.value_or(beginning.front) : beginning.front;
  std::string name = showBack ? " back" : " front";
  if (keepsPromises && !data.ocrStrings) data.ocrStrings = {{"ANY"}};
  if (keepsPromises && !data.type) data.type = "IDENTITY_CARD_FRONT";
  if (dice.chance(30)) name += spoil(data, dice, keepsPromises);
  return {data, name};
}

}  // namespace

Step wait(double seconds) {
  return {"wait " + number(seconds), nullptr, seconds};
}

Step waitAnyTime(Dice& dice) {
  static const std::vector<double> kLimits = {0.1, 0.3, 0.39, 0.4,  0.5, 0.5,  1,    1.5,
                                              2,   2,   3,    3.01, 5,   5.01, 0.01, 21};
  return wait(dice.chance(70) ? dice.pick(kLimits) : dice.roll(4000) / 1000.0);
}

Step touchAnything(Dice& dice) {
  static const Strings kButtons = {"retryButton",  "retryButton", "retryButton", "retryButton",
                                   "cancelButton", "doneButton",  "doneButton",  "doneButton",
                                   "alert",        "alert",       "alert"};
  return dice.chance(4) ? tap("closeButton") : tap(dice.pick(kButtons));
}

Step tap(const std::string& button) {
  return {"tap " + button, [button](TestWorld& world) {
            if (auto* alert = world.alert()) {
              if (button == "alert") alert->choose(0);
              return;
            }
            auto* view = devices::findView<platform::UIButton>(world.topmost().view(), button);
            if (view) view->touchUpInside();
          }};
}

// ---- The face

Step say(const Face& state, const std::string& detail) {
  return {"selfie " + std::string(corvana::nameOf(state)) + detail, [state](TestWorld& world) {
            if (world.host.recorder()) world.recorder().report(state);
          }};
}

Step say(const ID& state, const std::string& detail) {
  Step step{"card " + std::string(corvana::nameOf(state)) + detail, [state](TestWorld& world) {
              if (world.host.recorder()) world.recorder().report(state);
            }};
  step.isCardState = true;
  return step;
}

Step succeedWithSelfie(Dice& dice, int holderPercent) {
  const auto [face, name] = anyFace(dice, holderPercent);
  return say(Face{Face::Success{{.image = face, .faceImage = face}}}, name);
}

Step adviseFace(Dice& dice) {
  static const std::vector<Face> kStates = {{Face::DetectedIssue{"Take off the mask"}},
                                            {Face::DetectingFace{}},
                                            {Face::MultipleFacesDetected{}},
                                            {Face::MoveCloser{}},
                                            {Face::MoveAway{}},
                                            {Face::AlignFace{}},
                                            {Face::CapturingFace{}}};
  return say(dice.pick(kStates));
}

Step showLiveFace(Dice& dice) {
  const platform::CGRect frame{dice.roll(800) * 1.0, dice.roll(800) * 1.0, 160, 200};
  return {"live face", [frame](TestWorld& world) {
            if (world.host.recorder()) world.recorder().reportLiveFace(frame, kSquare);
          }};
}

Step loseLiveFace() {
  return {"live face lost", [](TestWorld& world) {
            if (world.host.recorder()) world.recorder().reportLiveFaceLost();
          }};
}

// ---- The card

Step classifyCard(Dice& dice, const Beginning& beginning, bool showBack, bool keepsPromises) {
  const auto [data, name] = anyCard(dice, beginning, showBack, keepsPromises);
  return say(ID{ID::ClassifiedDocument{data}}, name);
}

Step succeedWithCard(Dice& dice, const Beginning& beginning, bool showBack, bool keepsPromises) {
  const auto [data, name] = anyCard(dice, beginning, showBack, keepsPromises);
  return say(ID{ID::Success{data}}, name);
}

Step findBox(Dice& dice) {
  DetectedData data;
  if (dice.chance(40)) data.isReal = dice.chance(50);
  if (dice.chance(30)) data.type = "IDENTITY_CARD_FRONT";
  return say(ID{ID::DetectedBox{data}});
}

Step adviseCard(Dice& dice) {
  static const std::vector<ID> kStates = {{ID::TooMuchGlare{}},
                                          {ID::MoveCloser{}},
                                          {ID::MoveAway{}},
                                          {ID::AlignRectangle{}},
                                          {ID::Autofill{}}};
  return say(dice.pick(kStates));
}

// ---- The rest

Step speak(Dice& dice, const Beginning& beginning) {
  static const Strings kOthers = {"seven", "Seven Grey", "grey seven grey", "e e e e",
                                  "other words"};
  if (dice.chance(15)) {
    return {"speech error", [](TestWorld& world) {
              if (auto* recognizer = recognizerOf(world)) recognizer->fail("deaf");
            }};
  }
  const std::string heard = dice.chance(60) ? beginning.reading : dice.pick(kOthers);
  return {"speech \"" + heard + "\"", [heard](TestWorld& world) {
            if (auto* recognizer = recognizerOf(world)) recognizer->hear(heard);
          }};
}

Step changeCaptureMode(Dice& dice) {
  static const std::vector<CaptureMode> kModes = {CaptureMode::standard, CaptureMode::high,
                                                  CaptureMode::barcode, CaptureMode::barcode};
  const CaptureMode mode = dice.pick(kModes);
  return {"capture mode " + std::to_string(static_cast<int>(mode)),
          [mode](TestWorld& world) { world.host.captureSession()->setCaptureMode(mode); }};
}

Step chooseFilmsEnd(Dice& dice) {
  const bool fails = dice.chance(50);
  const double latency = dice.chance(50) ? 0 : 1.5;
  return {std::string("film ends ") + (fails ? "badly" : "well") + " after " + number(latency),
          [fails, latency](TestWorld& world) {
            if (!world.host.recorder()) return;
            auto& setup = world.recorder().setup;
            setup.stopLatency = platform::seconds(latency);
            setup.film = corvana::FileURL("film.mp4");
            if (fails) setup.film = tl::unexpected(corvana::IDError("The disk is full."));
          }};
}

Step letFilmAnswerTwice() {
  return {"film answers twice", [](TestWorld& world) {
            if (world.host.recorder()) world.recorder().setup.stopAnswers = 2;
          }};
}

}  // namespace corvana::tests
