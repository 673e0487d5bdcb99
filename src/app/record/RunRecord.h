#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>
#include <tl/expected.hpp>

#include "app/card/DocumentHints.h"
#include "app/keys/SigningKey.h"
#include "app/record/Files.h"
#include "app/record/RecordFiles.h"
#include "app/record/RunIdentity.h"
#include "app/report/Evidence.h"
#include "app/run/Resources.h"
#include "capture/Corvana+VideoCapture.h"
#include "corvana/IDError.h"
#include "devices/film/MediaSource.h"
#include "engine/recorder/ScreenPlaces.h"
#include "platform/media/AssetWriter.h"

namespace corvana::app {

using Outcome = tl::expected<capture::VideoIdResult, corvana::IDError>;

/// What a run was recorded with. A film from a virtual camera proves nothing.
struct UsedDevices {
  struct Device {
    std::string name;
    bool isVirtual = false;
    std::vector<devices::CameraSign> signs = {};  ///< against a camera
  };
  Device camera;
  std::optional<Device> microphone;

  static UsedDevices of(const devices::MediaSource& media);
};

/// A sign against the camera with its figure and limit.
nlohmann::ordered_json cameraSignToJson(const devices::CameraSign& sign);
/// The fields `camera` and `microphone` (null when there is none).
nlohmann::ordered_json devicesToJson(const UsedDevices& devices);

/// What a run leaves in its folder beside the film: the selfie, the evidence and result.json, whose
/// hashes bind the files together. docs/result.schema.json gives its shape.
struct RunRecord {
  Outcome outcome;
  UsedDevices devices;
  platform::AssetWriterCounters recording = {};  ///< as `engine::Film` counts
  /// What the camera took while a film was open, in the films or not.
  std::uint64_t framesCaptured = 0;
  std::uint64_t framesLeftOut = 0;      ///< of them: since the encoder did not keep up
  std::vector<std::string> films = {};  ///< names of files that may be there
  int runs = 1;                         ///< how often the flow began: once more than it was retried
  std::string date = {};                ///< the day by which documents were judged, YYYY-MM-DD
  std::vector<DocumentHint> hints = {};
  std::vector<std::uint32_t> drawn = {};  ///< from which the tasks of all runs came, in their order
  nlohmann::ordered_json attempts = nlohmann::ordered_json::array();  ///< as `AttemptLog` has them
  RunIdentity identity = {};
  std::optional<ClockReading> started = {};
  std::optional<ClockReading> ended = {};
  nlohmann::ordered_json reference = {};  ///< SHA-256 of its files
  std::string documents = {};             ///< SHA-256 over the files of the kinds of documents
  nlohmann::ordered_json terms = nlohmann::ordered_json::object();  ///< as `termsToJson` has them
  bool leavesHashesOnly = false;  ///< the files that result.json names are removed afterwards
  std::string text = {};          ///< SHA-256 of the text that was to be read
  std::optional<Evidence> evidence = {};  ///< absent: none is kept
  std::optional<SigningKey> key = {};     ///< seals the result; absent: nobody vouches for it
  std::optional<engine::ScreenPlaces> places = {};  ///< absent when the flow did not come so far
};

/// What is known of a run at its start, in the fields of result.json that will say it again; both
/// ends of the clock are its start.
nlohmann::ordered_json sessionToJson(const RunIdentity& identity,
                                     const std::optional<ClockReading>& start,
                                     const nlohmann::ordered_json& reference,
                                     const std::string& documents, const std::string& text,
                                     const nlohmann::ordered_json& terms);

/// What is in result.json, or would be.
struct WrittenRecord {
  nlohmann::ordered_json content;
  std::optional<platform::Fault> fault;  ///< why a file could not be written
};

/// The name, version and build of this program, as records have them.
nlohmann::ordered_json programToJson();

/// Writes these bytes as result.json and, where there is a key, their seal.
Expected<void> writeSealedResult(const std::string& content, const std::optional<SigningKey>& key,
                                 const std::filesystem::path& folder);

/// Writes the selfie, the evidence, result.json and its seal, and blocks until the whole folder is
/// on the disk. The film and the events must be closed.
WrittenRecord writeRunRecord(const RunRecord& record, const Resources& resources,
                             const std::filesystem::path& folder);

}  // namespace corvana::app
