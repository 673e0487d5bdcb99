#include "app/simulate/SimulateScript.h"

#include <any>
#include <cstdint>
#include <functional>
#include <map>
#include <utility>

#include "app/record/Files.h"
#include "app/settings/ColorTable.h"
#include "corvana/CaptureSession.h"
#include "corvana/Notifications.h"
#include "corvana/OutletNames.h"
#include "devices/pictures/ImageFile.h"
#include "devices/scripted/PatternFaces.h"
#include "engine/json/JsonObject.h"

namespace corvana::app {
namespace {

namespace fs = std::filesystem;
using corvana::DetectedData;
using corvana::IDCaptureState;
using corvana::SelfieCaptureState;
using ScriptObject = engine::JsonObject;

constexpr std::uint64_t kLargestScript = 4 << 20;
constexpr std::size_t kMostSteps = 10'000;
constexpr double kLongestRun = 24 * 3600;
constexpr double kAfterLastStep = 120;
constexpr std::size_t kMostResults = 20;

/// Reads one script; its folder is where pictures are.
class Loader {
 public:
  explicit Loader(fs::path folder) : folder_(std::move(folder)) {}

  SimulateScript load(const nlohmann::json& json) {
    ScriptObject root(json, "");
    root.optionalText("description");
    if (root.has("options")) script_.options = root.value("options");
    script_.text = root.text("text");
    readReference(root);
    if (root.has("world")) readWorld(root.object("world"));
    if (root.has("appearance")) readAppearance(root.object("appearance"));
    readSteps(root);
    const double last = platform::inSeconds(lastStep());
    const double until =
        root.has("until") ? root.number("until", last, kLongestRun) : last + kAfterLastStep;
    script_.until = platform::seconds(until);
    root.refuseOtherKeys();
    return std::move(script_);
  }

 private:
  void readReference(ScriptObject& root) {
    script_.front = card(root.object("front"), corvana::DocumentSide::front);
    if (root.has("back")) {
      script_.back = card(root.object("back"), corvana::DocumentSide::back);
    }
  }

  void readWorld(ScriptObject world) {
    script_.hasMicrophone = world.flag("hasMicrophone", true);
    script_.makesRecorder = world.flag("makesRecorder", true);
    script_.hasSpeechRecognizer = world.flag("hasSpeechRecognizer", true);
    script_.settingsURL = world.optionalText("settingsURL");
    script_.permissions = permissions(world);
    world.refuseOtherKeys();
  }

  void readAppearance(ScriptObject object) {
    if (object.has("selfie")) script_.selfieAppearance = appearance(object.object("selfie"));
    if (object.has("card")) script_.cardAppearance = appearance(object.object("card"));
    object.refuseOtherKeys();
  }

  static ScriptAppearance appearance(ScriptObject object) {
    ScriptAppearance result;
    for (const auto& [key, field] : kColorKeys) {
      if (object.has(key)) result.colors.*field = color(object, key);
    }
    if (const auto name = object.optionalText("retryScreenImage")) {
      result.retryScreenImage = std::make_shared<platform::UIImage>(nullptr, *name);
    }
    object.refuseOtherKeys();
    return result;
  }

  static platform::UIColor color(ScriptObject& object, const std::string& key) {
    const auto parsed = parseColor(object.text(key));
    if (!parsed) object.complain(key, "must be a colour as \"#20C060\"");
    return *parsed;
  }

  static steps::Permission permissions(ScriptObject& object) {
    using Microphone = platform::AVAuthorizationStatus;
    using Speech = platform::SFSpeechRecognizerAuthorizationStatus;
    static const std::map<std::string, Microphone> kMicrophone = {
        {"notDetermined", Microphone::notDetermined},
        {"restricted", Microphone::restricted},
        {"denied", Microphone::denied},
        {"authorized", Microphone::authorized}};
    static const std::map<std::string, Speech> kSpeech = {{"notDetermined", Speech::notDetermined},
                                                          {"restricted", Speech::restricted},
                                                          {"denied", Speech::denied},
                                                          {"authorized", Speech::authorized}};
    steps::Permission permission;
    if (object.has("microphone")) permission.microphone = object.choice("microphone", kMicrophone);
    if (object.has("speech")) permission.speech = object.choice("speech", kSpeech);
    return permission;
  }

  platform::UIImageRef face(ScriptObject& object) {
    const auto name = object.optionalText("face");
    if (!name) return nullptr;
    constexpr std::string_view kPattern = "pattern:";
    if (name->rfind(kPattern, 0) == 0) {
      const std::string number = name->substr(kPattern.size());
      const bool isDigit = number.size() == 1 && number[0] >= '0';
      if (!isDigit || number[0] - '0' >= devices::kPatternFaces) {
        object.complain("face", "patterns are pattern:0 and pattern:1");
      }
      return devices::patternFace(number[0] - '0');
    }
    auto pixels = devices::readImage(folder_ / *name);
    if (!pixels) object.complain("face", pixels.error().sentence);
    return std::make_shared<platform::UIImage>(*pixels);
  }

