#include "AamvaRecord.h"

#include <cstdio>
#include <utility>
#include <vector>

#include "Mrz.h"

namespace corvana::photos {
namespace {

using session::plainLetters;

constexpr int kHeaderLength = 31;  // up to the first subfile, of which there is one

/// 1988-04-17 as 04171988.
std::string codedDate(const std::string& date) {
  return date.substr(5, 2) + date.substr(8, 2) + date.substr(0, 4);
}

std::pair<std::string, std::string> splitAt(const std::string& text, const std::string& mark) {
  const auto at = text.find(mark);
  if (at == std::string::npos) return {text, ""};
  return {text.substr(0, at), text.substr(at + mark.size())};
}

std::string elements(const session::CardData& card) {
  const auto [first, middle] = splitAt(plainLetters(card.givenNames), " ");
  const auto [street, city] = splitAt(plainLetters(card.address), ", ");
  const std::vector<std::pair<std::string, std::string>> list = {
      {"DAQ", card.documentNumber},
      {"DCS", plainLetters(card.surname)},
      {"DDE", "N"},
      {"DAC", first},
      {"DDF", "N"},
      {"DAD", middle.empty() ? "NONE" : middle},
      {"DDG", "N"},
      {"DCA", "C"},
      {"DCB", "NONE"},
      {"DCD", "NONE"},
      {"DBD", codedDate(card.dateOfIssue)},
      {"DBB", codedDate(card.dateOfBirth)},
      {"DBA", codedDate(card.dateOfExpiry)},
      {"DBC", card.sex == "M"   ? "1"
              : card.sex == "F" ? "2"
                                : "9"},
      {"DAU", plainLetters(card.height)},
      {"DAY", "UNK"},
      {"DAG", street},
      {"DAI", city},
      {"DAJ", "ZZ"},
      {"DAK", "000000000  "},
      {"DCF", card.documentNumber + "A1"},
      {"DCG", "USA"},
  };
  std::string text = "DL";
  for (const auto& [name, value] : list)
    text += name + value + "\n";
  text.back() = '\r';
  return text;
}

}  // namespace

std::string aamvaRecord(const session::CardData& card) {
  const std::string subfile = elements(card);
  char entry[16];
  std::snprintf(entry, sizeof entry, "DL%04d%04d", kHeaderLength, static_cast<int>(subfile.size()));
  return "@\n\x1e\rANSI 999999100001" + std::string(entry) + subfile;
}

}  // namespace corvana::photos
