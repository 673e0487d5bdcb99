#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "corvana/DocumentField.h"

/// How a value in print stands to the same value in a zone or barcode. Pure.
namespace corvana::engine {

/// Letters of a number: one that is shorter is found nearly, or with more behind it, by chance.
inline constexpr std::size_t kLeastNearNumber = 6;

bool isName(corvana::FieldName name);
bool isDate(corvana::FieldName name);
/// Whether such a value can be found in print without its label: names, dates and the number.
bool isSearched(corvana::FieldName name);

/// What is left of a value when neither marks, signs and blanks count nor what readers take for one
/// another in a number.
std::string skeletonOf(corvana::FieldName name, std::string_view text);

/// Whether two names are alike but for letters with marks, which are read as others: Č for Ğ.
bool isLikeWhereMarked(std::string_view printed, const std::string& value);

/// Whether the printed name is the value but for rare letters that a reader takes for others.
bool isMisread(std::string_view printed, const std::string& value);

/// How a labelled value stands to the record's.
corvana::FieldAgreement agreementOf(const std::string& printed,
                                    const corvana::DocumentField& field);

}  // namespace corvana::engine
