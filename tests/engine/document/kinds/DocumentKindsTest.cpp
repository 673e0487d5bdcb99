#include <algorithm>
#include <set>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "engine/document/kinds/DocumentTables.h"
#include "support/Scratch.h"

namespace corvana::tests {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;

const fs::path kBuiltIn = ENGINE_RESOURCES "/documents";

void write(const fs::path& path, const std::string& content) {
  fs::create_directories(path.parent_path());
  writeBytes(path, content);
}

/// A kind that has all that a kind may have.
json studentCard() {
  return json::parse(R"({
    "stem": "STUDENT_CARD", "title": "Student card", "size": "ID-1", "standards": ["ICAO TD1"],
    "names": {"en": ["Student card"], "de": ["Studierendenausweis"]},
    "zoneCodes": ["AS"], "zoneFormat": "TD1", "codeElements": ["ZST"], "isRemainder": false,
    "sides": {
      "front": {"photo": {"place": [4, 12, 24, 30]},
                "fields": [{"name": "surname", "place": [30, 12, 50, 4]}]},
      "back": {"zone": {"format": "TD1", "place": [0, 30, 85, 23]},
               "code": {"format": "PDF417", "place": [5, 5, 60, 12]}}}})");
}

platform::Expected<engine::DocumentTables> loadBeside(const fs::path& folder) {
  return engine::loadDocumentTables({kBuiltIn, folder});
}

/// What is said of a file beside those of the program; empty when nothing is.
std::string faultOf(const std::string& content, const std::string& name = "student.json") {
  const ScratchFolder scratch;
  write(scratch / name, content);
  const auto loaded = loadBeside(scratch.path());
  if (loaded) return {};
  EXPECT_NE(loaded.error().sentence.find(scratch / name), std::string::npos)
      << "the file is named: " << loaded.error().sentence;
  return loaded.error().sentence;
}

std::string faultWith(const char* pointer, const json& value) {
  json kind = studentCard();
  kind[json::json_pointer(pointer)] = value;
  return faultOf(kind.dump());
}

TEST(DocumentKinds, ThoseOfTheProgramAreKnownByTheirTypes) {
  const auto loaded = engine::loadDocumentTables({kBuiltIn});
  ASSERT_TRUE(loaded) << loaded.error().sentence;
  const auto& kinds = loaded->kinds;
  EXPECT_EQ(kinds.remainder().stem, "IDENTITY_CARD");
  for (const char* type : {"IDENTITY_CARD_FRONT", "RESIDENCE_PERMIT_BACK", "DRIVING_LICENCE_BACK",
                           "PASSPORT_CARD_FRONT", "PASSPORT_PAGE_FRONT", "TD2_CARD_FRONT"}) {
    EXPECT_NE(kinds.ofType(type), nullptr) << type;
  }
  EXPECT_EQ(kinds.ofType("PASSPORT_PAGE_BACK"), nullptr) << "it has one side";
  EXPECT_EQ(kinds.ofType("LIBRARY_CARD_FRONT"), nullptr);
  EXPECT_GE(loaded->labels.languages().size(), 20U);
}

TEST(DocumentKinds, AFileMoreIsAKindMore) {
  const ScratchFolder scratch;
  write(scratch / "student.json", studentCard().dump());
  write(scratch / "readme.txt", "no data");
  const auto loaded = loadBeside(scratch.path());
  ASSERT_TRUE(loaded) << loaded.error().sentence;
  const engine::DocumentKind* kind = loaded->kinds.ofType("STUDENT_CARD_BACK");
  ASSERT_TRUE(kind);
  EXPECT_EQ(kind->names.front().letters, "STUDIERENDENAUSWEIS");
  EXPECT_EQ(kind->front.photo->place, (platform::CGRect{4, 12, 24, 30}));
  EXPECT_EQ(kind->front.fields.front().name, corvana::FieldName::surname);
  EXPECT_EQ(kind->back->zone->format, engine::ZoneFormat::td1);
  EXPECT_TRUE(kind->back->code);
}

TEST(DocumentKinds, ALaterFoldersKindTakesAnEarliersPlace) {
  const ScratchFolder scratch;
  json permit = studentCard();
  permit["stem"] = "RESIDENCE_PERMIT";
  write(scratch / "mine.json", permit.dump());
  const auto loaded = loadBeside(scratch.path());
  ASSERT_TRUE(loaded) << loaded.error().sentence;
  EXPECT_EQ(loaded->kinds.ofType("RESIDENCE_PERMIT_FRONT")->title, "Student card");
}

