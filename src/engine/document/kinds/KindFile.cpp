#include "engine/document/kinds/KindFile.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <utility>

#include "engine/document/fields/DocumentFields.h"
#include "engine/document/fields/Transliteration.h"
#include "engine/document/kinds/LanguageCode.h"
#include "engine/document/text/AsciiLetters.h"
#include "engine/json/JsonFile.h"
#include "engine/json/JsonObject.h"

namespace corvana::engine {
namespace {

using platform::CGRect;
using platform::CGSize;

constexpr std::uint64_t kLargestFile = 256 << 10;
constexpr std::size_t kMostNames = 100;
constexpr std::size_t kMostFields = 40;
constexpr std::size_t kLongestText = 100;
constexpr std::size_t kLeastStemLetters = 3;
constexpr std::size_t kMostStemLetters = 40;
/// Shorter names stand inside other words.
constexpr std::size_t kLeastNameLetters = 6;

const std::map<std::string, DocumentSize>& sizes() {
  static const std::map<std::string, DocumentSize> kSizes{
      {"ID-1", DocumentSize::id1}, {"ID-2", DocumentSize::id2}, {"ID-3", DocumentSize::id3}};
  return kSizes;
}

const std::map<std::string, ZoneFormat>& zoneFormats() {
  static const std::map<std::string, ZoneFormat> kFormats{
      {"TD1", ZoneFormat::td1}, {"TD2", ZoneFormat::td2}, {"TD3", ZoneFormat::td3}};
  return kFormats;
}

bool isCapitalOrDigit(char c) {
  return isCapital(c) || isDigit(c);
}

bool isStem(const std::string& text) {
  return text.size() >= kLeastStemLetters && text.size() <= kMostStemLetters &&
         isCapital(text.front()) && text.back() != '_' &&
         std::ranges::all_of(text, [](char c) { return c == '_' || isCapitalOrDigit(c); });
}

/// Reads one file; places are checked against the size of the document.
class KindReader {
 public:
  explicit KindReader(const nlohmann::json& json) : root_(json, "") {}

  DocumentKind read() {
    DocumentKind kind;
    kind.stem = stem();
    kind.title = shortText(root_, "title");
    kind.size = root_.choice("size", sizes());
    size_ = millimetresOf(kind.size);
    kind.standards = standards();
    kind.isRemainder = root_.flag("isRemainder", false);
    if (root_.has("names")) kind.names = names(root_.object("names"));
    kind.zoneCodes = codes("zoneCodes", 1, 2);
    if (root_.has("zoneFormat")) kind.zoneFormat = root_.choice("zoneFormat", zoneFormats());
    kind.codeElements = codes("codeElements", 3, 3);
    readSides(root_.object("sides"), kind);
    root_.refuseOtherKeys();
    checkThatItIsKnown(kind);
    return kind;
  }

 private:
  static std::string shortText(JsonObject& object, const std::string& key) {
    std::string text = object.text(key);
    if (text.empty() || text.size() > kLongestText) {
      object.complain(key, "must have 1 to 100 bytes");
    }
    return text;
  }

  std::string stem() {
    std::string text = root_.text("stem");
    if (!isStem(text)) {
      root_.complain("stem",
                     "must be 3 to 40 capitals, digits and underscores, begin with a capital and "
                     "not end with an underscore");
    }
    return text;
  }

  std::vector<std::string> standards() {
    static const std::map<std::string, bool> kStandards{{"AAMVA", true},
                                                        {"ICAO TD1", true},
                                                        {"ICAO TD2", true},
                                                        {"ICAO TD3", true},
                                                        {"ISO 18013", true}};
    if (!root_.has("standards")) return {};
    auto list = root_.texts("standards");
    if (!std::ranges::all_of(list, [](const auto& name) { return kStandards.contains(name); })) {
      root_.complain("standards", "may hold AAMVA, ICAO TD1, ICAO TD2, ICAO TD3 and ISO 18013");
    }
    return list;
  }

  std::vector<std::string> codes(const std::string& key, std::size_t least, std::size_t most) {
    if (!root_.has(key)) return {};
    auto list = root_.texts(key);
    const bool areCodes = std::ranges::all_of(list, [&](const std::string& code) {
      return code.size() >= least && code.size() <= most &&
             std::ranges::all_of(code, isCapitalOrDigit);
    });
    if (!areCodes) {
      const std::string length = least == most ? "" : std::to_string(least) + " to ";
      root_.complain(key,
                     "must be texts of " + length + std::to_string(most) + " capitals and digits");
    }
    return list;
  }

