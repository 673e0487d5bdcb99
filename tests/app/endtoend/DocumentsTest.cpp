#include <algorithm>

#include <gtest/gtest.h>

#include "app/endtoend/Program.h"

namespace corvana::tests {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;

const fs::path kStudent = STUDENT;

/// Photographs of a card, and truth.json about them.
json photographs(const fs::path& folder, std::vector<std::string> options) {
  options.insert(options.end(), {"--count", "1", "--output", folder});
  const ProgramRun made = runProgram(MAKE_PHOTOS, options);
  EXPECT_EQ(made.exitCode, 0) << made.errors;
  return json::parse(bytesOf(folder / "truth.json")).at("pictures");
}

/// The same of the one design in a folder.
json photographs(const fs::path& folder, const fs::path& designs) {
  const ScratchFolder data;
  fs::copy(designs, data / "designs");
  fs::copy(fs::path(PHOTO_DATA) / "people.json", data / "people.json");
  return photographs(folder, std::vector<std::string>{"--data", data.path()});
}

ProgramRun enroll(const fs::path& photos, const json& pictures, const fs::path& output,
                  const std::vector<std::string>& more) {
  std::vector<std::string> arguments{"enroll", "--date", "2026-01-01", "--output", output};
  for (const json& picture : pictures) {
    const auto side = "--" + picture.at("side").get<std::string>();
    arguments.insert(arguments.end(), {side, photos / picture.at("file").get<std::string>()});
  }
  arguments.insert(arguments.end(), more.begin(), more.end());
  return runVideoid(arguments);
}

json fieldOf(const json& side, const std::string& name) {
  for (const json& field : side.at("fields"))
    if (field.at("name") == name) return field;
  return {{"value", ""}};
}

std::string valueOf(const json& side, const std::string& name) {
  return fieldOf(side, name).at("value");
}

TEST(Documents, AFileMakesAKindThatIsEnrolled) {
  const ScratchFolder scratch;
  const json pictures = photographs(scratch / "photos", kStudent / "designs");
  ASSERT_EQ(pictures.size(), 2U);
  const ProgramRun without = enroll(scratch / "photos", pictures, scratch / "unknown", {});
  EXPECT_EQ(without.exitCode, 2) << "nothing tells its back";
  EXPECT_FALSE(fs::exists(scratch / "unknown"));

  const ProgramRun run = enroll(scratch / "photos", pictures, scratch / "card",
                                {"--documents", kStudent / "documents"});
  ASSERT_EQ(run.exitCode, 0) << run.errors;
  const json reference = json::parse(bytesOf(scratch / "card/reference.json"));
  EXPECT_EQ(reference.at("front").at("type"), "STUDENT_CARD_FRONT");
  EXPECT_EQ(reference.at("back").at("type"), "STUDENT_CARD_BACK");
  // No label names them, or one of no language that there is a file of.
  for (const char* name : {"surname", "givenNames", "documentNumber"}) {
    EXPECT_EQ(valueOf(reference.at("front"), name),
              pictures.at(0).at("fields").at(name).at("printed"))
        << name;
  }

  const ProgramRun flow =
      runVideoid({"capture", "--reference", scratch / "card", "--text", "words", "--camera",
                  Session::of("short").camera, "--output", scratch / "run"});
  EXPECT_EQ(flow.exitCode, 2);
  EXPECT_NE(flow.errors.find("give the folder of --documents"), std::string::npos) << flow.errors;
  EXPECT_FALSE(fs::exists(scratch / "run"));
}

TEST(Documents, TheZoneOfTheBackTellsNamesOnTheFrontThatNoKnownLabelNames) {
  const ScratchFolder scratch;
  json permit = json::parse(bytesOf(fs::path(PHOTO_DATA) / "designs/permit.json"));
  permit["languages"] = {"de"};
  json& fields = permit["front"]["fields"];
  fields.erase(std::ranges::find_if(
      fields, [](const json& field) { return field["field"] == "documentNumber"; }));
  for (json& field : fields)
    if (field["field"] == "surname" || field["field"] == "givenNames") field["label"] = "Zvxwqa";
  fs::create_directories(scratch / "designs");
  writeBytes(scratch / "designs/permit.json", permit.dump());
  const json pictures = photographs(scratch / "photos", scratch / "designs");
  const ProgramRun run = enroll(scratch / "photos", pictures, scratch / "card", {});
  ASSERT_EQ(run.exitCode, 0) << run.errors;
  EXPECT_NE(run.errors.find("WARNING: the documentNumber in the zone was not found in print."),
            std::string::npos)
      << run.errors;
  const json reference = json::parse(bytesOf(scratch / "card/reference.json"));
  const json hint{{"name", "unread"}, {"field", "documentNumber"}, {"source", "zone"}};
  EXPECT_EQ(reference.at("hints"), json::array({hint}));
  const json& front = reference.at("front");
  for (const char* name : {"surname", "givenNames"}) {
    const json field = fieldOf(front, name);
    EXPECT_EQ(field.at("value"), pictures.at(0).at("fields").at(name).at("printed")) << name;
    EXPECT_EQ(field.at("source"), "print") << name;
    EXPECT_EQ(field.value("knownBy", ""), "zone") << name;
  }
  EXPECT_FALSE(fieldOf(front, "birthDate").contains("knownBy")) << "it has a label";

  // The same card without its title: its expiry is the zone's, and so it is of the back's kind.
  permit["front"]["writings"] = json::array();
  writeBytes(scratch / "designs/permit.json", permit.dump());
  const json untitled = photographs(scratch / "untitled", scratch / "designs");
  const ProgramRun taken = enroll(scratch / "untitled", untitled, scratch / "taken", {});
  ASSERT_EQ(taken.exitCode, 0) << taken.errors;
  const json known = json::parse(bytesOf(scratch / "taken/reference.json"));
  EXPECT_EQ(known.at("front").at("type"), "RESIDENCE_PERMIT_FRONT");
  EXPECT_EQ(known.at("hints"), json::array({{{"name", "untitled"}}, hint}));

  // Without what tells this document from others of its holder it may be another one.
  fields.erase(std::ranges::find_if(
      fields, [](const json& field) { return field["field"] == "dateOfExpiry"; }));
  writeBytes(scratch / "designs/permit.json", permit.dump());
  const json unmarked = photographs(scratch / "unmarked", scratch / "designs");
  const ProgramRun refused = enroll(scratch / "unmarked", unmarked, scratch / "none", {});
  EXPECT_EQ(refused.exitCode, 2);
  EXPECT_NE(refused.errors.find("By its back the card is a RESIDENCE_PERMIT, but no name of such a "
                                "document was read on"),
            std::string::npos)
      << refused.errors;
}

TEST(Documents, APageWhoseZoneStandsOnABandOfItsOwnIsTakenWithIt) {
  const ScratchFolder scratch;
  // The outline ends at that band. In the first photograph the zone can be read, in the other not.
  for (const auto& [seed, exitCode] : {std::pair("27", 0), {"16", 2}}) {
    const fs::path folder = scratch / seed;
    const json pictures = photographs(folder, {"--designs", "hornbeam", "--seed", seed});
    const ProgramRun run = enroll(folder, pictures, folder / "page", {});
    ASSERT_EQ(run.exitCode, exitCode) << run.errors;
    if (exitCode != 0) {
      EXPECT_NE(run.errors.find("zone or barcode that a PASSPORT_PAGE_FRONT has could not be read"),
                std::string::npos)
          << run.errors;
      continue;
    }
    const json front = json::parse(bytesOf(folder / "page/reference.json")).at("front");
    EXPECT_EQ(front.at("type"), "PASSPORT_PAGE_FRONT");
    EXPECT_EQ(front.at("mrz").at("lines"), pictures.at(0).at("zone"));
  }
}

TEST(Documents, AZoneThatReachesFurtherThanWhatWasFoundAboveItIsReadWhole) {
  const ScratchFolder scratch;
  // The photo's dark edge is a side of what is found: half of the zone lies beyond it.
  json pictures = photographs(
      scratch / "photos", {"--designs", "sycamore", "--grounds", "grille,letters", "--seed", "2"});
  pictures.erase(1);  // its back
  const ProgramRun run = enroll(scratch / "photos", pictures, scratch / "card", {});
  ASSERT_EQ(run.exitCode, 0) << run.errors;
  const json front = json::parse(bytesOf(scratch / "card/reference.json")).at("front");
  EXPECT_EQ(front.at("type"), "RESIDENCE_PERMIT_FRONT");
  EXPECT_EQ(front.at("mrz").at("lines"), pictures.at(0).at("zone"));
}

TEST(Documents, ABackWithAGhostImageBesideAZoneOfTwoLinesIsNoFront) {
  const ScratchFolder scratch;
  const json pictures = photographs(
      scratch / "photos", {"--designs", "garnet", "--unseen", "--grounds", "plain", "--seed", "2"});
  const std::string back = scratch / "photos/0000-garnet-back.jpg";
  const ProgramRun run =
      runVideoid({"enroll", "--front", back, "--date", "2026-01-01", "--output", scratch / "card"});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_NE(run.errors.find("shows the other side of a card, not its front"), std::string::npos)
      << run.errors;

  // Its front's title runs upward, in a dark band.
  const ProgramRun both = enroll(scratch / "photos", pictures, scratch / "permit", {});
  ASSERT_EQ(both.exitCode, 0) << both.errors;
  const json permit = json::parse(bytesOf(scratch / "permit/reference.json"));
  EXPECT_EQ(permit.at("front").at("type"), "RESIDENCE_PERMIT_FRONT");
  EXPECT_EQ(permit.at("back").at("type"), "RESIDENCE_PERMIT_BACK");
  for (const json& hint : permit.at("hints"))
    EXPECT_NE(hint.at("name"), "untitled");
  for (const json& line : permit.at("front").at("ocrStrings"))
    EXPECT_EQ(line.get<std::string>().find("PERMIS DE"), std::string::npos) << "it is not level";
}

TEST(Documents, ABandAlongOneSideBelongsToTheCard) {
  const ScratchFolder scratch;
  photographs(scratch / "photos",
              {"--designs", "aspen", "--unseen", "--grounds", "lace", "--seed", "2"});
  const std::string front = scratch / "photos/0000-aspen-front.jpg";
  const ProgramRun run = runVideoid(
      {"enroll", "--front", front, "--date", "2026-01-01", "--output", scratch / "card"});
  ASSERT_EQ(run.exitCode, 0) << run.errors;
  const json card = json::parse(bytesOf(scratch / "card/reference.json"));
  EXPECT_EQ(card.at("front").at("type"), "DRIVING_LICENCE_FRONT") << "its title is in the band";
}

TEST(Documents, APassportsPageIsAFrontAndNoBack) {
  const ScratchFolder scratch;
  const json pictures = photographs(scratch / "photos",
                                    {"--designs", "passport", "--grounds", "plain", "--seed", "3"});
  ASSERT_EQ(pictures.size(), 1U);
  const ProgramRun run = enroll(scratch / "photos", pictures, scratch / "page", {});
  ASSERT_EQ(run.exitCode, 0) << run.errors;
  const json reference = json::parse(bytesOf(scratch / "page/reference.json"));
  EXPECT_EQ(reference.at("front").at("type"), "PASSPORT_PAGE_FRONT");
  EXPECT_EQ(reference.at("front").at("mrz").at("lines"), pictures.at(0).at("zone"));
  EXPECT_FALSE(reference.contains("back"));

  const fs::path photo = (scratch / "photos") / pictures.at(0).at("file").get<std::string>();
  const ProgramRun both = enroll(scratch / "photos", pictures, scratch / "both", {"--back", photo});
  EXPECT_EQ(both.exitCode, 2);
  EXPECT_NE(both.errors.find("PASSPORT_PAGE, which has no back; leave out --back"),
            std::string::npos)
      << both.errors;
  EXPECT_FALSE(fs::exists(scratch / "both"));

  // A thumb on the zone's last letters: without its zone a page is not taken for an identity card.
  const json& corners = pictures.at(0).at("corners");
  const auto near = [&](std::size_t axis) {  // of the lower right corner, a little inwards
    const auto corner = [&](std::size_t which) { return corners.at(which).at(axis).get<double>(); };
    const double along = 0.07 * (corner(3) - corner(2));
    return std::to_string(int(corner(2) + along + 0.12 * (corner(1) - corner(2))) - 30);
  };
  const fs::path touched = scratch / "touched.png";
  const std::string thumb = "drawbox=x=" + near(0) + ":y=" + near(1) + ":w=60:h=60:c=tan:t=fill";
  ASSERT_EQ(runProgram("ffmpeg", {"-v", "error", "-i", photo, "-vf", thumb, touched}).exitCode, 0);
  const ProgramRun unread = runVideoid({"enroll", "--front", touched, "--output", scratch / "no"});
  EXPECT_EQ(unread.exitCode, 2);
  EXPECT_NE(unread.errors.find("barcode that a PASSPORT_PAGE_FRONT has could not be read"),
            std::string::npos)
      << unread.errors;
}

TEST(Documents, AreListedAndChecked) {
  const ProgramRun list = runVideoid({"documents", "--documents", kStudent / "documents"});
  EXPECT_EQ(list.exitCode, 0) << list.errors;
  EXPECT_NE(list.output.find("STUDENT_CARD: Student card, ID-1\n    front: photo\n"),
            std::string::npos)
      << list.output;
  const ProgramRun asJson = runVideoid({"documents", "--json"});
  const json all = json::parse(asJson.output);
  const auto page = std::ranges::find_if(
      all.at("kinds"), [](const json& kind) { return kind.at("stem") == "PASSPORT_PAGE"; });
  ASSERT_NE(page, all.at("kinds").end());
  EXPECT_EQ(page->at("millimetres"), (json{125, 88}));
  EXPECT_EQ(page->at("sides").at("front").at("zone").at("format"), "TD3");
  EXPECT_FALSE(page->at("sides").contains("back"));
  EXPECT_GT(all.at("labels").at("de"), 20);

  const fs::path fine = kStudent / "documents/student-card.json";
  EXPECT_EQ(runVideoid({"documents", "--check", kStudent / "documents"}).exitCode, 0);
  EXPECT_EQ(runVideoid({"documents", "--check", fine}).exitCode, 0);
}

TEST(Documents, AFaultIsOneSentenceOfEveryCommand) {
  const ScratchFolder scratch;
  json kind = json::parse(bytesOf(kStudent / "documents/student-card.json"));
  kind["stem"] = "IDENTITY";
  writeBytes(scratch / "bad.json", kind.dump());
  fs::create_directories(scratch / "other/labels");
  writeBytes(scratch / "other/labels/eo.json", "{}");
  const std::pair<std::vector<std::string>, const char*> cases[] = {
      {{"documents", "--check", scratch / "bad.json"}, "with which IDENTITY_CARD begins"},
      {{"documents", "--check", scratch / "other"}, "language: this key is missing"},
      {{"documents", "--check", scratch / "other/labels/eo.json"}, "language: this key is missing"},
      {{"documents", "--check", scratch / "none"}, "There is no folder"},
      {{"documents", "--documents", scratch / "bad.json"}, "with which IDENTITY_CARD begins"},
      {{"enroll", "--front", "a.png", "--output", scratch / "card", "--documents", scratch.path()},
       "with which IDENTITY_CARD begins"},
      {{"capture", "--reference", "card", "--text", "a", "--camera", "none.mp4", "--documents",
        scratch.path()},
       "with which IDENTITY_CARD begins"},
  };
  for (const auto& [arguments, sentence] : cases) {
    const ProgramRun run = runVideoid(arguments);
    EXPECT_EQ(run.exitCode, 2) << sentence;
    EXPECT_NE(run.errors.find(sentence), std::string::npos) << run.errors;
    EXPECT_EQ(std::ranges::count(run.errors, '\n'), 1) << run.errors;
    EXPECT_TRUE(run.output.empty()) << run.output;
  }
}

}  // namespace
}  // namespace corvana::tests
