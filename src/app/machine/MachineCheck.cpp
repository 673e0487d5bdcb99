#include "app/machine/MachineCheck.h"

#include <algorithm>
#include <iterator>
#include <system_error>

#include "app/record/Files.h"
#include "devices/film/FilmSettings.h"
#include "devices/gstreamer/MediaElements.h"
#include "engine/document/kinds/DocumentTables.h"
#include "engine/document/mrz/MrzGlyphClassifier.h"
#include "engine/document/text/NetworkTextReader.h"
#include "engine/speech/SpeechModelPaths.h"
#include "engine/vision/FaceDetector.h"
#include "engine/vision/FaceLandmarks.h"
#include "engine/vision/TfliteModel.h"

namespace corvana::app {
namespace {

namespace fs = std::filesystem;

constexpr std::uintmax_t kMebibyte = std::uintmax_t{1} << 20;
constexpr std::uintmax_t kLeastFreeBytes = 256 * kMebibyte;

std::string inMebibytes(std::uintmax_t bytes) {
  return std::to_string(bytes / kMebibyte) + " MiB";
}

template <class Model>
Finding model(const fs::path& path, const platform::Expected<Model>& loaded) {
  return {"model " + path.filename().string(), loaded.has_value(),
          loaded ? "" : loaded.error().sentence};
}

Finding anyFile(const std::string& what, const std::vector<fs::path>& candidates,
                const std::string& package) {
  const bool there = std::ranges::any_of(candidates, [](const fs::path& path) {
    std::error_code error;
    return fs::is_regular_file(path, error);
  });
  return {what, there, there ? "" : "it is missing; install the package " + package};
}

Finding speechModel() {
  const auto fault =
      engine::SpeechModelPaths::inFolder(engine::kDebianSpeechModelFolder).findFault();
  return {"speech model", !fault, fault ? fault->sentence : ""};
}

Finding textModels(const Resources& resources) {
  const auto loaded = engine::NetworkTextReader::load(resources.textReader());
  return {"text recognition models", loaded.has_value(), loaded ? "" : loaded.error().sentence};
}

Finding documents(const Resources& resources) {
  const auto loaded = engine::loadDocumentTables({resources.documents()});
  return {"kinds of documents", loaded.has_value(), loaded ? "" : loaded.error().sentence};
}

Finding mediaPlugins() {
  std::string cure;
  for (const auto& missing : devices::missingElements()) {
    if (!cure.empty()) cure += "; ";
    cure += missing.element + " is missing, without which there is no " + missing.purpose +
            ": install the package " + missing.package;
  }
  return {"media plugins and encoders", cure.empty(), cure};
}

}  // namespace

Finding diskSpace(const fs::path& folder, std::uintmax_t bytesNeeded) {
  std::error_code error;
  fs::path existing = fs::absolute(folder, error);
  while (!fs::exists(existing, error) && existing.has_relative_path()) {
    existing = existing.parent_path();
  }
  const fs::space_info space = fs::space(existing, error);
  const std::string place = inQuotes(existing);
  if (error) return {"disk space", false, place + " can't be looked at: " + error.message()};
  const bool enough = space.available >= bytesNeeded;
  return {"disk space", enough,
          enough ? ""
                 : inMebibytes(space.available) + " are free at " + place + ", " +
                       inMebibytes(bytesNeeded) +
                       " are needed; free some, name another folder with --output, or allow less "
                       "time with --max-duration"};
}

std::uintmax_t bytesNeeded(const platform::AVCaptureDevice* camera, double seconds) {
  platform::WriterSettings settings;
  const auto codecs = camera ? camera->availableVideoCodecTypes(platform::kAVFileTypeMP4)
                             : std::vector<platform::AVVideoCodecType>{};
  if (!codecs.empty()) {
    camera->recommendedVideoSettings(codecs.front(), platform::kAVFileTypeMP4, settings);
  }
  const auto film = devices::filmFormat(settings, devices::audioSettings());
  if (!film) return kLeastFreeBytes;  // Missing encoders are another finding.
  const double bytes = seconds * (film->videoBitRate + film->audioBitRate) / 8;
  // The film itself, and two more of its size while it is completed.
  return std::max(kLeastFreeBytes, static_cast<std::uintmax_t>(3 * bytes));
}

Finding examineFaceModel(const Resources& resources) {
  const fs::path path = resources.faceModel();
  return model(path, engine::TfliteModel::load(path, {{1, 160, 160, 3}, {std::nullopt}},
                                               inference::Runtime::plain));
}

std::vector<Finding> examineMachine() {
  return {mediaPlugins(), anyFile("font OCR-B", engine::defaultOcrBFonts(), "fonts-ocr-b"),
          speechModel()};
}

std::vector<Finding> examine(const Resources& resources) {
  const fs::path detector = resources.faceDetector();
  const fs::path landmarks = resources.faceLandmarks();
  std::vector<Finding> findings{examineFaceModel(resources),
                                model(detector, engine::FaceDetector::load(detector)),
                                model(landmarks, engine::FaceLandmarks::load(landmarks)),
                                textModels(resources), documents(resources)};
  std::ranges::move(examineMachine(), std::back_inserter(findings));
  return findings;
}

std::string lacks(const std::vector<Finding>& findings) {
  std::string sentence;
  for (const Finding& finding : findings) {
    if (finding.fine) continue;
    sentence += (sentence.empty() ? "" : " ") + ("The machine lacks something: " + finding.what) +
                ": " + finding.cure + (finding.cure.ends_with('.') ? "" : ".");
  }
  return sentence;
}

}  // namespace corvana::app
