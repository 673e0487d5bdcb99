#include "Mrz.h"

#include <memory>

#include <glib.h>

namespace corvana::session {
namespace {

constexpr std::size_t kLineLength = 30;
constexpr std::size_t kNumberLength = 9;

int valueOf(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'Z') return c - 'A' + 10;
  return 0;
}

std::string padded(std::string text, std::size_t length) {
  text.resize(length, '<');
  return text;
}

/// Letters without their marks, capitals, and a filler for each break between words.
std::string zoneText(const std::string& text) {
  const std::unique_ptr<gchar, decltype(&g_free)> ascii(g_str_to_ascii(text.c_str(), "C"), g_free);
  std::string result;
  for (const char* c = ascii.get(); *c != 0; ++c) {
    if (*c == '\'' || *c == '.') continue;
    if (g_ascii_isalnum(*c))
      result += static_cast<char>(g_ascii_toupper(*c));
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

}  // namespace

char mrzCheckDigit(std::string_view characters) {
  constexpr int kWeights[] = {7, 3, 1};
  int sum = 0;
  for (std::size_t i = 0; i < characters.size(); ++i)
    sum += valueOf(characters[i]) * kWeights[i % 3];
  return static_cast<char>('0' + sum % 10);
}

std::array<std::string, 3> mrzLines(const CardData& card) {
  const std::string first =
      padded("ID" + padded(zoneText(card.state), 3), 5) + numberAndOptional(card);
  std::string second =
      withCheckDigit(zoneDate(card.dateOfBirth)) + (card.sex == "X" ? "<" : card.sex) +
      withCheckDigit(zoneDate(card.dateOfExpiry)) + padded(zoneText(card.nationalityCode), 3) +
      padded(zoneText(card.optionalData2), 11);
  second += mrzCheckDigit(first.substr(5, 25) + second.substr(0, 7) + second.substr(8, 7) +
                          second.substr(18, 11));
  const std::string third =
      padded(zoneText(card.surname) + "<<" + zoneText(card.givenNames), kLineLength);
  return {first, second, third};
}

}  // namespace corvana::session