  DetectedData card(ScriptObject object, std::optional<corvana::DocumentSide> side) {
    using corvana::DocumentSide;
    static const std::map<std::string, std::optional<DocumentSide>> kSides = {
        {"front", DocumentSide::front}, {"back", DocumentSide::back}, {"unknown", std::nullopt}};
    DetectedData data;
    data.side = object.has("side") ? object.choice("side", kSides) : side;
    data.type = object.optionalText("type");
    if (data.type && data.type->size() < kShortestType) {
      object.complain("type", "must end in _FRONT or _BACK");
    }
    if (object.has("ocr")) data.ocrStrings = object.texts("ocr");
    if (object.has("mrz")) data.mrz.emplace().lines = object.texts("mrz");
    data.faceImage = face(object);
    data.isPhotoPresent = object.flag("isPhotoPresent", data.faceImage != nullptr);
    data.shouldHavePhoto = object.flag("shouldHavePhoto", data.faceImage != nullptr);
    data.shouldHaveMrz = object.flag("shouldHaveMrz", data.mrz.has_value());
    data.shouldHaveBarcode = object.flag("shouldHaveBarcode", false);
    if (object.flag("hasBarcode", false)) data.barcode.emplace();
    if (object.has("isReal")) data.isReal = object.flag("isReal", true);
    object.refuseOtherKeys();
    return data;
  }

  /// A card in view: one of the reference's sides by name, or any other.
  DetectedData shownCard(ScriptObject& step) {
    if (!step.has("card")) return {};
    if (step.value("card").is_object()) return card(step.object("card"), std::nullopt);
    const std::string name = step.text("card");
    if (name == "front") return script_.front;
    if (name == "back" && script_.back) return *script_.back;
    step.complain("card", "must be \"front\", \"back\" if the script has one, or an object");
  }

  corvana::Selfie selfie(ScriptObject& step) {
    corvana::Selfie result;
    result.faceImage = face(step);
    result.image = result.faceImage;
    result.livenessScore = 1;
    if (!result.faceImage) step.complain("face", "this key is missing");
    return result;
  }

  steps::Action selfieStep(ScriptObject& step) {
    using S = SelfieCaptureState;
    const std::map<std::string, std::function<S::Value()>> table = {
        {"detectedIssue", [&] { return S::DetectedIssue{step.text("message")}; }},
        {"success", [&] { return S::Success{selfie(step)}; }},
        {"timedOut", [] { return S::TimedOut{}; }},
        {"failed", [] { return S::Failed{}; }},
        {"detectingFace", [] { return S::DetectingFace{}; }},
        {"multipleFacesDetected", [] { return S::MultipleFacesDetected{}; }},
        {"moveCloser", [] { return S::MoveCloser{}; }},
        {"moveAway", [] { return S::MoveAway{}; }},
        {"alignFace", [] { return S::AlignFace{}; }},
        {"capturingFace", [] { return S::CapturingFace{}; }}};
    return steps::Selfie{S{step.choice("state", table)()}};
  }

  steps::Action cardStep(ScriptObject& step) {
    using S = IDCaptureState;
    const std::map<std::string, std::function<S::Value()>> table = {
        {"detectingBox", [] { return S::DetectingBox{}; }},
        {"detectedBox", [&] { return S::DetectedBox{shownCard(step)}; }},
        {"classifiedDocument", [&] { return S::ClassifiedDocument{shownCard(step)}; }},
        {"success", [&] { return S::Success{shownCard(step)}; }},
        {"timedOut", [&] { return S::TimedOut{shownCard(step)}; }},
        {"failed", [&] { return S::Failed{shownCard(step)}; }},
        {"autofill", [] { return S::Autofill{}; }},
        {"tooMuchGlare", [] { return S::TooMuchGlare{}; }},
        {"moveCloser", [] { return S::MoveCloser{}; }},
        {"moveAway", [] { return S::MoveAway{}; }},
        {"alignRectangle", [] { return S::AlignRectangle{}; }}};
    return steps::Card{S{step.choice("state", table)()}};
  }

  static steps::Action speechStep(ScriptObject& step) {
    steps::Speech speech{step.optionalText("heard"), step.optionalText("error")};
    if (speech.heard.has_value() == speech.error.has_value()) {
      step.complain("", "needs either \"heard\" or \"error\"");
    }
    return speech;
  }

  static steps::Action tapStep(ScriptObject& step) {
    static const std::map<std::string, std::string> kButtons = {{"close", outlets::kCloseButton},
                                                                {"done", outlets::kDoneButton},
                                                                {"retry", outlets::kRetryButton},
                                                                {"cancel", outlets::kCancelButton},
                                                                {"alert", "alert"}};
    return steps::Tap{step.choice("button", kButtons)};
  }

  static steps::Action permissionStep(ScriptObject& step) { return permissions(step); }

  static steps::Action captureModeStep(ScriptObject& step) {
    using corvana::CaptureMode;
    static const std::map<std::string, CaptureMode> kModes = {{"standard", CaptureMode::standard},
                                                              {"high", CaptureMode::high},
                                                              {"barcode", CaptureMode::barcode}};
    return notice(corvana::kIDCaptureMode, {{"captureMode", step.choice("mode", kModes)}});
  }