  static std::vector<KindName> names(JsonObject object) {
    std::vector<KindName> all;
    for (const std::string& language : object.keys()) {
      if (!isLanguageCode(language)) {
        object.complain(language, "must be the code of a language, such as de");
      }
      for (std::string& text : object.texts(language))
        all.push_back(name(object, language, std::move(text)));
    }
    if (all.size() > kMostNames) object.complain("", "must have at most 100 names");
    return all;
  }

  static KindName name(const JsonObject& object, const std::string& language, std::string text) {
    std::string letters = plainLetters(text);
    std::erase_if(letters, [](char c) { return !isCapital(c); });
    if (letters.size() < kLeastNameLetters || letters.size() > kLongestText) {
      object.complain(language,
                      "a name must have 6 to 100 Latin letters, since shorter ones stand inside "
                      "other words");
    }
    return {language, std::move(text), std::move(letters)};
  }

  void readSides(JsonObject sides, DocumentKind& kind) {
    kind.front = side(sides.object("front"));
    if (sides.has("back")) kind.back = side(sides.object("back"));
    sides.refuseOtherKeys();
    if (!kind.front.photo) {
      sides.complain("front.photo",
                     "this key is missing: the photo is what the holder's face is compared with");
    }
    if (kind.back && kind.back->photo) {
      sides.complain("back.photo", "the photo belongs to the front, by which the sides are told");
    }
  }

  KindSide side(JsonObject object) const {
    KindSide side;
    if (object.has("photo")) side.photo = mark(object.object("photo"));
    if (object.has("zone")) side.zone = zone(object.object("zone"));
    if (object.has("code")) side.code = code(object.object("code"));
    if (object.has("fields")) {
      for (JsonObject& field : object.objects("fields", kMostFields))
        side.fields.push_back(placedField(field));
    }
    object.refuseOtherKeys();
    return side;
  }

  SideMark mark(JsonObject object) const {
    const SideMark mark{optionalPlace(object)};
    object.refuseOtherKeys();
    return mark;
  }

  ZoneMark zone(JsonObject object) const {
    ZoneMark mark{{optionalPlace(object)}, object.choice("format", zoneFormats())};
    object.refuseOtherKeys();
    return mark;
  }

  SideMark code(JsonObject object) const {
    static const std::map<std::string, bool> kFormats{{"PDF417", true}};
    object.choice("format", kFormats);
    return mark(std::move(object));
  }

  PlacedField placedField(JsonObject& object) const {
    const auto name = fieldNamed(object.text("name"));
    if (!name) object.complain("name", "is no field of docs/fields.md");
    const PlacedField field{*name, place(object)};
    object.refuseOtherKeys();
    return field;
  }

  std::optional<CGRect> optionalPlace(JsonObject& object) const {
    return object.has("place") ? std::optional(place(object)) : std::nullopt;
  }

  CGRect place(JsonObject& object) const {
    const auto numbers = object.numbers("place", 4);
    const CGRect box{numbers[0], numbers[1], numbers[2], numbers[3]};
    constexpr double kRounded = 0.05;
    const bool isOnDocument = box.x >= 0 && box.y >= 0 && box.width > 0 && box.height > 0 &&
                              box.maxX() <= size_.width + kRounded &&
                              box.maxY() <= size_.height + kRounded;
    if (!isOnDocument) {
      object.complain("place",
                      "must be x, y, width and height in millimetres, within the document");
    }
    return box;
  }

  void checkThatItIsKnown(const DocumentKind& kind) const {
    const bool isKnown = kind.isRemainder || !kind.names.empty() || !kind.zoneCodes.empty() ||
                         !kind.codeElements.empty();
    if (!isKnown) {
      root_.complain("names",
                     "this key is missing: nothing tells a document of this kind; give names, "
                     "zoneCodes or codeElements");
    }
    const auto hasZone = [&](const KindSide& side) {
      return side.zone && side.zone->format == kind.zoneFormat;
    };
    if (kind.zoneFormat && !hasZone(kind.front) && !(kind.back && hasZone(*kind.back))) {
      root_.complain("zoneFormat", "no side has a zone of this format");
    }
  }

  JsonObject root_;
  CGSize size_;
};

}  // namespace

platform::Expected<DocumentKind> readKindFile(const std::filesystem::path& path) {
  const auto content = readFile(path, kLargestFile);
  if (!content) return tl::unexpected(content.error());
  const auto json = parseJson(*content, path.string());
  if (!json) return tl::unexpected(json.error());
  try {
    DocumentKind kind = KindReader(*json).read();
    kind.file = path;
    return kind;
  } catch (const JsonFault& fault) {
    return platform::failure(inQuotes(path) + " is no kind of document: " + fault.sentence + ".");
  }
}

}  // namespace corvana::engine
