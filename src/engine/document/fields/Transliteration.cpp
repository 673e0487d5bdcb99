#include "engine/document/fields/Transliteration.h"

#include <map>

#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

namespace corvana::engine {
namespace {

enum class Style { writtenOut, plain, marked };

struct Letters {
  const char* writtenOut;
  const char* plain;
};

/// What does not come from a letter of ASCII by taking its mark away, or is written with two.
const Letters* specialLetters(UChar32 c) {
  static const std::map<UChar32, Letters> kLetters{
      {0xC4, {"AE", "A"}},   {0xC5, {"AA", "A"}}, {0xC6, {"AE", "AE"}},   {0xD0, {"D", "D"}},
      {0xD6, {"OE", "O"}},   {0xD8, {"OE", "O"}}, {0xDC, {"UE", "U"}},    {0xDE, {"TH", "TH"}},
      {0xDF, {"SS", "SS"}},  {0x110, {"D", "D"}}, {0x126, {"H", "H"}},    {0x131, {"I", "I"}},
      {0x132, {"IJ", "IJ"}}, {0x13F, {"L", "L"}}, {0x141, {"L", "L"}},    {0x14A, {"N", "N"}},
      {0x152, {"OE", "OE"}}, {0x166, {"T", "T"}}, {0x1E9E, {"SS", "SS"}}, {0x18F, {"E", "E"}}};
  const auto letters = kLetters.find(c);
  return letters == kLetters.end() ? nullptr : &letters->second;
}

bool isAsciiLetterOrDigit(UChar32 c) {
  return (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

/// The letter below the marks; 0 where there is none in ASCII.
char baseOf(UChar32 c) {
  UErrorCode status = U_ZERO_ERROR;
  const icu::Normalizer2* normalizer = icu::Normalizer2::getNFDInstance(status);
  icu::UnicodeString parts;
  if (U_FAILURE(status) || !normalizer->getDecomposition(c, parts)) return 0;
  const UChar32 base = u_toupper(parts.char32At(0));
  return isAsciiLetterOrDigit(base) ? static_cast<char>(base) : '\0';
}

bool isSilent(UChar32 c) {
  return c == '\'' || c == 0x2019 || c == '`' || c == '.' || u_charType(c) == U_NON_SPACING_MARK;
}

/// With a letter and its marks in one where there is such a letter.
icu::UnicodeString composed(std::string_view text) {
  const auto unicode = icu::UnicodeString::fromUTF8(
      icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())));
  UErrorCode status = U_ZERO_ERROR;
  const icu::Normalizer2* normalizer = icu::Normalizer2::getNFCInstance(status);
  return U_SUCCESS(status) ? normalizer->normalize(unicode, status) : unicode;
}

std::string lettersOf(std::string_view text, Style style) {
  const icu::UnicodeString unicode = composed(text);
  std::string letters;
  for (std::int32_t i = 0; i < unicode.length(); i = unicode.moveIndex32(i, 1)) {
    const UChar32 c = u_toupper(unicode.char32At(i));
    if (isAsciiLetterOrDigit(c)) {
      letters += static_cast<char>(c);
    } else if (const Letters* special = specialLetters(c)) {
      letters += style == Style::marked       ? std::string(1, kMarkedLetter)
                 : style == Style::writtenOut ? special->writtenOut
                                              : special->plain;
    } else if (const char base = baseOf(c); base != 0) {
      letters += style == Style::marked ? kMarkedLetter : base;
    } else if (!isSilent(c) && !letters.empty() && letters.back() != ' ') {
      letters += ' ';
    }
  }
  if (!letters.empty() && letters.back() == ' ') letters.pop_back();
  return letters;
}

}  // namespace

std::string zoneLetters(std::string_view text) {
  return lettersOf(text, Style::writtenOut);
}

std::string plainLetters(std::string_view text) {
  return lettersOf(text, Style::plain);
}

std::string withoutMarkedLetters(std::string_view text) {
  std::string letters = lettersOf(text, Style::marked);
  std::erase(letters, ' ');
  return letters;
}

std::string withMarkedLettersAs(std::string_view text, std::string_view letters) {
  const icu::UnicodeString unicode = composed(text);
  icu::UnicodeString corrected;
  auto wanted = letters.begin();
  for (std::int32_t i = 0; i < unicode.length(); i = unicode.moveIndex32(i, 1)) {
    UChar32 c = unicode.char32At(i);
    std::string own;
    icu::UnicodeString(c).toUTF8String(own);
    const std::string plain = plainLetters(own);
    if (!plain.empty() && wanted != letters.end()) {
      if (!plain.starts_with(*wanted)) c = u_islower(c) ? u_tolower(*wanted) : UChar32(*wanted);
      ++wanted;
    }
    corrected += c;
  }
  std::string result;
  corrected.toUTF8String(result);
  return result;
}

std::string letterSkeleton(std::string_view text) {
  std::string skeleton;
  for (const char c : zoneLetters(text)) {
    if (c == ' ') continue;
    const char before = skeleton.empty() ? '\0' : skeleton.back();
    const bool isSecond = (c == 'E' && (before == 'A' || before == 'O' || before == 'U')) ||
                          (c == 'A' && before == 'A');
    if (!isSecond) skeleton += c;
  }
  return skeleton;
}

}  // namespace corvana::engine