TEST(DocumentKinds, AFaultIsOneSentenceThatNamesFileAndCause) {
  const json box = {80, 12, 24, 30};
  const struct {
    const char* pointer;
    json value;
    const char* sentence;
  } cases[] = {
      {"/stem", "student", "stem: must be 3 to 40 capitals"},
      {"/stem", "A\nB", "stem: must be 3 to 40 capitals"},
      {"/stem", 7, "stem: must be a text"},
      {"/stem", "IDENTITY", "with which IDENTITY_CARD begins"},
      {"/stem", "IDENTITY_CARD_2", "has the stem IDENTITY_CARD, with which IDENTITY_CARD_2 begins"},
      {"/title", "", "title: must have 1 to 100 bytes"},
      {"/size", "ID-4", "\"ID-4\" is not one of ID-1, ID-2, ID-3"},
      {"/size", std::string(500, '\n'), "size: \""},
      {"/standards", {"ISO 9000"}, "standards: may hold"},
      {"/names", json::array(), "names must be a JSON object"},
      {"/names", {{"german", {"Studierendenausweis"}}}, "must be the code of a language"},
      {"/names/en", {"Pass"}, "names.en: a name must have 6 to 100 Latin letters"},
      {"/names/en", {"Driver's license"}, "has the name \"Driver's license\" like that in"},
      {"/zoneCodes", {"ASX"}, "zoneCodes: must be texts of 1 to 2 capitals"},
      {"/zoneFormat", "TD3", "zoneFormat: no side has a zone of this format"},
      {"/codeElements", {"DAQ"}, "has the code element DAQ like that in"},
      {"/isRemainder", true, "is the remainder like that in"},
      {"/isRemainder", "no", "isRemainder: must be true or false"},
      {"/sides", {{"back", json::object()}}, "sides.front: this key is missing"},
      {"/sides/front", json::object(), "sides.front.photo: this key is missing"},
      {"/sides/back/photo", json::object(), "sides.back.photo: the photo belongs to the front"},
      {"/sides/back/zone/format", "TD4", "sides.back.zone.format: \"TD4\" is not one of"},
      {"/sides/back/code/format", "QR", "\"QR\" is not one of PDF417"},
      {"/sides/front/photo/place", box, "sides.front.photo.place: must be x, y, width and height"},
      {"/sides/front/photo/place", {1e308, 0, 1e308, 1}, "within the document"},
      {"/sides/front/photo/place", {1, 2, 3}, "must be a list of 4 numbers"},
      {"/sides/front/fields/0/name", "shoeSize", "sides.front.fields[0].name: is no field"},
      {"/colour", "blue", "colour: there is no such key here"},
  };
  for (const auto& c : cases) {
    const std::string sentence = faultWith(c.pointer, c.value);
    SCOPED_TRACE(sentence);
    EXPECT_NE(sentence.find(c.sentence), std::string::npos) << c.pointer << " " << c.value;
    EXPECT_EQ(std::ranges::count(sentence, '\n'), 0);
    EXPECT_LT(sentence.size(), 500U);
  }
}

TEST(DocumentKinds, AFileOfAnyBytesIsOneSentence) {
  EXPECT_NE(faultOf("").find("is not valid JSON"), std::string::npos);
  EXPECT_NE(faultOf("\xff\xfe\x01").find("is not valid JSON"), std::string::npos);
  EXPECT_NE(faultOf(std::string(999, '[') + std::string(999, ']')).find("nested deeper"),
            std::string::npos);
  EXPECT_NE(faultOf("[1, 2]").find("the file must be a JSON object"), std::string::npos);
  EXPECT_NE(faultOf("{\"stem\": 1e999}").find("too large"), std::string::npos);
  EXPECT_NE(faultOf(std::string(300 << 10, ' ')).find("larger than"), std::string::npos);
  EXPECT_NE(faultOf("{}").find("stem: this key is missing"), std::string::npos);
}

TEST(DocumentKinds, WhatNothingTellsIsRefused) {
  json kind = studentCard();
  for (const char* key : {"names", "zoneCodes", "zoneFormat", "codeElements"})
    kind.erase(key);
  EXPECT_NE(faultOf(kind.dump()).find("nothing tells a document of this kind"), std::string::npos);
}

TEST(DocumentKinds, TwoFilesOfAFolderAreTwoKinds) {
  const ScratchFolder scratch;
  write(scratch / "a.json", studentCard().dump());
  write(scratch / "b.json", studentCard().dump());
  const auto loaded = loadBeside(scratch.path());
  ASSERT_FALSE(loaded);
  const std::string sentence = loaded.error().sentence;
  EXPECT_NE(sentence.find("has the stem of that in"), std::string::npos) << sentence;
  EXPECT_NE(sentence.find(scratch / "a.json"), std::string::npos) << sentence;
  EXPECT_NE(sentence.find(scratch / "b.json"), std::string::npos) << sentence;
}

