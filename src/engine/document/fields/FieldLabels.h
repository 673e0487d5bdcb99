#pragma once

#include <cstddef>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "corvana/DocumentField.h"
#include "platform/foundation/Fault.h"

/// What cards print beside or above a value to say what it is.
namespace corvana::engine {

/// A line of print parted into its labels and what follows them.
struct LabelledText {
  /// Absent for labels of no field of ours ("Height") and for the numbers of unknown ones.
  std::optional<corvana::FieldName> name;
  /// The label alone does not tell surname from given names; `name` is the surname.
  bool isOfEitherName = false;
  /// A number as on licences ("4b"); empty with a label in words only.
  std::string number;
  bool hasWords = false;
  /// What follows the labels, without blanks around it.
  std::string rest;
};

/// What a label stands for.
struct LabelMeaning {
  std::optional<corvana::FieldName> name;
  bool isOfEitherName = false;

  bool operator==(const LabelMeaning&) const = default;
};

/// Whether a word of small print may be a stroke between two languages: it is read as a letter or
/// digit there.
bool isLikeStroke(std::string_view word);

/// The labels of all languages that there is a file of.
class FieldLabels {
 public:
  /// Reads every file of the folders, of the shape that docs/labels.schema.json gives. The error is
  /// one sentence that names the file and what is wrong: its shape, or that two languages have the
  /// same label for different fields.
  static platform::Expected<FieldLabels> load(const std::vector<std::filesystem::path>& folders);

  /// The labels at the line's beginning, in one language or several ("Name/Surname/Nom"), with or
  /// without a licence's number before them. Absent where the line begins with none.
  std::optional<LabelledText> labelledText(const std::string& line) const;
  /// Whether the text is a label, to the letter.
  bool isLabel(const std::string& text) const;

  /// How many labels there are in each language, by its code.
  const std::map<std::string, std::size_t>& languages() const { return languages_; }

 private:
  /// By their letters, capitals without marks and blanks.
  std::map<std::string, LabelMeaning> labels_;
  std::map<std::string, std::size_t> languages_;
};

/// What a licence's number stands for in most of the world, or in North America.
std::optional<corvana::FieldName> numberedField(const std::string& number, bool isNorthAmerican);

}  // namespace corvana::engine
