#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "corvana/DocumentField.h"
#include "platform/foundation/Fault.h"

/// Driving licences and identity cards of North America as their PDF417 barcode holds them: the
/// AAMVA card design standard, versions 1 to 10, and what issuers made of it. Pure.
namespace corvana::engine {

struct AamvaRecord {
  int version = 0;
  std::string issuer;        ///< six digits
  std::string jurisdiction;  ///< two letters; empty for an issuer of no list
  bool isCanadian = false;
  /// "DL", "ID" and others, as the heading lists them.
  std::vector<std::string> subfiles;
  /// Values by their three-letter identifiers, without blanks around them: "DCS" is the family
  /// name, "DAQ" the number. What issuers add under Z is there too.
  std::map<std::string, std::string> elements;
  /// Elements were not parted, and found by their identifiers alone.
  bool isUnparted = false;
};

/// Reads a barcode's text. The error is one sentence that says why it is no such record.
platform::Expected<AamvaRecord> parseAamva(std::string_view text);

/// What the record says of its holder.
std::vector<corvana::DocumentField> aamvaFields(const AamvaRecord& record);

}  // namespace corvana::engine
