#include "engine/document/fields/Aamva.h"

#include <algorithm>
#include <array>
#include <optional>
#include <set>

#include "engine/document/fields/AamvaIssuers.h"
#include "engine/document/fields/CalendarDates.h"
#include "engine/document/text/AsciiLetters.h"
#include "platform/foundation/Fault.h"

namespace corvana::engine {
namespace {

using corvana::DocumentField;
using corvana::FieldName;
using Elements = std::map<std::string, std::string>;

constexpr int kLatestVersion = 10;
constexpr std::size_t kIssuerLength = 6;
constexpr std::size_t kIdentifierLength = 3;
constexpr std::size_t kDirectoryEntryLength = 10;
/// A real record has about 500 bytes; the barcode holds 1100 at most.
constexpr std::size_t kMostBytes = 4096;
constexpr float kSure = 1.0F;
/// Without separators a name that holds an identifier ends too early.
constexpr float kUnparted = 0.5F;

bool isBreak(char c) {
  return c == '\n' || c == '\r' || c == '\x1c' || c == '\x1d' || c == '\x1e' || c == '\v';
}

std::string trimmed(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\0";
  const auto first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return std::string(text.substr(first, text.find_last_not_of(kBlanks) + 1 - first));
}

std::string_view withoutBreaksAround(std::string_view text) {
  while (!text.empty() && isBreak(text.front()))
    text.remove_prefix(1);
  while (!text.empty() && isBreak(text.back()))
    text.remove_suffix(1);
  return text;
}

std::size_t digitsAt(std::string_view text, std::size_t at) {
  const auto end = std::ranges::find_if_not(text.substr(at), isDigit);
  return static_cast<std::size_t>(end - text.substr(at).begin());
}

/// Where the issuer's number stands: behind "ANSI " or "AAMVA", with or without the blank.
std::optional<std::size_t> issuerIn(std::string_view text) {
  for (const std::string_view heading : {"ANSI", "AAMVA"}) {
    for (auto at = text.find(heading); at != std::string_view::npos;
         at = text.find(heading, at + 1)) {
      const auto number = text.find_first_not_of(' ', at + heading.size());
      if (number != std::string_view::npos && digitsAt(text, number) >= kIssuerLength) {
        return number;
      }
    }
  }
  return std::nullopt;
}

bool isIdentifier(std::string_view text) {
  return text.size() >= kIdentifierLength && isCapital(text[0]) && isCapital(text[1]) &&
         (isCapital(text[2]) || isDigit(text[2]));
}

bool isDirectoryEntry(std::string_view text) {
  return text.size() >= kDirectoryEntryLength && isCapital(text[0]) && isCapital(text[1]) &&
         digitsAt(text.substr(0, kDirectoryEntryLength), 2) == kDirectoryEntryLength - 2;
}

/// Reads the directory of subfiles from `at` on and moves behind it. Their offsets and lengths lie
/// often enough (counted without the first line, or in another version), so that nothing rests on
/// them.
std::vector<std::string> directory(std::string_view text, std::size_t& at) {
  std::vector<std::string> subfiles;
  while (isDirectoryEntry(text.substr(std::min(at, text.size())))) {
    subfiles.emplace_back(text.substr(at, 2));
    at += kDirectoryEntryLength;
  }
  return subfiles;
}

/// The subfile's name stands before its first element.
std::string_view withoutSubfileName(std::string_view line, const std::vector<std::string>& names) {
  const auto isNamed = [&](std::string_view name) {
    return line.starts_with(name) && isIdentifier(line.substr(name.size())) &&
           (line[name.size()] == 'D' || line[name.size()] == 'Z');
  };
  for (const std::string& name : names) {
    if (isNamed(name)) return line.substr(name.size());
  }
  return line;
}

void addElement(std::string_view line, Elements& elements) {
  if (!isIdentifier(line)) return;
  elements.emplace(line.substr(0, kIdentifierLength), trimmed(line.substr(kIdentifierLength)));
}

Elements partedElements(std::string_view body, const std::vector<std::string>& names) {
  Elements elements;
  while (!body.empty()) {
    const auto end = static_cast<std::size_t>(std::ranges::find_if(body, isBreak) - body.begin());
    addElement(withoutSubfileName(body.substr(0, end), names), elements);
    body.remove_prefix(std::min(end + 1, body.size()));
  }
  return elements;
}

/// Those that a holder's data need.
constexpr std::array<std::string_view, 46> kIdentifiers{
    "DAA", "DAB", "DAC", "DAD", "DAE", "DAF", "DAG", "DAH", "DAI", "DAJ", "DAK", "DAL",
    "DAM", "DAN", "DAO", "DAP", "DAQ", "DAR", "DAS", "DAT", "DAU", "DAW", "DAY", "DAZ",
    "DBA", "DBB", "DBC", "DBD", "DBN", "DBS", "DCA", "DCB", "DCD", "DCF", "DCG", "DCK",
    "DCS", "DCT", "DCU", "DDA", "DDB", "DDE", "DDF", "DDG", "DDK", "DDL"};

/// Elements that nothing parts: each begins at the first place where its identifier follows a
/// value.
Elements unpartedElements(std::string_view body) {
  Elements elements;
  std::string_view identifier;
  std::size_t start = 0;
  const auto finish = [&](std::size_t end) {
    if (!identifier.empty())
      elements[std::string(identifier)] = trimmed(body.substr(start, end - start));
  };
  for (std::size_t at = 0; at + kIdentifierLength <= body.size(); ++at) {
    const std::string_view here = body.substr(at, kIdentifierLength);
    const bool followsValue = identifier.empty() || at > start;
    if (!followsValue || elements.contains(std::string(here)) || here == identifier ||
        std::ranges::find(kIdentifiers, here) == kIdentifiers.end()) {
      continue;
    }
    finish(at);
    identifier = here;
    start = at + kIdentifierLength;
    at = start - 1;
  }
  finish(body.size());
  return elements;
}

/// A value that says that there is none.
bool isPlaceholder(const std::string& value) {
  std::string capitals = value;
  std::ranges::transform(capitals, capitals.begin(),
                         [](char c) { return c >= 'a' && c <= 'z' ? char(c - 'a' + 'A') : c; });
  return capitals.empty() || capitals == "NONE" || capitals == "UNAVL" || capitals == "UNAVAIL" ||
         capitals == "N/A";
}

std::string value(const AamvaRecord& record, const char* identifier) {
  const auto element = record.elements.find(identifier);
  if (element == record.elements.end() || isPlaceholder(element->second)) return {};
  return element->second;
}

std::string joined(const std::vector<std::string>& parts, const char* between) {
  std::string all;
  for (const std::string& part : parts) {
    if (part.empty()) continue;
    if (!all.empty()) all += between;
    all += part;
  }
  return all;
}

/// Names of one element have commas between them or, of some issuers, a dollar sign or an at sign.
std::vector<std::string> nameParts(std::string_view text) {
  std::vector<std::string> parts;
  for (std::size_t start = 0; start <= text.size();) {
    const auto end = std::min(text.find_first_of(",$@", start), text.size());
    parts.push_back(trimmed(text.substr(start, end - start)));
    start = end + 1;
  }
  return parts;
}

struct Names {
  std::string surname;
  std::string given;
};

/// Version 1 has one element for the whole name, or one for each; versions 2 and 3 one for all
/// given names; later ones part the first name from the others.
Names namesOf(const AamvaRecord& record) {
  Names names;
  names.surname = value(record, "DCS");
  if (names.surname.empty()) names.surname = value(record, "DAB");
  names.given = joined(nameParts(value(record, "DCT")), " ");
  if (names.given.empty()) {
    names.given = joined({value(record, "DAC"), value(record, "DAD")}, " ");
  }
  const std::string whole = value(record, "DAA");
  if (!names.surname.empty() || whole.empty()) return names;
  std::vector<std::string> parts = nameParts(whole);
  names.surname = parts.front();
  // The fourth is a suffix such as "JR", which is no name.
  if (parts.size() > 3) parts.resize(3);
  names.given = joined({parts.begin() + 1, parts.end()}, " ");
  return names;
}

std::string sexOf(const AamvaRecord& record) {
  const std::string code = value(record, "DBC");
  if (code == "1" || code == "M") return "M";
  if (code == "2" || code == "F") return "F";
  if (code == "9" || code == "X") return "X";
  return {};
}

std::string dateOf(const AamvaRecord& record, const char* identifier) {
  return isoFromEightDigits(value(record, identifier)).value_or("");
}

/// Version 1 may give the mailing address, the residence or both.
std::string addressOf(const AamvaRecord& record) {
  const auto of = [&](std::array<const char*, 5> ids) {
    return joined({value(record, ids[0]), value(record, ids[1]), value(record, ids[2]),
                   joined({value(record, ids[3]), value(record, ids[4])}, " ")},
                  ", ");
  };
  const std::string mailing = of({"DAG", "DAH", "DAI", "DAJ", "DAK"});
  return mailing.empty() ? of({"DAL", "DAM", "DAN", "DAO", "DAP"}) : mailing;
}

bool isTruncated(const AamvaRecord& record, const char* flag) {
  return value(record, flag) == "T";
}

}  // namespace

platform::Expected<AamvaRecord> parseAamva(std::string_view text) {
  const auto refuse = [](const char* sentence) { return platform::failure(sentence); };
  if (text.size() > kMostBytes) return refuse("The barcode holds more than any licence's does.");
  const auto issuer = issuerIn(text);
  if (!issuer) {
    return refuse(
        "The barcode is no licence's: it lacks the heading \"ANSI \" or \"AAMVA\" with the "
        "issuer's "
        "number.");
  }
  const std::size_t digits = digitsAt(text, *issuer);
  // Issuer, version, the issuer's own version (not in version 1), number of subfiles.
  const bool hasVersion = digits >= kIssuerLength + 2;
  AamvaRecord record;
  record.issuer = text.substr(*issuer, kIssuerLength);
  if (hasVersion) {
    record.version = 10 * (text[*issuer + kIssuerLength] - '0') + (text[*issuer + 7] - '0');
  }
  if (record.version > kLatestVersion) {
    return refuse("The barcode's version of the licence standard is later than 10.");
  }
  if (const auto known = aamvaIssuer(record.issuer)) {
    record.jurisdiction = known->jurisdiction;
    record.isCanadian = known->isCanadian;
  }
  std::size_t at = *issuer + digits;
  record.subfiles = directory(text, at);
  std::vector<std::string> names{"DL", "ID", "EN"};
  names.insert(names.end(), record.subfiles.begin(), record.subfiles.end());
  const std::string_view body = withoutBreaksAround(text.substr(at));
  record.elements = partedElements(body, names);
  if (std::ranges::none_of(body, isBreak)) {
    record.elements = unpartedElements(body);
    record.isUnparted = true;
  }
  if (record.elements.empty())
    return refuse("The barcode has a licence's heading and nothing else.");
  if (value(record, "DCG") == "CAN") record.isCanadian = true;
  return record;
}

std::vector<DocumentField> aamvaFields(const AamvaRecord& record) {
  const float confidence = record.isUnparted ? kUnparted : kSure;
  const Names names = namesOf(record);
  std::vector<DocumentField> fields;
  const auto add = [&](FieldName name, const std::string& text, bool truncated = false) {
    if (text.empty()) return;
    fields.push_back({name, text, corvana::FieldSource::code, confidence, truncated, {}});
  };
  add(FieldName::surname, names.surname, isTruncated(record, "DDE"));
  add(FieldName::givenNames, names.given, isTruncated(record, "DDF") || isTruncated(record, "DDG"));
  add(FieldName::documentNumber, value(record, "DAQ"));
  add(FieldName::birthDate, dateOf(record, "DBB"));
  add(FieldName::issueDate, dateOf(record, "DBD"));
  add(FieldName::expiryDate, dateOf(record, "DBA"));
  add(FieldName::sex, sexOf(record));
  add(FieldName::authority, record.jurisdiction);
  add(FieldName::address, addressOf(record));
  return fields;
}

}  // namespace corvana::engine
