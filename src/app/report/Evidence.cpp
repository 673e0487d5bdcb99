#include "app/report/Evidence.h"

#include <cstddef>
#include <cstdint>
#include <utility>

#include <nlohmann/json.hpp>

#include "app/record/Files.h"
#include "devices/pictures/ImageFile.h"
#include "engine/document/fields/DocumentFields.h"
#include "engine/json/JsonText.h"

namespace corvana::app {
namespace {

namespace fs = std::filesystem;
using corvana::DetectedData;
using nlohmann::ordered_json;
using platform::UIImageRef;

constexpr int kFormatVersion = 1;
/// Small print stays legible, and the pictures of a run stay below a megabyte.
constexpr int kQuality = 80;

constexpr const char* kFrontFace = "evidence-front-face.jpg";
constexpr const char* kFront = "evidence-front.jpg";
constexpr const char* kBack = "evidence-back.jpg";
constexpr const char* kReferenceFace = "evidence-reference-face.jpg";
constexpr const char* kReferenceFront = "evidence-reference-front.jpg";
constexpr const char* kReferenceBack = "evidence-reference-back.jpg";

ordered_json fieldsToJson(const std::vector<corvana::DocumentField>& fields) {
  auto list = ordered_json::array();
  for (const corvana::DocumentField& field : fields) {
    ordered_json object{{"name", engine::nameOf(field.name)},
                        {"source", engine::nameOf(field.source)},
                        {"value", field.value}};
    if (field.source == corvana::FieldSource::print) object["knownBy"] = nullptr;
    if (field.knownBy) object["knownBy"] = engine::nameOf(*field.knownBy);
    list.push_back(std::move(object));
  }
  return list;
}

ordered_json sideToJson(const DetectedData& side) {
  ordered_json object{{"lines", side.ocrStrings.value_or(std::vector<std::string>())}};
  object["zone"] = side.mrz ? side.mrz->lines : std::vector<std::string>();
  object["fields"] = fieldsToJson(side.fields.value_or(std::vector<corvana::DocumentField>()));
  return object;
}

ordered_json sidesToJson(const DetectedData& shown, const DetectedData& reference) {
  return {{"shown", sideToJson(shown)}, {"reference", sideToJson(reference)}};
}

/// Without the columns that don't fill a block of eight, as the encoder would fill it with whatever
/// lies in memory: the same run gives the same bytes.
platform::PixelBuffer inWholeBlocks(const platform::PixelBuffer& image) {
  constexpr int kBlock = 8;
  constexpr int kBytes = 3;
  const int width = image.width() / kBlock * kBlock;
  if (width == 0 || image.format() != platform::PixelFormat::rgb24) return image;
  std::vector<std::uint8_t> bytes;
  for (int row = 0; row < image.height(); ++row) {
    const auto* begin = image.plane(0) + static_cast<std::ptrdiff_t>(row) * image.stride(0);
    bytes.insert(bytes.end(), begin, begin + static_cast<std::ptrdiff_t>(width) * kBytes);
  }
  return {width, image.height(), image.format(), std::move(bytes)};
}

/// One picture after another; what follows a fault is left out.
class PictureFolder {
 public:
  explicit PictureFolder(const fs::path& folder) : folder_(folder) {}

  /// The file's name, or null where there is no picture.
  ordered_json save(const UIImageRef& image, const char* name) {
    if (fault_ || !image || !image->pixels()) return nullptr;
    const auto written =
        devices::writeJpeg(folder_ / name, inWholeBlocks(*image->pixels()), kQuality);
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

/// Of the card captured earlier only what was set against something is kept.
ordered_json savePictures(const Evidence& evidence, PictureFolder& folder) {
  const Reference& reference = evidence.reference;
  auto pictures = ordered_json::object();
  const auto add = [&](const char* decision, const ordered_json& shown,
                       const ordered_json& earlier) {
    pictures[decision] = {{"shown", shown}, {"reference", earlier}};
  };
  if (evidence.selfie) {
    add("selfieFace", folder.save(evidence.selfie->faceImage, kSelfieFaceFileName),
        folder.save(reference.front.faceImage, kReferenceFace));
  }
  if (evidence.front) {
    add("frontFace", folder.save(evidence.front->faceImage, kFrontFace),
        folder.save(reference.front.faceImage, kReferenceFace));
    add("frontText", folder.save(evidence.front->image, kFront),
        folder.save(reference.front.image, kReferenceFront));
  }
  if (evidence.back && reference.back) {
    add(reference.back->mrz ? "backMrz" : "backText", folder.save(evidence.back->image, kBack),
        folder.save(reference.back->image, kReferenceBack));
  }
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
  return {kEvidenceFileName, kSelfieFaceFileName, kFrontFace,    kFront, kBack,
          kReferenceFace,    kReferenceFront,     kReferenceBack};
}

platform::Expected<void> writeEvidence(const Evidence& evidence, const fs::path& folder) {
  ordered_json object{{"formatVersion", kFormatVersion},
                      {"text", evidence.text},
                      {"heard", evidence.heard},
                      {"spoken", spokenToJson(evidence.spoken)}};
  const Reference& reference = evidence.reference;
  if (evidence.front) object["front"] = sidesToJson(*evidence.front, reference.front);
  if (evidence.back && reference.back) {
    object["back"] = sidesToJson(*evidence.back, *reference.back);
  }
  if (!reference.hints.is_null()) object["referenceHints"] = reference.hints;
  PictureFolder pictures(folder);
  object["pictures"] = savePictures(evidence, pictures);
  return pictures.end().and_then(
      [&] { return writeFile(folder / kEvidenceFileName, engine::indentedJson(object) + "\n"); });
}

}  // namespace corvana::app
