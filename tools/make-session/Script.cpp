#include "Script.h"

#include "ScriptReader.h"
#include "engine/json/JsonFile.h"

namespace corvana::session {
namespace {

using std::filesystem::path;

constexpr std::size_t kLongestText = 5000;
constexpr std::size_t kLongestField = 80;
constexpr double kLongestSession = 600.0;

TaskScript readTask(ScriptReader reader) {
  TaskScript task;
  reader.choice("do", task.what, {"turnLeft", "turnRight", "lookUp", "comeNearer", "blinkTwice"});
  reader.number("at", task.at, 0.0, kLongestSession);
  reader.number("seconds", task.seconds, 0.5, 20.0);
  reader.finish();
  return task;
}

void readPerson(ScriptReader reader, const path& folder, PersonScript& person) {
  reader.file("portrait", person.portrait, folder);
  reader.number("faceWidth", person.faceWidth, 60.0, 600.0);
  reader.number("x", person.x, 0.0, 720.0);
  reader.number("y", person.y, 0.0, 1280.0);
  reader.number("headMotion", person.headMotion, 0.0, 2.0);
  reader.number("turn", person.turn, 0.0, 3.0);
  reader.number("quickness", person.quickness, 0.2, 5.0);
  reader.number("noBlinkBefore", person.noBlinkBefore, 0.0, kLongestSession);
  reader.number("blinkEvery", person.blinkEvery, 0.8, kLongestSession);
  reader.number("light", person.light, 0.1, 1.5);
  reader.flag("doorway", person.doorway);
  for (const ScriptReader& task : reader.objects("tasks"))
    person.tasks.push_back(readTask(task));
  reader.finish();
}

void readPresentation(ScriptReader reader, PresentationScript& presentation) {
  reader.choice("kind", presentation.kind, {"live", "print", "screen", "still", "loop"});
  reader.number("scale", presentation.scale, 0.5, 2.0);
  reader.number("crop", presentation.crop, 0.0, 0.3);
  reader.number("tilt", presentation.tilt, 0.0, 30.0);
  reader.number("bend", presentation.bend, -2.0, 2.0);
  reader.number("bendAxis", presentation.bendAxis, -90.0, 90.0);
  reader.flag("livingEyes", presentation.livingEyes);
  reader.number("loopFrom", presentation.loopFrom, 0.0, kLongestSession);
  reader.number("loopSeconds", presentation.loopSeconds, 0.2, kLongestSession);
  reader.finish();
}

void readCard(ScriptReader reader, const path& folder, CardData& card) {
  reader.file("photo", card.photo, folder);
  reader.text("state", card.state, 3);
  reader.text("stateName", card.stateName, kLongestField);
  reader.text("surname", card.surname, kLongestField);
  reader.optionalText("givenNames", card.givenNames, kLongestField);
  reader.text("nationality", card.nationality, kLongestField);
  reader.text("nationalityCode", card.nationalityCode, 3);
  reader.date("dateOfBirth", card.dateOfBirth);
  reader.choice("sex", card.sex, {"F", "M", "X"});
  reader.text("documentNumber", card.documentNumber, 20);
  reader.date("dateOfIssue", card.dateOfIssue);
  reader.date("dateOfExpiry", card.dateOfExpiry);
  reader.text("placeOfBirth", card.placeOfBirth, kLongestField);
  reader.text("address", card.address, kLongestField);
  reader.text("height", card.height, kLongestField);
  reader.text("authority", card.authority, kLongestField);
  reader.optionalText("optionalData", card.optionalData, 15);
  reader.optionalText("optionalData2", card.optionalData2, 11);
  reader.finish();
}

void readPlace(ScriptReader reader, CardPlace& place) {
  reader.number("x", place.x, 0.0, 720.0);
  reader.number("y", place.y, 0.0, 1280.0);
  reader.number("width", place.width, 200.0, 720.0);
  reader.finish();
}

void readVoice(ScriptReader reader, VoiceScript& voice) {
  reader.choice("engine", voice.engine, {"flite", "espeak-ng"});
  if (voice.engine == "espeak-ng") voice.name = "en-us";
  reader.text("name", voice.name, kLongestField);
  reader.number("level", voice.level, -60.0, -6.0);
  reader.number("roomTone", voice.roomTone, -120.0, -20.0);
  reader.finish();
}

void readTime(ScriptReader reader, TimeScript& time) {
  reader.number("front", time.frontAt, 0.0, kLongestSession);
  reader.number("flip", time.flipAt, 0.0, kLongestSession);
  reader.number("flipSeconds", time.flipSeconds, 0.2, 20.0);
  reader.number("leave", time.leaveAt, 0.0, kLongestSession);
  reader.number("handOver", time.handOverAt, 0.0, kLongestSession);
  time.speechAt = time.handOverAt + 3.0;
  reader.number("speech", time.speechAt, 0.0, kLongestSession);
  reader.number("countdownSeconds", time.countdownSeconds, 0.0, kLongestSession);
  reader.number("length", time.length, 0.0, kLongestSession);
  reader.finish();
}

void readOtherCard(ScriptReader& faults, const char* key, const path& folder, const CardData& card,
                   std::optional<CardData>& other) {
  if (!faults.has(key)) return;
  other = card;
  readCard(faults.object(key), folder, *other);
}

void readFaults(ScriptReader reader, const path& folder, const CardData& card,
                FaultScript& faults) {
  reader.file("wrongPerson", faults.wrongPerson, folder);
  readOtherCard(reader, "wrongCard", folder, card, faults.wrongCard);
  readOtherCard(reader, "wrongBack", folder, card, faults.wrongBack);
  ScriptReader leaves = reader.object("faceLeaves");
  leaves.number("at", faults.faceLeavesAt, 0.0, kLongestSession);
  leaves.number("seconds", faults.faceLeavesSeconds, 0.5, kLongestSession);
  leaves.finish();
  reader.flag("silence", faults.silence);
  reader.flag("dubbed", faults.dubbed);
  reader.text("wrongWords", faults.wrongWords, kLongestText);
  ScriptReader change = reader.object("change");
  change.number("at", faults.changesAt, 0.0, kLongestSession);
  change.file("person", faults.changedPerson, folder);
  change.finish();
  reader.finish();
}

Script readScript(ScriptReader reader, const path& folder) {
  Script script;
  reader.seed("seed", script.seed);
  reader.flag("stills", script.stills);
  reader.text("text", script.text, kLongestText);
  readPerson(reader.object("person"), folder, script.person);
  readPresentation(reader.object("presentation"), script.presentation);
  readCard(reader.object("card"), folder, script.card);
  readPlace(reader.object("cardPlace"), script.cardPlace);
  readVoice(reader.object("voice"), script.voice);
  readTime(reader.object("time"), script.time);
  if (script.card.photo.empty()) script.card.photo = script.person.portrait;
  readFaults(reader.object("faults"), folder, script.card, script.faults);
  reader.finish();
  return script;
}

void refuseWhatIsMissing(const Script& script) {
  if (script.text.empty()) throw engine::JsonFault{"text: the text to be read aloud is missing"};
  if (script.person.portrait.empty())
    throw engine::JsonFault{"person.portrait: a picture of the person is missing"};
  const TimeScript& time = script.time;
  if (time.frontAt + 1.0 > time.flipAt || time.flipAt + time.flipSeconds + 1.0 > time.leaveAt)
    throw engine::JsonFault{
        "time: it must leave a second between front and flip, and between the flip's end and "
        "leave"};
}

}  // namespace

Result<Script> parseScript(const std::string& text, const path& folder) {
  const auto json = engine::parseJson(text, "script");
  if (!json) return fault(json.error().sentence);
  try {
    Script script = readScript(ScriptReader({*json, ""}), folder);
    refuseWhatIsMissing(script);
    return script;
  } catch (const engine::JsonFault& wrong) {
    return fault("In the script, " + wrong.sentence + "; samples/README.md lists all keys.");
  }
}

std::vector<path> referencedFiles(const Script& script) {
  std::vector<path> files = {script.person.portrait, script.card.photo};
  if (!script.faults.wrongPerson.empty()) files.push_back(script.faults.wrongPerson);
  if (!script.faults.changedPerson.empty()) files.push_back(script.faults.changedPerson);
  if (script.faults.wrongCard) files.push_back(script.faults.wrongCard->photo);
  if (script.faults.wrongBack) files.push_back(script.faults.wrongBack->photo);
  return files;
}

}  // namespace corvana::session
