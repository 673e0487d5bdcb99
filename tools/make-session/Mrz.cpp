#include "Mrz.h"

#include <array>
#include <cstddef>
#include <memory>
#include <utility>

#include <glib.h>

namespace corvana::session {
namespace {

constexpr std::size_t kTd1Length = 30;
constexpr std::size_t kTd2Length = 36;
constexpr std::size_t kTd3Length = 44;
constexpr std::size_t kNumberLength = 9;

/// What the standard recommends where taking the mark away is not enough.
constexpr std::array<std::pair<std::string_view, std::string_view>, 31> kSpellings = {{
    {"Ä", "AE"}, {"ä", "AE"}, {"Å", "AA"}, {"å", "AA"}, {"Æ", "AE"}, {"æ", "AE"}, {"Ð", "D"},
    {"ð", "D"},  {"Đ", "D"},  {"đ", "D"},  {"Ħ", "H"},  {"ħ", "H"},  {"İ", "I"},  {"ı", "I"},
    {"Ł", "L"},  {"ł", "L"},  {"Ö", "OE"}, {"ö", "OE"}, {"Ø", "OE"}, {"ø", "OE"}, {"Œ", "OE"},
    {"œ", "OE"}, {"Ü", "UE"}, {"ü", "UE"}, {"ẞ", "SS"}, {"ß", "SS"}, {"Þ", "TH"}, {"þ", "TH"},
    {"Ə", "E"},  {"ə", "E"},  {"ʻ", "'"},
}};

std::string spelled(std::string text) {
  for (const auto& [letter, spelling] : kSpellings)
    for (std::size_t at = text.find(letter); at != std::string::npos; at = text.find(letter, at))
      text.replace(at, letter.size(), spelling);
  return text;
}

int valueOf(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'Z') return c - 'A' + 10;
  return 0;
}

std::string padded(std::string text, std::size_t length) {
  text.resize(length, '<');
  return text;
}

/// Capitals, and a filler for each break between words.
std::string zoneText(const std::string& text) {
  std::string result;
  for (const char c : plainLetters(text)) {
    if (c == '\'' || c == '.') continue;
    if (g_ascii_isalnum(c))
      result += c;
    else if (!result.empty() && result.back() != '<')
      result += '<';
  }
  while (!result.empty() && result.back() == '<')
    result.pop_back();
  return result;
}

/// 1988-04-17 becomes 880417.
std::string zoneDate(const std::string& date) {
  return date.substr(2, 2) + date.substr(5, 2) + date.substr(8, 2);
}

std::string withCheckDigit(std::string field) {
  field += mrzCheckDigit(field);
  return field;
}

/// Number, check digit and optional data together: 25 characters.
std::string numberAndOptional(const CardData& card) {
  const std::string number = zoneText(card.documentNumber);
  if (number.size() <= kNumberLength)
    return padded(withCheckDigit(padded(number, kNumberLength)) + zoneText(card.optionalData), 25);
  return padded(number.substr(0, kNumberLength) + '<' + number.substr(kNumberLength) +
                    mrzCheckDigit(number) + '<' + zoneText(card.optionalData),
                25);
}

std::string sexOf(const CardData& card) {
  return card.sex == "X" ? "<" : card.sex;
}

std::string namesOf(const CardData& card, std::size_t room) {
  return padded(zoneText(card.surname) + "<<" + zoneText(card.givenNames), room);
}

/// What the first line begins with: kind of document and issuing state.
std::string headOf(const CardData& card) {
  return padded(card.documentCode, 2) + padded(zoneText(card.state), 3);
}

std::vector<std::string> threeLines(const CardData& card) {
  const std::string first = headOf(card) + numberAndOptional(card);
  std::string second = withCheckDigit(zoneDate(card.dateOfBirth)) + sexOf(card) +
                       withCheckDigit(zoneDate(card.dateOfExpiry)) +
                       padded(zoneText(card.nationalityCode), 3) +
                       padded(zoneText(card.optionalData2), 11);
  second += mrzCheckDigit(first.substr(5, 25) + second.substr(0, 7) + second.substr(8, 7) +
                          second.substr(18, 11));
  return {first, second, namesOf(card, kTd1Length)};
}

std::vector<std::string> twoLines(const CardData& card, std::size_t length) {
  std::string second = withCheckDigit(padded(zoneText(card.documentNumber), kNumberLength)) +
                       padded(zoneText(card.nationalityCode), 3) +
                       withCheckDigit(zoneDate(card.dateOfBirth)) + sexOf(card) +
                       withCheckDigit(zoneDate(card.dateOfExpiry));
  const std::string optional = zoneText(card.optionalData);
  second += length == kTd3Length ? withCheckDigit(padded(optional, 14)) : padded(optional, 7);
  second += mrzCheckDigit(second.substr(0, 10) + second.substr(13, 7) + second.substr(21));
  return {headOf(card) + namesOf(card, length - 5), second};
}

}  // namespace

char mrzCheckDigit(std::string_view characters) {
  constexpr int kWeights[] = {7, 3, 1};
  int sum = 0;
  for (std::size_t i = 0; i < characters.size(); ++i)
    sum += valueOf(characters[i]) * kWeights[i % 3];
  return static_cast<char>('0' + sum % 10);
}

std::string plainLetters(const std::string& text) {
  const std::unique_ptr<gchar, decltype(&g_free)> ascii(g_str_to_ascii(spelled(text).c_str(), "C"),
                                                        g_free);
  const std::unique_ptr<gchar, decltype(&g_free)> capitals(g_ascii_strup(ascii.get(), -1), g_free);
  return capitals.get();
}

std::vector<std::string> mrzLines(const CardData& card, MrzFormat format) {
  if (format == MrzFormat::td1) return threeLines(card);
  return twoLines(card, format == MrzFormat::td2 ? kTd2Length : kTd3Length);
}

}  // namespace corvana::session
