#include "app/run/RunRecord.h"

#include "app/run/EventLog.h"
#include "app/settings/OptionTable.h"
#include "devices/pictures/ImageFile.h"

namespace corvana::app {
namespace {

namespace fs = std::filesystem;
using nlohmann::ordered_json;

constexpr int kFormatVersion = 1;
constexpr std::uint64_t kMostResultBytes = 1 << 20;

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
  return {{"name", device.name}, {"virtual", device.isVirtual}};
}

ordered_json recordingToJson(const RunRecord& record) {
  const platform::AssetWriterCounters& counters = record.recording;
  return {{"framesCaptured", record.framesCaptured},
          {"framesWritten", counters.videoFramesWritten},
          {"framesDropped", record.framesCaptured - counters.videoFramesWritten},
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

Expected<ordered_json> hashesOf(const std::vector<fs::path>& files) {
  ordered_json hashes = ordered_json::object();
  for (const fs::path& file : files) {
    if (!fs::exists(file)) continue;
    auto hash = sha256(file);
    if (!hash) return tl::unexpected(hash.error());
    hashes[file.filename().string()] = *hash;
  }
  return hashes;
}

ordered_json recordToJson(const RunRecord& record) {
  ordered_json object = {{"formatVersion", kFormatVersion}};
  object.update(outcomeToJson(record));
  object.update(devicesToJson(record.devices));
  object["recording"] = recordingToJson(record);
  object["date"] = record.date;
  object["hints"] = hintsToJson(record.hints);
  object["options"] = currentOptions();
  object["program"] = {{"name", "videoid"}, {"version", CORVANA_VERSION}};
  return object;
}

std::vector<fs::path> filesOf(const RunRecord& record, const fs::path& folder) {
  std::vector<fs::path> files;
  for (const std::string& film : record.films)
    files.push_back(folder / film);
  files.insert(files.end(), {folder / kSelfieFileName, folder / EventLog::kFileName});
  return files;
}

Expected<void> addHashes(const std::string& key, const std::vector<fs::path>& files,
                         ordered_json& object) {
  auto hashes = hashesOf(files);
  if (!hashes) return tl::unexpected(hashes.error());
  object[key] = std::move(*hashes);
  return {};
}

}  // namespace

UsedDevices UsedDevices::of(const devices::MediaSource& media) {
  UsedDevices used{{media.camera()->localizedName(), media.cameraIsVirtual()}, {}};
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

WrittenRecord writeRunRecord(const RunRecord& record, const Resources& resources,
                             const fs::path& folder) {
  WrittenRecord result{recordToJson(record), {}};
  const auto written =
      writeSelfie(record.outcome, folder)
          .and_then([&] { return addHashes("models", resources.models(), result.content); })
          .and_then([&] { return addHashes("sha256", filesOf(record, folder), result.content); })
          .and_then(
              [&] { return writeFile(folder / kResultFileName, result.content.dump(2) + "\n"); })
          .and_then([&] { return putOnDisk(folder); });
  if (!written) result.fault = written.error();
  return result;
}

Expected<std::vector<std::string>> verifyRun(const fs::path& folder) {
  const fs::path path = folder / kResultFileName;
  const auto text = readFile(path, kMostResultBytes);
  if (!text) return tl::unexpected(text.error());
  const auto object = parseJson(*text, path.string());
  if (!object) return tl::unexpected(object.error());
  const auto hashes = object->find("sha256");
  if (hashes == object->end() || !hashes->is_object() || hashes->empty()) {
    return platform::failure("\"" + path.string() +
                             "\" names no hashes; it is not a run's result.");
  }
  std::vector<std::string> names;
  for (const auto& [name, expected] : hashes->items()) {
    if (fs::path(name).filename() != name) {
      return platform::failure("\"" + path.string() + "\" names a file outside its folder.");
    }
    const auto actual = sha256(folder / name);
    if (!actual) return tl::unexpected(actual.error());
    if (!expected.is_string() || expected.get<std::string>() != *actual) {
      return platform::failure(
          "\"" + name + "\" is not the file that the run left: its SHA-256 is " + *actual + ".");
    }
    names.push_back(name);
  }
  return names;
}

}  // namespace corvana::app
