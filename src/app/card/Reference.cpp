#include "app/card/Reference.h"

#include <array>
#include <future>

#include "devices/pictures/ImageFile.h"
#include "engine/document/fields/DocumentFields.h"
#include "engine/document/text/NetworkTextReader.h"
#include "engine/json/JsonText.h"

namespace corvana::app {
namespace {

namespace fs = std::filesystem;
using corvana::DetectedData;
using corvana::DocumentSide;
using corvana::MRZResult;
using nlohmann::json;

constexpr int kFormatVersion = 1;
constexpr const char* kReader = engine::NetworkTextReader::kName;
constexpr std::uint64_t kMostReferenceBytes = 1 << 20;

/// A field of the file has another shape than ours; caught where the file is read.
struct WrongShape {
  std::string key;
};

struct MrzField {
  const char* key;
  std::string MRZResult::*field;
};

constexpr MrzField kMrzFields[] = {
    {"documentCode", &MRZResult::documentCode},
    {"issuingState", &MRZResult::issuingState},
    {"documentNumber", &MRZResult::documentNumber},
    {"birthDate", &MRZResult::birthDate},
    {"sex", &MRZResult::sex},
    {"expiryDate", &MRZResult::expiryDate},
    {"nationality", &MRZResult::nationality},
    {"surname", &MRZResult::surname},
    {"givenNames", &MRZResult::givenNames},
};

struct FlagField {
  const char* key;
  bool DetectedData::*field;
};

constexpr FlagField kFlagFields[] = {
    {"isPhotoPresent", &DetectedData::isPhotoPresent},
    {"shouldHavePhoto", &DetectedData::shouldHavePhoto},
    {"shouldHaveMrz", &DetectedData::shouldHaveMrz},
    {"shouldHaveBarcode", &DetectedData::shouldHaveBarcode},
};

constexpr std::pair<const char*, float corvana::RealnessScores::*> kScores[] = {
    {"photocopyScore", &corvana::RealnessScores::photocopyScore},
    {"realScore", &corvana::RealnessScores::realScore},
    {"screenScore", &corvana::RealnessScores::screenScore},
};

json fieldToJson(const corvana::DocumentField& field) {
  json object = {{"name", engine::nameOf(field.name)},
                 {"value", field.value},
                 {"source", engine::nameOf(field.source)},
                 {"confidence", field.confidence}};
  if (field.isTruncated) object["truncated"] = true;
  if (field.knownBy) object["knownBy"] = engine::nameOf(*field.knownBy);
  if (field.place) {
    const platform::CGRect& box = *field.place;
    object["place"] = {box.x, box.y, box.width, box.height};
  }
  return object;
}

json fieldsToJson(const std::vector<corvana::DocumentField>& fields) {
  json list = json::array();
  for (const auto& field : fields)
    list.push_back(fieldToJson(field));
  return list;
}

json realnessToJson(const corvana::RealnessScores& scores) {
  json object = json::object();
  for (const auto& [key, score] : kScores)
    object[key] = scores.*score;
  return object;
}

json mrzToJson(const MRZResult& mrz) {
  json object = {{"lines", mrz.lines}};
  for (const MrzField& field : kMrzFields)
    object[field.key] = mrz.*field.field;
  return object;
}

Expected<json> sideToJson(const DetectedData& data, const std::string& name,
                          const fs::path& folder) {
  json object = json::object();
  if (data.type) object["type"] = *data.type;
  if (data.side) object["side"] = *data.side == DocumentSide::front ? "front" : "back";
  if (data.ocrStrings) object["ocrStrings"] = *data.ocrStrings;
  if (data.mrz) object["mrz"] = mrzToJson(*data.mrz);
  if (data.barcode) object["barcode"] = *data.barcode;
  if (data.fields) object["fields"] = fieldsToJson(*data.fields);
  if (data.isReal) object["isReal"] = *data.isReal;
  if (data.realness) object["realness"] = realnessToJson(*data.realness);
  for (const FlagField& field : kFlagFields)
    object[field.key] = data.*field.field;
  const std::pair<const char*, platform::UIImageRef> images[] = {{"faceImage", data.faceImage},
                                                                 {"image", data.image}};
  for (const auto& [key, image] : images) {
    if (!image || !image->pixels()) continue;
    const std::string file = name + "-" + key + ".png";
    if (auto written = devices::writePng(folder / file, *image->pixels()); !written) {
      return tl::unexpected(written.error());
    }
    object[key] = file;
  }
  return object;
}

template <class Value>
Value get(const json& object, const char* key) {
  const auto entry = object.find(key);
  if (entry == object.end()) throw WrongShape{key};
  try {
    return entry->get<Value>();
  } catch (const json::exception&) {
    throw WrongShape{key};
  }
}

template <class Value>
std::optional<Value> getOptional(const json& object, const char* key) {
  if (!object.contains(key)) return {};
  return get<Value>(object, key);
}

MRZResult mrzFromJson(const json& object) {
  MRZResult mrz;
  mrz.lines = get<std::vector<std::string>>(object, "lines");
  for (const MrzField& field : kMrzFields)
    mrz.*field.field = get<std::string>(object, field.key);
  return mrz;
}

corvana::DocumentField fieldFromJson(const json& object) {
  const auto name = engine::fieldNamed(get<std::string>(object, "name"));
  const auto source = engine::fieldSourceNamed(get<std::string>(object, "source"));
  if (!name) throw WrongShape{"name"};
  if (!source) throw WrongShape{"source"};
  corvana::DocumentField field{*name,
                               get<std::string>(object, "value"),
                               *source,
                               get<float>(object, "confidence"),
                               getOptional<bool>(object, "truncated").value_or(false),
                               std::nullopt};
  if (const auto box = getOptional<std::array<double, 4>>(object, "place")) {
    field.place = platform::CGRect{(*box)[0], (*box)[1], (*box)[2], (*box)[3]};
  }
  if (const auto record = getOptional<std::string>(object, "knownBy")) {
    field.knownBy = engine::fieldSourceNamed(*record);
    if (!field.knownBy || *field.knownBy == corvana::FieldSource::print)
      throw WrongShape{"knownBy"};
  }
  return field;
}

std::optional<std::vector<corvana::DocumentField>> fieldsFromJson(const json& side) {
  if (!side.contains("fields")) return std::nullopt;
  std::vector<corvana::DocumentField> fields;
  for (const json& field : get<std::vector<json>>(side, "fields"))
    fields.push_back(fieldFromJson(field));
  return fields;
}

std::optional<corvana::RealnessScores> realnessFromJson(const json& side) {
  if (!side.contains("realness")) return std::nullopt;
  corvana::RealnessScores scores;
  for (const auto& [key, score] : kScores)
    scores.*score = get<float>(side["realness"], key);
  return scores;
}

Expected<platform::UIImageRef> imageFromJson(const json& object, const char* key,
                                             const fs::path& folder) {
  const auto name = getOptional<std::string>(object, key);
  if (!name) return nullptr;
  if (fs::path(*name).filename() != *name || name->empty() || *name == "..") throw WrongShape{key};
  auto pixels = devices::readImage(folder / *name);
  if (!pixels) {
    return platform::failure("The reference lacks a picture: " + pixels.error().sentence +
                             " Enroll the card again.");
  }
  return std::make_shared<platform::UIImage>(*pixels);
}

Expected<DetectedData> sideFromJson(const json& object, const fs::path& folder) {
  DetectedData data;
  data.type = getOptional<std::string>(object, "type");
  if (const auto side = getOptional<std::string>(object, "side")) {
    if (*side != "front" && *side != "back") throw WrongShape{"side"};
    data.side = *side == "front" ? DocumentSide::front : DocumentSide::back;
  }
  data.ocrStrings = getOptional<std::vector<std::string>>(object, "ocrStrings");
  if (object.contains("mrz")) data.mrz = mrzFromJson(object["mrz"]);
  data.barcode = getOptional<std::map<std::string, std::string>>(object, "barcode");
  data.fields = fieldsFromJson(object);
  data.isReal = getOptional<bool>(object, "isReal");
  data.realness = realnessFromJson(object);
  for (const FlagField& field : kFlagFields)
    data.*field.field = get<bool>(object, field.key);
  const std::pair<const char*, platform::UIImageRef DetectedData::*> images[] = {
      {"faceImage", &DetectedData::faceImage}, {"image", &DetectedData::image}};
  for (const auto& [key, field] : images) {
    auto image = imageFromJson(object, key, folder);
    if (!image) return tl::unexpected(image.error());
    data.*field = *image;
  }
  return data;
}

/// Names of hints, fields and sources, of this program or a later one.
nlohmann::ordered_json hintsFromJson(const json& object) {
  if (!object.contains("hints")) return nullptr;
  auto hints = nlohmann::ordered_json::array();
  for (const json& hint : get<std::vector<json>>(object, "hints")) {
    nlohmann::ordered_json names{{"name", get<std::string>(hint, "name")}};
    for (const char* key : {"field", "source"}) {
      if (const auto name = getOptional<std::string>(hint, key)) names[key] = *name;
    }
    hints.push_back(std::move(names));
  }
  return hints;
}

/// No card is like one whose sides are swapped, and no person like one without a photo.
void checkSides(const Reference& reference) {
  const bool isSwapped = reference.front.side == DocumentSide::back ||
                         (reference.back && reference.back->side == DocumentSide::front);
  if (isSwapped) throw WrongShape{"side"};
  if (!reference.front.faceImage) throw WrongShape{"faceImage"};
}

}  // namespace

Expected<void> saveReference(const Reference& reference, const fs::path& folder) {
  json object = {{"formatVersion", kFormatVersion}, {"reader", kReader}};
  auto front = sideToJson(reference.front, "front", folder);
  if (!front) return tl::unexpected(front.error());
  object["front"] = std::move(*front);
  if (reference.back) {
    auto back = sideToJson(*reference.back, "back", folder);
    if (!back) return tl::unexpected(back.error());
    object["back"] = std::move(*back);
  }
  if (!reference.hints.is_null()) object["hints"] = reference.hints;
  return writeFile(folder / kReferenceFileName, engine::indentedJson(object) + "\n");
}

Expected<Reference> loadReference(const fs::path& folder) {
  const fs::path path = folder / kReferenceFileName;
  const auto text = readFile(path, kMostReferenceBytes);
  if (!text) {
    return platform::failure(text.error().sentence + " A reference is made with `videoid enroll`.");
  }
  const auto object = parseJson(*text, path.string());
  if (!object) return tl::unexpected(object.error());
  try {
    if (get<int>(*object, "formatVersion") != kFormatVersion) throw WrongShape{"formatVersion"};
    if (getOptional<std::string>(*object, "reader") != kReader) {
      return platform::failure("The print in the reference " + inQuotes(path) +
                               " was read by another reader than this program's, which reads it "
                               "differently: enroll the card again.");
    }
    Reference reference;
    // Their pictures take most of the time, which the user waits for.
    std::future<Expected<DetectedData>> back;
    if (object->contains("back")) {
      back = std::async(std::launch::async, sideFromJson, (*object)["back"], folder);
    }
    auto front = sideFromJson(get<json>(*object, "front"), folder);
    if (!front) return tl::unexpected(front.error());
    reference.front = std::move(*front);
    if (back.valid()) {
      auto side = back.get();
      if (!side) return tl::unexpected(side.error());
      reference.back = std::move(*side);
    }
    reference.hints = hintsFromJson(*object);
    checkSides(reference);
    return reference;
  } catch (const WrongShape& fault) {
    return platform::failure("The reference " + inQuotes(path) +
                             " has another shape than this program's: look at " +
                             inQuotes(fault.key) + ", or enroll the card again.");
  }
}

}  // namespace corvana::app
