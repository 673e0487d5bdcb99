#include "Beginning.h"

#include "support/TestImages.h"

namespace corvana::tests {

using corvana::DetectedData;
using corvana::DocumentSide;
using corvana::IDCapture;
using corvana::SelfieCapture;
using corvana::VideoCapture;

const platform::UIImageRef& holdersFace() {
  static const platform::UIImageRef kImage = faceImage(0);
  return kImage;
}
const platform::UIImageRef& strangersFace() {
  static const platform::UIImageRef kImage = faceImage(1);
  return kImage;
}
const platform::UIImageRef& unreadableFace() {
  static const platform::UIImageRef kImage =
      std::make_shared<platform::UIImage>(nullptr, "unreadable");
  return kImage;
}

Beginning randomBeginning(Dice& dice) {
  Beginning result;
  std::string& text = result.text;
  const auto rarely = [&](const char* what, int percent = 4) {
    if (!dice.chance(percent)) return false;
    text += std::string(", ") + what;
    return true;
  };

  result.front.type = "IDENTITY_CARD_FRONT";
  result.front.side = DocumentSide::front;
  result.front.ocrStrings = {{"MARTA", "EXEMPL\u00c4R"}};
  result.front.faceImage = holdersFace();
  if (rarely("front without face")) result.front.faceImage = nullptr;
  if (rarely("front with unreadable face", 2)) result.front.faceImage = unreadableFace();
  if (rarely("front without text")) result.front.ocrStrings.reset();
  if (rarely("front with empty text", 2)) result.front.ocrStrings.emplace();
  if (rarely("front without type", 2)) result.front.type.reset();
  if (!rarely("one-sided", 25)) {
    DetectedData& back = result.back.emplace();
    back.type = "IDENTITY_CARD_BACK";
    back.side = DocumentSide::back;
    back.ocrStrings = {{"HARBOUR", "LANE"}};
    if (!rarely("back without zone", 40)) back.mrz.emplace().lines = {"I<UTO1", "EXEMPLAR"};
    if (rarely("back without text", 6)) back.ocrStrings.reset();
  }
  result.reading = rarely("a text without words") ? " " : "Seven grey herons";

  auto& options = VideoCapture::options;
  options.readTextCountdownSeconds = rarely("countdown of 3 s", 30) ? 3 : 20;
  if (rarely("debug mode", 30)) options.isDebugMode = true;
  if (rarely("a third of the words is enough", 20)) options.readTextWordMatchThreshold = 1.0F / 3;
  if (rarely("no word is needed")) options.readTextWordMatchThreshold = 0;
  if (rarely("strict text", 30)) options.frontLevenshteinThreshold = 0.3F;
  if (rarely("any face will do for a selfie")) options.idToSelfieMatchThreshold = 2;
  if (rarely("any photo will do")) options.idToIdPhotoMatchThreshold = 2;
  SelfieCapture::options.capture4K = rarely("selfie in 4K", 10);
  IDCapture::options.capture4K = rarely("card in 4K", 20);
  if (rarely("own colours", 20)) {
    SelfieCapture::colors.errorLabelBackgroundColor = platform::colors::kPurple;
    IDCapture::colors.successLabelTextColor = platform::colors::kBlack;
    IDCapture::colors.successLabelBackgroundColor = platform::colors::kYellow;
    IDCapture::colors.errorLabelTextColor = platform::colors::kGray;
  }

  const bool noRecorder = rarely("no recorder", 2);
  const bool noSpeech = rarely("no recogniser", 2);
  const bool deaf = rarely("recogniser not available", 2);
  const bool noModel = rarely("no face model", 3);
  const bool noRetryScene = rarely("no retry scene", 2);
  result.prepare = [=](TestWorld& world) {
    world.host.makesRecorder = !noRecorder;
    world.host.setup.hasSpeechRecognizer = !noSpeech;
    world.host.setup.speechAvailable = !deaf;
    if (noModel) world.bundle.missing = {"facenet.tflite"};
    if (noRetryScene) world.factories.erase("VideoRetryViewController");
  };
  return result;
}

}  // namespace corvana::tests