TEST(DocumentKinds, OneKindMustRemain) {
  const ScratchFolder scratch;
  write(scratch / "student.json", studentCard().dump());
  const auto loaded = engine::DocumentKinds::load({scratch.path()});
  ASSERT_FALSE(loaded);
  EXPECT_NE(loaded.error().sentence.find("isRemainder"), std::string::npos);
}

/// The JSON between the fences of docs/documents.md, in its order.
std::vector<std::string> examples() {
  const std::string fence = "```";
  const std::string text = bytesOf(DOCS "/documents.md");
  std::vector<std::string> found;
  for (auto at = text.find(fence + "json"); at != std::string::npos;
       at = text.find(fence + "json", at)) {
    at += fence.size() + 4;
    const auto end = text.find(fence, at);
    found.push_back(text.substr(at, end - at));
    at = end + fence.size();
  }
  return found;
}

TEST(DocumentKinds, TheExamplesOfTheManualAreGood) {
  const auto found = examples();
  ASSERT_EQ(found.size(), 2U);
  const ScratchFolder scratch;
  write(scratch / "student-card.json", found[0]);
  write(scratch / "labels/eo.json", found[1]);
  const auto loaded = loadBeside(scratch.path());
  ASSERT_TRUE(loaded) << loaded.error().sentence;
  EXPECT_TRUE(loaded->kinds.ofType("STUDENT_CARD_BACK"));
  EXPECT_EQ(loaded->labels.languages().at("eo"), 5U);
}

TEST(DocumentKinds, TheSchemaHasTheKeysThatAreRead) {
  const json schema = json::parse(bytesOf(DOCS "/document.schema.json"));
  const auto keysOf = [](const json& object) {
    std::set<std::string> keys;
    for (const auto& [key, value] : object.items())
      keys.insert(key);
    return keys;
  };
  // It is taken, so that no key in it is unknown to the program.
  const json kind = studentCard();
  EXPECT_EQ(keysOf(schema.at("properties")), keysOf(kind));
  std::set<std::string> onSides;
  for (const auto& [name, side] : kind.at("sides").items())
    onSides.merge(keysOf(side));
  EXPECT_EQ(keysOf(schema.at("$defs").at("side").at("properties")), onSides);
}

TEST(FieldLabels, AFileMoreIsALanguageMore) {
  const ScratchFolder scratch;
  write(scratch / "labels/eo.json",
        R"({"language": "eo", "labels": {"surname": ["Familia nomo"], "other": ["Loĝloko"]}})");
  write(scratch / "labels/en.json", R"({"language": "en", "labels": {"surname": ["Clan"]}})");
  const auto loaded = loadBeside(scratch.path());
  ASSERT_TRUE(loaded) << loaded.error().sentence;
  const auto nameIn = [&](const char* line) {
    const auto text = loaded->labels.labelledText(line);
    return text ? text->name : std::nullopt;
  };
  EXPECT_EQ(nameIn("Familia nomo"), corvana::FieldName::surname);
  EXPECT_EQ(nameIn("Clan / Sippe"), corvana::FieldName::surname);
  EXPECT_EQ(nameIn("Given names"), corvana::FieldName::givenNames) << "English is added to";
  EXPECT_TRUE(loaded->labels.labelledText("LOGLOKO"));
  EXPECT_EQ(nameIn("LOGLOKO"), std::nullopt);
}

TEST(FieldLabels, AFaultIsOneSentenceThatNamesFileAndCause) {
  const std::pair<const char*, const char*> cases[] = {
      {R"([])", "the file must be a JSON object"},
      {R"({"language": "Esperanto", "labels": {}})", "language: must be the code"},
      {R"({"language": "eo", "labels": {"shoeSize": ["Ŝuo"]}})",
       "labels: \"shoeSize\" is no field"},
      {R"({"language": "eo", "labels": {"surname": "Nomo"}})", "labels.surname: must be a list"},
      {R"({"language": "eo", "labels": {"surname": ["a b c d e f"]}})", "one to five words"},
      {R"({"language": "eo", "labels": {"surname": ["名"]}})", "Latin letters"},
      {R"({"language": "eo", "labels": {"sex": ["Vorname"]}})", "stands for another field in"},
      {R"({"language": "eo", "labels": {}, "more": 1})", "more: there is no such key here"},
  };
  for (const auto& [content, cause] : cases) {
    const std::string sentence = faultOf(content, "labels/eo.json");
    EXPECT_NE(sentence.find(cause), std::string::npos) << content << ": " << sentence;
  }
}

}  // namespace
}  // namespace corvana::tests
