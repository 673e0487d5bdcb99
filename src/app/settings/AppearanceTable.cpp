#include "app/settings/AppearanceTable.h"

#include <algorithm>
#include <functional>
#include <optional>
#include <utility>

#include "app/record/Files.h"
#include "app/settings/ColorTable.h"
#include "corvana/VideoCapture.h"
#include "devices/pictures/ImageFile.h"

namespace corvana::app {
namespace {

namespace fs = std::filesystem;
using corvana::IDCapture;
using corvana::SelfieCapture;
using corvana::VideoCapture;
using nlohmann::json;

constexpr std::uint64_t kLargestFile = 1 << 18;
/// The tables speak it by themselves.
const char* const kOwnLanguage = "en";

struct LookRow {
  std::string key;
  std::string wanted;  ///< "a colour as \"#1B5E9E\""
  /// False when the value is not what is wanted.
  std::function<bool(const json& value, const fs::path& folder)> set;
};

bool setColor(std::optional<platform::UIColor>& target, const json& value) {
  if (!value.is_string()) return false;
  const auto color = parseColor(value.get_ref<const std::string&>());
  if (color) target = color;
  return color.has_value();
}

bool setFont(std::optional<platform::UIFont>& target, const json& value) {
  if (!value.is_object() || !value.contains("size") || !value["size"].is_number()) return false;
  const double size = value["size"];
  const json family = value.value("family", json(""));
  if (!(size >= 6 && size <= 96) || !family.is_string()) return false;
  target = {family.get<std::string>(), size};
  return true;
}

bool setImage(platform::UIImageRef& target, const json& value, const fs::path& folder) {
  if (!value.is_string()) return false;
  const fs::path file = fs::absolute(folder / value.get<std::string>());
  std::error_code error;
  if (!fs::is_regular_file(file, error)) return false;
  if (file.extension() == ".svg") {
    target =
        std::make_shared<platform::UIImage>(nullptr, (file.parent_path() / file.stem()).string());
    return true;
  }
  auto picture = devices::readImage(file);
  if (!picture) return false;
  target = std::make_shared<platform::UIImage>(*picture);
  return true;
}

bool setPosition(corvana::LabelPosition& target, const json& value) {
  using corvana::LabelPosition;
  const std::map<json, LabelPosition> positions{{"top", LabelPosition::top},
                                                {"center", LabelPosition::center},
                                                {"bottom", LabelPosition::bottom}};
  const auto position = positions.find(value);
  if (position == positions.end()) return false;
  target = position->second;
  return true;
}

bool setText(std::string& target, const json& value) {
  if (!value.is_string() || value.get_ref<const std::string&>().empty()) return false;
  target = value.get<std::string>();
  return true;
}

LookRow textRow(std::string key, std::string& text) {
  return {std::move(key), "a text",
          [&text](const json& v, const fs::path&) { return setText(text, v); }};
}

/// Colours, fonts, pictures and places that both captures have.
template <class Capture>
void addLooks(const std::string& capture, std::vector<LookRow>& rows) {
  using corvana::Fonts;
  for (const auto& [name, field] : kColorKeys) {
    rows.push_back({capture + ".colors." + name, "a colour as \"#1B5E9E\"",
                    [field = field](const json& value, const fs::path&) {
                      return setColor(Capture::colors.*field, value);
                    }});
  }
  const std::pair<const char*, std::optional<platform::UIFont> Fonts::*> fonts[] = {
      {"labelFont", &Fonts::labelFont},
      {"retryScreenLabelFont", &Fonts::retryScreenLabelFont},
      {"retryScreenButtonFont", &Fonts::retryScreenButtonFont}};
  for (const auto& [name, field] : fonts) {
    rows.push_back({capture + ".fonts." + name,
                    "a font as {\"family\": \"DejaVu Serif\", \"size\": 20}",
                    [field = field](const json& value, const fs::path&) {
                      return setFont(Capture::fonts.*field, value);
                    }});
  }
  rows.push_back({capture + ".layout.labelPosition", "\"top\", \"center\" or \"bottom\"",
                  [](const json& value, const fs::path&) {
                    return setPosition(Capture::layout.labelPosition, value);
                  }});
  rows.push_back({capture + ".images.retryScreenImage", "the path of an SVG, PNG or JPEG picture",
                  [](const json& value, const fs::path& folder) {
                    return setImage(Capture::images.retryScreenImage, value, folder);
                  }});
}

void addSilhouettes(std::vector<LookRow>& rows) {
  using Images = IDCapture::Images;
  const std::pair<const char*, platform::UIImageRef Images::*> images[] = {
      {"frontSilhouetteImage", &Images::frontSilhouetteImage},
      {"backSilhouetteImage", &Images::backSilhouetteImage}};
  for (const auto& [name, field] : images) {
    rows.push_back({std::string("idCapture.images.") + name,
                    "the path of an SVG, PNG or JPEG picture",
                    [field = field](const json& value, const fs::path& folder) {
                      return setImage(IDCapture::images.*field, value, folder);
                    }});
  }
}

template <class Strings>
void addTexts(const std::string& table, Strings& strings,
              std::initializer_list<std::pair<const char*, std::string Strings::*>> fields,
              std::vector<TextEntry>& texts) {
  for (const auto& [name, field] : fields)
    texts.push_back({table + ".strings." + name, &(strings.*field)});
}

std::vector<TextEntry> textsOf() {
  std::vector<TextEntry> texts;
  using Selfie = SelfieCapture::Strings;
  using Card = IDCapture::Strings;
  using Video = VideoCapture::Strings;
  addTexts<Selfie>("selfieCapture", SelfieCapture::strings,
                   {{"captureSelfie", &Selfie::captureSelfie},
                    {"moveCloser", &Selfie::moveCloser},
                    {"moveAway", &Selfie::moveAway},
                    {"alignOval", &Selfie::alignOval},
                    {"multipleFacesDetected", &Selfie::multipleFacesDetected},
                    {"capturingFace", &Selfie::capturingFace},
                    {"realFace", &Selfie::realFace},
                    {"showWholeFace", &Selfie::showWholeFace},
                    {"tooDark", &Selfie::tooDark},
                    {"tooBright", &Selfie::tooBright},
                    {"blurred", &Selfie::blurred},
                    {"lookStraight", &Selfie::lookStraight},
                    {"openEyes", &Selfie::openEyes},
                    {"blinkEyes", &Selfie::blinkEyes},
                    {"turnHead", &Selfie::turnHead},
                    {"turnLeft", &Selfie::turnLeft},
                    {"turnRight", &Selfie::turnRight},
                    {"lookUp", &Selfie::lookUp},
                    {"comeNearer", &Selfie::comeNearer},
                    {"blinkTwice", &Selfie::blinkTwice},
                    {"showYourself", &Selfie::showYourself},
                    {"retryScreenText", &Selfie::retryScreenText},
                    {"retryButtonText", &Selfie::retryButtonText},
                    {"cancelButtonText", &Selfie::cancelButtonText}},
                   texts);
  addTexts<Card>("idCapture", IDCapture::strings,
                 {{"captureFront", &Card::captureFront},
                  {"captureBack", &Card::captureBack},
                  {"useFront", &Card::useFront},
                  {"flipToBack", &Card::flipToBack},
                  {"frontBackMismatch", &Card::frontBackMismatch},
                  {"moveCloser", &Card::moveCloser},
                  {"moveAway", &Card::moveAway},
                  {"tooMuchGlare", &Card::tooMuchGlare},
                  {"alignRectangle", &Card::alignRectangle},
                  {"makeSurePhotoTextVisible", &Card::makeSurePhotoTextVisible},
                  {"makeSureBarcodeVisible", &Card::makeSureBarcodeVisible},
                  {"scanBarcode", &Card::scanBarcode},
                  {"tooDark", &Card::tooDark},
                  {"blurred", &Card::blurred},
                  {"covered", &Card::covered},
                  {"copy", &Card::copy},
                  {"retryScreenText", &Card::retryScreenText},
                  {"retryButtonText", &Card::retryButtonText},
                  {"cancelButtonText", &Card::cancelButtonText}},
                 texts);
  addTexts<Video>("videoCapture", VideoCapture::strings,
                  {{"doneButton", &Video::doneButton},
                   {"faceDoesNotMatch", &Video::faceDoesNotMatch},
                   {"idDoesNotMatch", &Video::idDoesNotMatch}},
                  texts);
  return texts;
}

void addWindow(WindowLooks& looks, std::vector<LookRow>& rows) {
  rows.push_back(
      {"screen.textScale", "a number from 0.8 to 2", [&looks](const json& value, const fs::path&) {
         if (!value.is_number()) return false;
         looks.textScale = value;
         return looks.textScale >= 0.8 && looks.textScale <= 2;
       }});
  const std::pair<const char*, bool WindowLooks::*> flags[] = {
      {"screen.rightToLeft", &WindowLooks::rightToLeft},
      {"screen.reducedMotion", &WindowLooks::reducedMotion},
      {"screen.spokenHints", &WindowLooks::spokenHints}};
  for (const auto& [name, field] : flags) {
    rows.push_back({name, "true or false", [&looks, field = field](const json& v, const fs::path&) {
                      if (!v.is_boolean()) return false;
                      looks.*field = v;
                      return true;
                    }});
  }
}

std::vector<LookRow> rowsFor(WindowLooks& looks) {
  std::vector<LookRow> rows;
  addLooks<SelfieCapture>("selfieCapture", rows);
  addLooks<IDCapture>("idCapture", rows);
  addSilhouettes(rows);
  for (const TextEntry& entry : translatableTexts(looks))
    rows.push_back(textRow(entry.key, *entry.text));
  addWindow(looks, rows);
  return rows;
}

fs::path languageFolder(const Resources& resources) {
  return resources.storyboards / "languages";
}

/// A language is a file in the folder, and nothing else.
std::vector<std::string> languagesIn(const Resources& resources) {
  std::vector<std::string> codes;
  std::error_code error;
  for (const auto& entry : fs::directory_iterator(languageFolder(resources), error)) {
    if (entry.path().extension() == ".json") codes.push_back(entry.path().stem().string());
  }
  std::ranges::sort(codes);
  return codes;
}

std::string listed(const std::vector<std::string>& words) {
  std::string list;
  for (std::size_t i = 0; i < words.size(); ++i) {
    if (i > 0) list += i + 1 < words.size() ? ", " : " or ";
    list += words[i];
  }
  return list;
}

}  // namespace

std::string languageHelp() {
  auto codes = languagesIn(findResources());
  std::ranges::replace(codes, kOwnLanguage, kOwnLanguage + std::string(" (default)"));
  return listed(codes);
}

Expected<void> applyAppearance(const fs::path& file, WindowLooks& looks) {
  const auto content = readFile(file, kLargestFile);
  if (!content) return tl::unexpected(content.error());
  const auto object = parseJson(*content, file.string());
  if (!object) return tl::unexpected(object.error());
  const std::string name = inQuotes(file);
  if (!object->is_object()) {
    return platform::failure(name + " must hold a JSON object of keys and values.");
  }
  const std::vector<LookRow> rows = rowsFor(looks);
  for (const auto& [key, value] : object->items()) {
    const auto row = std::ranges::find(rows, key, &LookRow::key);
    if (row == rows.end()) {
      return platform::failure(name + " has an unknown key " + inQuotes(key) +
                               "; docs/screen.md lists those that there are.");
    }
    if (!row->set(value, file.parent_path())) {
      return platform::failure("In " + name + " the key " + inQuotes(key) + " must be " +
                               row->wanted + ".");
    }
  }
  return {};
}

Expected<void> applyLooks(const LooksWishes& wishes, const Resources& resources,
                          WindowLooks& looks) {
  std::vector<fs::path> files;
  if (wishes.ofWindow) files.push_back(resources.storyboards / "themes" / "standard.json");
  if (wishes.language != kOwnLanguage) {
    files.push_back(languageFolder(resources) / (wishes.language + ".json"));
    std::error_code error;
    const bool isName = wishes.language.find('/') == std::string::npos;
    if (!isName || !fs::is_regular_file(files.back(), error)) {
      return platform::failure("There is no language " + inQuotes(wishes.language) + "; choose " +
                               listed(languagesIn(resources)) + ", or give texts with --theme.");
    }
  }
  if (wishes.theme) files.push_back(*wishes.theme);
  for (const fs::path& file : files) {
    if (auto applied = applyAppearance(file, looks); !applied) return applied;
  }
  return {};
}

std::vector<TextEntry> translatableTexts(WindowLooks& looks) {
  std::vector<TextEntry> texts = textsOf();
  for (const char* word : {"close", "progress", "secondsLeft"})
    texts.push_back({std::string("screen.words.") + word, &looks.words[word]});
  texts.push_back({"screen.voice", &looks.voice});
  return texts;
}

}  // namespace corvana::app
