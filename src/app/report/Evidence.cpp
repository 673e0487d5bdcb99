#include "app/report/Evidence.h"

#include <nlohmann/json.hpp>

#include "app/run/Files.h"
#include "devices/pictures/ImageFile.h"
#include "engine/document/fields/DocumentFields.h"

namespace corvana::app {
namespace {

namespace fs = std::filesystem;
using corvana::DetectedData;
using nlohmann::ordered_json;
using platform::UIImageRef;

constexpr int kFormatVersion = 1;
/// Small print stays legible, and the pictures of a run stay below a megabyte.
constexpr int kQuality = 80;

constexpr const char* kSelfieFace = "evidence-selfie-face.jpg";
constexpr const char* kFrontFace = "evidence-front-face.jpg";
constexpr const char* kFront = "evidence-front.jpg";
constexpr const char* kBack = "evidence-back.jpg";
constexpr const char* kReferenceFace = "evidence-reference-face.jpg";
constexpr const char* kReferenceFront = "evidence-reference-front.jpg";
constexpr const char* kReferenceBack = "evidence-reference-back.jpg";

ordered_json fieldsToJson(const std::vector<corvana::DocumentField>& fields) {
  auto list = ordered_json::array();
  for (const corvana::DocumentField& field : fields) {
    list.push_back({{"name", engine::nameOf(field.name)},
                    {"source", engine::nameOf(field.source)},
                    {"value", field.value}});
  }
  return list;
}

ordered_json sideToJson(const DetectedData& side) {
  ordered_json object{{"lines", side.ocrStrings.value_or(std::vector<std::string>())}};
  object["zone"] = side.mrz ? side.mrz->lines : std::vector<std::string>();
  object["fields"] = fieldsToJson(side.fields.value_or(std::vector<corvana::DocumentField>()));
  return object;
}

ordered_json sidesToJson(const DetectedData& reference, const std::optional<DetectedData>& shown) {
  ordered_json object{{"reference", sideToJson(reference)}};
  if (shown) object["shown"] = sideToJson(*shown);
  return object;
}

/// One picture after another; what follows a fault is left out.
class PictureFolder {
 public:
  explicit PictureFolder(const fs::path& folder) : folder_(folder) {}

  /// The file's name, or null where there is no picture.
  ordered_json save(const UIImageRef& image, const char* name) {
    if (fault_ || !image || !image->pixels()) return nullptr;
    const auto written = devices::writeJpeg(folder_ / name, *image->pixels(), kQuality);
    if (!written) fault_ = written.error();
    return name;
  }

  platform::Expected<void> end() const {
    if (fault_) return tl::unexpected(*fault_);
    return {};
  }

 private:
  const fs::path folder_;
  std::optional<platform::Fault> fault_;
};

void addPair(ordered_json& pictures, const char* decision, const ordered_json& shown,
             const ordered_json& reference) {
  if (shown.is_null() && reference.is_null()) return;
  pictures[decision] = {{"shown", shown}, {"reference", reference}};
}

ordered_json savePictures(const Evidence& evidence, PictureFolder& folder) {
  const Reference& reference = evidence.reference;
  const auto faceOf = [](const auto& data) { return data ? data->faceImage : nullptr; };
  const auto cardOf = [](const auto& data) { return data ? data->image : nullptr; };
  auto pictures = ordered_json::object();
  const auto face = folder.save(reference.front.faceImage, kReferenceFace);
  addPair(pictures, "selfieFace", folder.save(faceOf(evidence.selfie), kSelfieFace), face);
  addPair(pictures, "frontFace", folder.save(faceOf(evidence.front), kFrontFace), face);
  addPair(pictures, "frontText", folder.save(cardOf(evidence.front), kFront),
          folder.save(reference.front.image, kReferenceFront));
  const char* backDecision = reference.back && reference.back->mrz ? "backMrz" : "backText";
  addPair(pictures, backDecision, folder.save(cardOf(evidence.back), kBack),
          folder.save(cardOf(reference.back), kReferenceBack));
  return pictures;
}

ordered_json spokenToJson(const std::vector<capture::MatchRange>& ranges) {
  auto list = ordered_json::array();
  for (const capture::MatchRange& range : ranges)
    list.push_back({range.location, range.length});
  return list;
}

}  // namespace

std::vector<std::string> evidenceFileNames() {
  return {kEvidenceFileName, kSelfieFace,     kFrontFace,    kFront, kBack,
          kReferenceFace,    kReferenceFront, kReferenceBack};
}

platform::Expected<void> writeEvidence(const Evidence& evidence, const fs::path& folder) {
  ordered_json object{{"formatVersion", kFormatVersion},
                      {"text", evidence.text},
                      {"heard", evidence.heard},
                      {"spoken", spokenToJson(evidence.spoken)}};
  object["front"] = sidesToJson(evidence.reference.front, evidence.front);
  if (evidence.reference.back) {
    object["back"] = sidesToJson(*evidence.reference.back, evidence.back);
  }
  PictureFolder pictures(folder);
  object["pictures"] = savePictures(evidence, pictures);
  return pictures.end().and_then([&] {
    return writeFile(folder / kEvidenceFileName,
                     object.dump(2, ' ', false, ordered_json::error_handler_t::replace) + "\n");
  });
}

}  // namespace corvana::app
