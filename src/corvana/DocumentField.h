#pragma once

#include <optional>
#include <string>

#include "platform/geometry/Geometry.h"

namespace corvana {

enum class FieldName {
  surname,
  givenNames,
  documentNumber,
  birthDate,
  issueDate,
  expiryDate,
  sex,
  nationality,
  authority,
  address
};

/// Where a value was read: in the machine-readable zone, in the barcode, in the print.
enum class FieldSource { zone, code, print };

/// What one source says of the holder or the document.
struct DocumentField {
  FieldName name{};
  /// UTF-8. Dates are YYYY-MM-DD, with less of it where the document leaves the day or month open;
  /// the sex is "M", "F" or "X".
  std::string value;
  FieldSource source{};
  float confidence = 0;  ///< 0 to 1
  /// The source had no room for the whole value.
  bool isTruncated = false;
  /// In pixels of the straightened card; only of print.
  std::optional<platform::CGRect> place;
  /// Of print that no label names clearly: what tells that it is this field, since it has the same
  /// (zone or code). Such print bears the record's value out, but could not have contradicted it.
  std::optional<FieldSource> knownBy{};

  bool operator==(const DocumentField&) const = default;
};

/// How the print stands to what zone or code say of the same.
enum class FieldAgreement { agrees, conflicts, unread };

struct FieldCheck {
  FieldName name{};
  FieldSource against{};  ///< zone or code
  FieldAgreement agreement{};
  float confidence = 0;  ///< the lesser of both readings' ones; 0 where unread
  /// The print differs, but the reader was unsure of the letters in which it does, so that nothing
  /// can be said; only where unread.
  bool isDoubtful = false;
  /// Of the print, in pixels of the straightened card.
  std::optional<platform::CGRect> place;
};

}  // namespace corvana
