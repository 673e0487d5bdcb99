#include "app/redact/RedactedEvidence.h"

#include <nlohmann/json.hpp>

#include "app/record/Files.h"
#include "app/record/JsonMembers.h"
#include "app/redact/RedactedPicture.h"
#include "app/report/Evidence.h"
#include "devices/pictures/ImageFile.h"

namespace corvana::app {
namespace {

using nlohmann::json;
using nlohmann::ordered_json;

constexpr std::uint64_t kMostEvidenceBytes = 1 << 24;

void disclose(const json& side, const std::string& name, Disclosures& disclosures) {
  std::string zone;
  for (const std::string& line : textsIn(side, "zone"))
    zone += (zone.empty() ? "" : "\n") + line;
  if (!zone.empty()) disclosures.add(name + " zone", zone);
  for (const json& field : memberIn(side, "fields")) {
    const auto value = textIn(field, "value");
    if (!value) continue;
    disclosures.add(name + " " + textIn(field, "source").value_or("") + " " +
                        textIn(field, "name").value_or(""),
                    *value);
  }
}

/// The live face's picture in the evidence; null where there is none to be shown.
Expected<ordered_json> copyFace(const EvidenceRedaction& wishes, engine::HeadFinder& heads) {
  const auto source = wishes.from / kSelfieFaceFileName;
  std::error_code error;
  if (wishes.coversFace || !std::filesystem::exists(source, error)) return ordered_json();
  const auto picture = devices::readImage(source);
  if (!picture) return tl::unexpected(picture.error());
  const auto face = heads.faceIn(**picture);
  if (!face) return ordered_json();
  const auto covered = redactedPicture(**picture, face, heads, false);
  const auto written = devices::writeJpeg(wishes.to / kSelfieFaceFileName, *covered);
  if (!written) return tl::unexpected(written.error());
  return ordered_json(kSelfieFaceFileName);
}

}  // namespace

platform::Expected<void> redactEvidence(const EvidenceRedaction& wishes, engine::HeadFinder& heads,
                                        Disclosures& disclosures) {
  const auto bytes = readFile(wishes.from / kEvidenceFileName, kMostEvidenceBytes);
  if (!bytes) return tl::unexpected(bytes.error());
  const auto evidence = parseJson(*bytes, kEvidenceFileName);
  if (!evidence) return tl::unexpected(evidence.error());
  for (const char* side : {"front", "back"}) {
    for (const char* when : {"shown", "reference"})
      disclose(memberIn(memberIn(*evidence, side), when), std::string(side) + " " + when,
               disclosures);
  }
  const auto face = copyFace(wishes, heads);
  if (!face) return tl::unexpected(face.error());
  ordered_json copy{{"formatVersion", memberIn(*evidence, "formatVersion")},
                    {"text", ""},
                    {"heard", json::array()},
                    {"spoken", json::array()},
                    {"pictures", json::object()}};
  if (wishes.isSilent) {
    if (const auto text = textIn(*evidence, "text")) disclosures.add("text", *text);
  } else {
    for (const char* words : {"text", "heard", "spoken"})
      copy[words] = memberIn(*evidence, words);
  }
  // They name fields, and no value.
  if (evidence->contains("referenceHints"))
    copy["referenceHints"] = memberIn(*evidence, "referenceHints");
  if (face->is_string()) {
    copy["pictures"]["selfieFace"] = {{"shown", *face}, {"reference", nullptr}};
  }
  return writeFile(wishes.to / kEvidenceFileName, copy.dump(2) + "\n");
}

}  // namespace corvana::app
