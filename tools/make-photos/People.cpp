#include "People.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iterator>

#include <nlohmann/json.hpp>
#include <unicode/locid.h>
#include <unicode/unistr.h>

namespace corvana::photos {
namespace {

using nlohmann::json;
using session::CardData;
using session::Random;

constexpr int kFirstBirthYear = 1941;
constexpr int kLastBirthYear = 2006;
// Every card is valid on the first of January of this year.
constexpr int kYearOfUse = 2026;
constexpr int kOldest = 8;  // years since it was issued

int draw(Random& random, int least, int most) {
  return static_cast<int>(random.uniform(least, most + 1));
}

std::string date(int year, int month, int day) {
  char text[32];
  std::snprintf(text, sizeof text, "%04d-%02d-%02d", year, month, day);
  return text;
}

/// A stands for a letter that is never taken for a digit, 9 for a digit; the rest stays.
std::string number(const std::string& pattern, Random& random) {
  static const std::string kLetters = "ABCDEFGHJKLMNPRTUVWXYZ";
  std::string text = pattern;
  for (char& c : text) {
    if (c == 'A') c = kLetters[static_cast<std::size_t>(draw(random, 0, 21))];
    if (c == '9') c = static_cast<char>('0' + draw(random, 0, 9));
  }
  return text;
}

std::string givenNames(const std::vector<std::string>& names, Random& random) {
  const std::string& first = drawFrom(names, random);
  const std::string& second = drawFrom(names, random);
  return random.uniform(0, 1) < 0.4 && second != first ? first + " " + second : first;
}

std::string withPlace(std::string text, const std::string& place) {
  const std::string mark = "{PLACE}";
  if (const auto at = text.find(mark); at != std::string::npos)
    text.replace(at, mark.size(), place);
  return text;
}

void drawDates(CardData& card, int yearsValid, Random& random) {
  card.dateOfBirth =
      date(draw(random, kFirstBirthYear, kLastBirthYear), draw(random, 1, 12), draw(random, 1, 28));
  const int issued = kYearOfUse - draw(random, 1, std::min(kOldest, yearsValid));
  const int month = draw(random, 1, 12);
  const int day = draw(random, 1, 28);
  card.dateOfIssue = date(issued, month, day);
  card.dateOfExpiry = date(issued + yearsValid, month, day);
}

}  // namespace

std::string capitals(const std::string& text, const std::string& language) {
  std::string result;
  icu::UnicodeString::fromUTF8(text).toUpper(icu::Locale(language.c_str())).toUTF8String(result);
  return result;
}

Result<std::vector<NameList>> readNames(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  const std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  const auto texts = [](const json& list, const char* key) {
    return list.at(key).get<std::vector<std::string>>();
  };
  try {
    std::vector<NameList> all;
    for (const json& list : json::parse(text))
      all.push_back({list.at("language"), list.at("nationality"), texts(list, "surnames"),
                     texts(list, "female"), texts(list, "male"), texts(list, "places"),
                     texts(list, "streets")});
    return all;
  } catch (const json::exception& error) {
    return fault("The names in " + file.string() + " cannot be used: " + error.what() + ".");
  }
}

const NameList& namesIn(const std::vector<NameList>& names, const std::string& language) {
  const auto found = std::find_if(names.begin(), names.end(),
                                  [&](const NameList& list) { return list.language == language; });
  return found == names.end() ? names.front() : *found;
}

CardData drawHolder(const Design& design, const std::vector<NameList>& names, Random& random) {
  const NameList& list = namesIn(names, drawFrom(design.languages, random));
  CardData card;
  card.documentCode = design.documentCode;
  card.stateName = design.stateName;
  card.sex = random.uniform(0, 1) < 0.5 ? "F" : "M";
  card.surname = drawFrom(list.surnames, random);
  card.givenNames = givenNames(card.sex == "F" ? list.female : list.male, random);
  if (design.nationality.empty()) card.nationalityCode = list.nationality;
  card.nationality = design.nationality.empty() ? list.nationality : design.nationality;
  drawDates(card, design.yearsValid, random);
  card.documentNumber = number(design.numberPattern, random);
  card.placeOfBirth = drawFrom(list.places, random);
  const std::string& home = drawFrom(list.places, random);
  card.address =
      drawFrom(list.streets, random) + " " + std::to_string(draw(random, 1, 148)) + ", " + home;
  card.height = std::to_string(draw(random, 150, 199)) + " cm";
  card.authority = withPlace(design.authority, home);
  if (design.capitals)
    for (std::string* text : {&card.surname, &card.givenNames, &card.placeOfBirth, &card.address,
                              &card.height, &card.authority})
      *text = capitals(*text, list.language);
  return card;
}

}  // namespace corvana::photos