  static steps::Notice notice(const char* name, std::map<std::string, std::any> userInfo) {
    return {{name, std::make_shared<std::map<std::string, std::any>>(std::move(userInfo))}};
  }

  static platform::CGRect rect(ScriptObject& object, const std::string& key) {
    const auto n = object.numbers(key, 4);
    return {n[0], n[1], n[2], n[3]};
  }

  static platform::CGSize size(ScriptObject& object, const std::string& key) {
    const auto n = object.numbers(key, 2);
    return {n[0], n[1]};
  }

  static float measure(ScriptObject& object, const std::string& key) {
    constexpr double kGreatest = 1e6;
    return static_cast<float>(object.number(key, -kGreatest, kGreatest));
  }

  static steps::Action selfieDebugStep(ScriptObject& step) {
    std::map<std::string, std::any> userInfo;
    if (step.has("faceRect")) userInfo["faceRect"] = rect(step, "faceRect");
    if (step.has("fullSize")) userInfo["fullSize"] = size(step, "fullSize");
    for (const char* key : {"faceLivenessScore", "leftEyeOpenProbability",
                            "rightEyeOpenProbability", "faceMaskProbability"}) {
      if (step.has(key)) userInfo[key] = measure(step, key);
    }
    return notice(corvana::kSelfieCaptureDebugData, std::move(userInfo));
  }

  static steps::Action cardDebugStep(ScriptObject& step) {
    corvana::DebugData data;
    data.documentLocation = rect(step, "documentLocation");
    if (step.has("fullSize")) data.fullSize = size(step, "fullSize");
    if (step.has("faceLocation")) data.faceLocation = rect(step, "faceLocation");
    if (step.has("realnessScores")) {
      ScriptObject scores = step.object("realnessScores");
      data.realnessScores = {measure(scores, "photocopyScore"), measure(scores, "realScore"),
                             measure(scores, "screenScore")};
      scores.refuseOtherKeys();
    }
    if (step.has("topClassifierResults")) {
      data.topClassifierResults.emplace();
      for (ScriptObject& result : step.objects("topClassifierResults", kMostResults)) {
        data.topClassifierResults->emplace_back(result.text("name"), measure(result, "score"));
        result.refuseOtherKeys();
      }
    }
    return notice(corvana::kIDCaptureDebugData, {{"debugData", std::move(data)}});
  }

  SimulateStep step(ScriptObject object) {
    const std::map<std::string, std::function<steps::Action()>> table = {
        {"selfie", [&] { return selfieStep(object); }},
        {"card", [&] { return cardStep(object); }},
        {"liveFace", [&] { return steps::LiveFace{object.flag("found", true)}; }},
        {"speech", [&] { return speechStep(object); }},
        {"tap", [&] { return tapStep(object); }},
        {"permission", [&] { return permissionStep(object); }},
        {"foreground",
         [] {
           return steps::Notice{{platform::kApplicationWillEnterForeground, nullptr}};
         }},
        {"film", [&] { return steps::Film{object.optionalText("error")}; }},
        {"captureMode", [&] { return captureModeStep(object); }},
        {"selfieDebug", [&] { return selfieDebugStep(object); }},
        {"cardDebug", [&] { return cardDebugStep(object); }},
        {"picture", [&] { return steps::Picture{object.text("name")}; }}};
    SimulateStep result;
    result.where = object.where();
    const double earliest = platform::inSeconds(lastStep());
    result.at = platform::seconds(object.number("at", earliest, kLongestRun));
    const auto action = object.choice("do", table);
    result.label = object.text("do");
    result.action = action();
    object.refuseOtherKeys();
    for (const char* key :
         {"state", "card", "face", "message", "button", "mode", "heard", "name"}) {
      if (object.has(key)) result.label += " " + object.brief(key);
    }
    for (const char* key : {"microphone", "speech", "error"}) {
      if (object.has(key)) result.label += std::string(" ") + key + " " + object.text(key);
    }
    if (object.has("found")) result.label += object.flag("found", true) ? " found" : " lost";
    return result;
  }

  void readSteps(ScriptObject& root) {
    for (ScriptObject& object : root.objects("steps", kMostSteps))
      script_.steps.push_back(step(object));
  }

  platform::Duration lastStep() const {
    return script_.steps.empty() ? platform::Duration::zero() : script_.steps.back().at;
  }

  static constexpr std::size_t kShortestType = std::string_view("_FRONT").size();

  fs::path folder_;
  SimulateScript script_;
};

}  // namespace

platform::Expected<SimulateScript> loadSimulateScript(const fs::path& path) {
  const auto content = readFile(path, kLargestScript);
  if (!content) return tl::unexpected(content.error());
  const auto json = parseJson(*content, path.string());
  if (!json) return tl::unexpected(json.error());
  try {
    return Loader(path.parent_path()).load(*json);
  } catch (const engine::JsonFault& fault) {
    return platform::failure(inQuotes(path) + " is no script of a simulation: " + fault.sentence +
                             ".");
  }
}

}  // namespace corvana::app
