#include "app/record/RunRecord.h"

#include "app/keys/Jws.h"
#include "app/privacy/Consent.h"
#include "app/privacy/RunTerms.h"
#include "app/record/BuildId.h"
#include "app/record/EventLog.h"
#include "app/seal/SealLog.h"
#include "app/settings/OptionTable.h"
#include "devices/pictures/ImageFile.h"
#include "engine/json/JsonText.h"

namespace corvana::app {
namespace {

namespace fs = std::filesystem;
using nlohmann::ordered_json;

constexpr int kFormatVersion = 1;

ordered_json outcomeToJson(const RunRecord& record) {
  const Outcome& outcome = record.outcome;
  if (!outcome) {
    const corvana::IDError& error = outcome.error();
    return {{"error",
             {{"message", error.localizedDescription()},
              {"cause", platform::nameOf(error.cause())},
              {"canTryAgain", platform::canTryAgain(error.cause())}}}};
  }
  return {{"result",
           {{"film", outcome->videoURL.filename().string()},
            {"selfie", kSelfieFileName},
            {"idToSelfieMatch", outcome->idToSelfieMatch},
            {"idToIdPhotoMatch", outcome->idToIdPhotoMatch},
            {"idFrontDataMatch", outcome->idFrontDataMatch},
            {"idBackDataMatch", outcome->idBackDataMatch}}}};
}

ordered_json deviceToJson(const UsedDevices::Device& device) {
  ordered_json object{{"name", device.name}, {"virtual", device.isVirtual}};
  for (const devices::CameraSign& sign : device.signs)
    object["signs"].push_back(cameraSignToJson(sign));
  return object;
}

ordered_json recordingToJson(const RunRecord& record) {
  const platform::AssetWriterCounters& counters = record.recording;
  return {{"framesCaptured", record.framesCaptured},
          {"framesWritten", counters.videoFramesWritten},
          {"framesDropped", record.framesCaptured - counters.videoFramesWritten},
          {"framesLeftOut", record.framesLeftOut},
          {"framesLate", counters.videoFramesLate},
          {"audioBuffersReceived", counters.audioBuffersReceived},
          {"audioBuffersDropped", counters.audioBuffersDropped},
          {"seconds", counters.secondsWritten},
          {"secondsOfSilence", counters.secondsOfSilence},
          {"runs", record.runs}};
}

Expected<void> writeSelfie(const Outcome& outcome, const fs::path& folder) {
  if (!outcome) return {};
  const auto& image = outcome->selfie.image;
  if (!image || !image->pixels()) return {};
  return devices::writePng(folder / kSelfieFileName, *image->pixels());
}

ordered_json rectToJson(const platform::CGRect& rect) {
  return {rect.x, rect.y, rect.width, rect.height};
}

ordered_json placesToJson(const engine::ScreenPlaces& places) {
  return {{"size", {places.screen.width, places.screen.height}},
          {"face", rectToJson(places.face)},
          {"card", rectToJson(places.card)}};
}

ordered_json recordToJson(const RunRecord& record) {
  ordered_json object = {{"formatVersion", kFormatVersion}};
  object.update(outcomeToJson(record));
  object.update(devicesToJson(record.devices));
  object["recording"] = recordingToJson(record);
  object["attempts"] = record.attempts;
  object["date"] = record.date;
  object["hints"] = hintsToJson(record.hints);
  if (record.places) object["screen"] = placesToJson(*record.places);
  if (!record.drawn.empty()) object["drawn"] = record.drawn;
  object["options"] = currentOptions();
  object["program"] = programToJson();
  object.update(identityToJson(record.identity, record.started, record.ended));
  object["reference"] = record.reference;
  object["documents"] = record.documents;
  object["text"] = record.text;
  object.update(record.terms);
  if (record.leavesHashesOnly) object["kept"] = kKeptHashes;
  return object;
}

Expected<void> writeEvidenceOf(const RunRecord& record, const fs::path& folder) {
  if (!record.evidence) return {};
  return writeEvidence(*record.evidence, folder);
}

std::vector<fs::path> filesOf(const RunRecord& record, const fs::path& folder) {
  std::vector<fs::path> files;
  for (const std::string& film : record.films)
    files.push_back(folder / film);
  files.insert(files.end(), {folder / kSelfieFileName, folder / EventLog::kFileName,
                             folder / SealLog::kFileName, folder / kConsentFileName});
  for (const std::string& name : evidenceFileNames())
    files.push_back(folder / name);
  return files;
}

Expected<void> addHashes(const std::string& key, const std::vector<fs::path>& files,
                         ordered_json& object) {
  auto hashes = sumsOf(files);
  if (!hashes) return tl::unexpected(hashes.error());
  object[key] = std::move(*hashes);
  return {};
}

}  // namespace

ordered_json programToJson() {
  return {{"name", "videoid"}, {"version", CORVANA_VERSION}, {"build", buildId()}};
}

Expected<void> writeSealedResult(const std::string& content, const std::optional<SigningKey>& key,
                                 const fs::path& folder) {
  auto written = writeFile(folder / kResultFileName, content);
  if (!written || !key) return written;
  return sealDetached(*key, content).and_then([&](const std::string& seal) {
    return writeFile(folder / kResultSealName, seal);
  });
}

ordered_json cameraSignToJson(const devices::CameraSign& sign) {
  return {{"name", sign.name},
          {"value", eventNumber(sign.value)},
          {"threshold", eventNumber(sign.limit)}};
}

UsedDevices UsedDevices::of(const devices::MediaSource& media) {
  UsedDevices used{{media.camera()->localizedName(), media.cameraIsVirtual(), media.cameraSigns()},
                   {}};
  if (const auto microphone = media.microphone()) {
    used.microphone = Device{microphone->localizedName(), media.microphoneIsVirtual()};
  }
  return used;
}

ordered_json devicesToJson(const UsedDevices& devices) {
  ordered_json object{{"camera", deviceToJson(devices.camera)}, {"microphone", nullptr}};
  if (devices.microphone) object["microphone"] = deviceToJson(*devices.microphone);
  return object;
}

ordered_json sessionToJson(const RunIdentity& identity, const std::optional<ClockReading>& start,
                           const ordered_json& reference, const std::string& documents,
                           const std::string& text, const ordered_json& terms) {
  ordered_json object = identityToJson(identity, start, start);
  object["options"] = currentOptions();
  object["program"] = programToJson();
  object["reference"] = reference;
  object["documents"] = documents;
  object["text"] = text;
  object.update(terms);
  return object;
}

WrittenRecord writeRunRecord(const RunRecord& record, const Resources& resources,
                             const fs::path& folder) {
  WrittenRecord result{recordToJson(record), {}};
  const auto written =
      writeSelfie(record.outcome, folder)
          .and_then([&] { return writeEvidenceOf(record, folder); })
          .and_then([&] { return addHashes("models", resources.models(), result.content); })
          .and_then([&] { return addHashes("sha256", filesOf(record, folder), result.content); })
          .and_then([&] {
            const std::string content = engine::indentedJson(result.content);
            return writeSealedResult(content + "\n", record.key, folder);
          })
          .and_then([&] { return putOnDisk(folder); });
  if (!written) result.fault = written.error();
  return result;
}

}  // namespace corvana::app
