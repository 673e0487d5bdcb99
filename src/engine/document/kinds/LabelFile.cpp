#include "engine/document/kinds/LabelFile.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "engine/document/fields/DocumentFields.h"
#include "engine/document/fields/Transliteration.h"
#include "engine/document/kinds/LanguageCode.h"
#include "engine/json/JsonFile.h"
#include "engine/json/JsonObject.h"

namespace corvana::engine {
namespace {

constexpr std::uint64_t kLargestFile = 256 << 10;
constexpr std::size_t kLongestLabel = 100;
/// The key of labels of no field of ours.
constexpr const char* kOther = "other";
/// The key of labels of the surname on some cards and of the given names on others.
constexpr const char* kEitherName = "eitherName";

std::vector<FieldLabel> labelsOf(JsonObject& fields, const std::string& field) {
  const bool isOfEitherName = field == kEitherName;
  const auto name = isOfEitherName ? corvana::FieldName::surname : fieldNamed(field);
  if (!name && field != kOther) {
    fields.complain("", JsonObject::quoted(field) + " is no field of docs/fields.md, nor \"" +
                            kEitherName + "\" or \"" + kOther + "\"");
  }
  std::vector<FieldLabel> labels;
  for (std::string& text : fields.texts(field)) {
    std::string letters = plainLetters(text);
    const auto blanks = std::erase(letters, ' ');
    if (letters.empty() || letters.size() > kLongestLabel || blanks >= kMostLabelWords) {
      fields.complain(field, "a label must have one to five words in Latin letters");
    }
    labels.push_back({name, isOfEitherName, std::move(text), std::move(letters)});
  }
  return labels;
}

LabelTable tableOf(const nlohmann::json& json) {
  JsonObject root(json, "");
  LabelTable table;
  table.language = root.text("language");
  if (!isLanguageCode(table.language)) {
    root.complain("language", "must be the code of a language, such as de");
  }
  JsonObject fields = root.object("labels");
  root.refuseOtherKeys();
  for (const std::string& field : fields.keys()) {
    auto labels = labelsOf(fields, field);
    std::ranges::move(labels, std::back_inserter(table.labels));
  }
  return table;
}

}  // namespace

platform::Expected<LabelTable> readLabelFile(const std::filesystem::path& path) {
  const auto content = readFile(path, kLargestFile);
  if (!content) return tl::unexpected(content.error());
  const auto json = parseJson(*content, path.string());
  if (!json) return tl::unexpected(json.error());
  try {
    LabelTable table = tableOf(*json);
    table.file = path;
    return table;
  } catch (const JsonFault& fault) {
    return platform::failure(inQuotes(path) + " is no table of labels: " + fault.sentence + ".");
  }
}

}  // namespace corvana::engine
