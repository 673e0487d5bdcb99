#pragma once

#include <optional>
#include <string>
#include <vector>

#include "corvana/DocumentField.h"

/// What cards print beside or above a value to say what it is. Pure.
namespace corvana::engine {

/// A line of print parted into its labels and what follows them.
struct LabelledText {
  /// Absent for labels of no field of ours ("Height") and for the numbers of unknown ones.
  std::optional<corvana::FieldName> name;
  /// A number as on licences ("4b"); empty with a label in words only.
  std::string number;
  bool hasWords = false;
  /// What follows the labels, without blanks around it.
  std::string rest;
};

/// The labels at the line's beginning, in one language or several ("Name/Surname/Nom"), with or
/// without a licence's number before them. Absent where the line begins with none.
std::optional<LabelledText> labelledText(const std::string& line);

/// What a licence's number stands for in most of the world, or in North America.
std::optional<corvana::FieldName> numberedField(const std::string& number, bool isNorthAmerican);

}  // namespace corvana::engine
