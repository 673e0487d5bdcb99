#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "corvana/DocumentField.h"
#include "platform/foundation/Fault.h"

namespace corvana::engine {

struct FieldLabel {
  /// Absent for labels of no field of ours, which are there so that they are not taken for values.
  std::optional<corvana::FieldName> name;
  /// It stands for the surname on some cards and for the given names on others; `name` is the
  /// surname.
  bool isOfEitherName = false;
  std::string text;
  std::string letters;  ///< capitals of ASCII and digits, without blanks
};

/// What cards call their fields in one language.
struct LabelTable {
  std::string language;
  std::vector<FieldLabel> labels;
  std::filesystem::path file;
};

/// No label has more words.
inline constexpr std::size_t kMostLabelWords = 5;

/// Reads the file of one language, of the shape that docs/labels.schema.json gives. The error is
/// one sentence that names the file, the key and what is wrong with it.
platform::Expected<LabelTable> readLabelFile(const std::filesystem::path& path);

}  // namespace corvana::engine
