#include "app/Doctor.h"

#include <algorithm>
#include <system_error>

#include "devices/gstreamer/MediaElements.h"
#include "engine/document/mrz/MrzGlyphClassifier.h"
#include "engine/speech/SpeechModelPaths.h"
#include "engine/vision/TfliteModel.h"

namespace app {
namespace {

namespace fs = std::filesystem;

Finding model(const fs::path& path) {
  const auto loaded = engine::TfliteModel::load(path);
  return {"model " + path.filename().string(), loaded.has_value(),
          loaded ? "" : loaded.error().localizedDescription()};
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
  return {"speech model", !fault, fault ? fault->localizedDescription() : ""};
}

Finding textModel() {
  return anyFile("text recognition data",
                 {fs::path(engine::kDebianTessdataFolder) / "eng.traineddata"},
                 "tesseract-ocr-eng");
}

Finding diskSpace(const fs::path& folder) {
  std::error_code error;
  fs::path existing = fs::absolute(folder, error);
  while (!fs::exists(existing, error) && existing.has_relative_path()) {
    existing = existing.parent_path();
  }
  const fs::space_info space = fs::space(existing, error);
  const bool enough = !error && space.available >= kLeastFreeBytes;
  return {"disk space", enough,
          enough ? ""
                 : "less than 512 MiB are free at \"" + existing.string() +
                       "\"; free some, or name another folder"};
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

std::vector<Finding> examine(const Resources& resources, const fs::path& folder) {
  std::vector<Finding> findings;
  for (const fs::path& path : resources.models())
    findings.push_back(model(path));
  findings.push_back(mediaPlugins());
  findings.push_back(textModel());
  findings.push_back(anyFile("font OCR-B", engine::defaultOcrBFonts(), "fonts-ocr-b"));
  findings.push_back(speechModel());
  findings.push_back(diskSpace(folder));
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

}  // namespace app
