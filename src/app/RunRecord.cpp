#include "app/RunRecord.h"

#include <vector>

#include "app/EventLog.h"
#include "app/OptionTable.h"
#include "devices/gstreamer/ImageFile.h"
#include "engine/recorder/Film.h"

namespace app {
namespace {

namespace fs = std::filesystem;
using nlohmann::ordered_json;

constexpr int kFormatVersion = 1;
constexpr std::uint64_t kMaxResultBytes = 1 << 20;

ordered_json outcomeToJson(const Outcome& outcome) {
  if (!outcome) {
    const corvana::IDError& error = outcome.error();
    return {{"error",
             {{"message", error.localizedDescription()},
              {"cause", platform::nameOf(error.cause())},
              {"canTryAgain", platform::canTryAgain(error.cause())}}}};
  }
  return {{"result",
           {{"film", engine::Film::kFileName},
            {"selfie", kSelfieFileName},
            {"idToSelfieMatch", outcome->idToSelfieMatch},
            {"idToIdPhotoMatch", outcome->idToIdPhotoMatch},
            {"idFrontDataMatch", outcome->idFrontDataMatch},
            {"idBackDataMatch", outcome->idBackDataMatch}}}};
}

ordered_json recordingToJson(const RunRecord& record) {
  const platform::AssetWriterCounters& counters = record.recording;
  return {{"framesReceived", counters.videoFramesReceived},
          {"framesWritten", counters.videoFramesWritten},
          {"framesDropped", counters.videoFramesDropped},
          {"framesLate", counters.videoFramesLate},
          {"audioBuffersReceived", counters.audioBuffersReceived},
          {"seconds", counters.secondsWritten},
          {"secondsOfSilence", counters.secondsOfSilence},
          {"runs", record.runs}};
}

Expected<void> writeSelfie(const corvana::Selfie& selfie, const fs::path& folder) {
  if (!selfie.image || !selfie.image->pixels()) return {};
  return devices::writePng(folder / kSelfieFileName, *selfie.image->pixels());
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

}  // namespace

Expected<ordered_json> writeRunRecord(const RunRecord& record, const Resources& resources,
                                      const fs::path& folder) {
  if (record.outcome) {
    if (auto written = writeSelfie(record.outcome->selfie, folder); !written) {
      return tl::unexpected(written.error());
    }
  }
  ordered_json object = {{"formatVersion", kFormatVersion}};
  object.update(outcomeToJson(record.outcome));
  object["recording"] = recordingToJson(record);
  object["options"] = currentOptions();
  object["program"] = {{"name", "videoid"}, {"version", CORVANA_VERSION}};
  auto models = hashesOf(resources.models());
  if (!models) return tl::unexpected(models.error());
  object["models"] = std::move(*models);
  auto files = hashesOf({folder / engine::Film::kFileName, folder / engine::Film::kPartialFileName,
                         folder / kSelfieFileName, folder / EventLog::kFileName});
  if (!files) return tl::unexpected(files.error());
  object["sha256"] = std::move(*files);
  if (auto written = writeFile(folder / kResultFileName, object.dump(2) + "\n"); !written) {
    return tl::unexpected(written.error());
  }
  return object;
}

Expected<std::vector<std::string>> verifyRun(const fs::path& folder) {
  const fs::path path = folder / kResultFileName;
  const auto text = readFile(path, kMaxResultBytes);
  if (!text) return tl::unexpected(text.error() + " Name the folder of a run.");
  const auto object = parseJson(*text, path.string());
  if (!object) return tl::unexpected(object.error());
  const auto hashes = object->find("sha256");
  if (hashes == object->end() || !hashes->is_object() || hashes->empty()) {
    return tl::unexpected("\"" + path.string() + "\" names no hashes; it is not a run's result.");
  }
  std::vector<std::string> names;
  for (const auto& [name, expected] : hashes->items()) {
    if (fs::path(name).filename() != name) {
      return tl::unexpected("\"" + path.string() + "\" names a file outside its folder.");
    }
    const auto actual = sha256(folder / name);
    if (!actual) return tl::unexpected(actual.error());
    if (!expected.is_string() || expected.get<std::string>() != *actual) {
      return tl::unexpected("\"" + name + "\" is not the file that the run left: its SHA-256 is " +
                            *actual + ".");
    }
    names.push_back(name);
  }
  return names;
}

}  // namespace app
