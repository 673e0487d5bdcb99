#include "engine/document/text/LetterRepair.h"

#include <initializer_list>
#include <string_view>

#include <unicode/uchar.h>
#include <unicode/unistr.h>

namespace corvana::engine {
namespace {

/// Fewer letters may be a code or part of a number.
constexpr int kLeastLetters = 3;
constexpr UChar32 kLastOfAscii = 0x7F;

struct LetterCount {
  int capitals = 0;
  int small = 0;
  int smallAccented = 0;
  int digits = 0;
  int zeros = 0;
};

LetterCount countIn(const icu::UnicodeString& text, int from, int to) {
  LetterCount count;
  for (int i = from; i < to; ++i) {
    const UChar32 letter = text.char32At(i);
    if (u_isupper(letter) != 0) ++count.capitals;
    if (u_islower(letter) != 0) ++count.small;
    if (u_islower(letter) != 0 && letter > kLastOfAscii) ++count.smallAccented;
    if (u_isdigit(letter) != 0) ++count.digits;
    if (letter == '0') ++count.zeros;
  }
  return count;
}

void repairWord(icu::UnicodeString& text, int from, int to) {
  const LetterCount count = countIn(text, from, to);
  const bool isInCapitals = count.capitals > count.small && count.small == count.smallAccented;
  if (count.capitals < kLeastLetters - 1 || !isInCapitals) return;
  const bool isAWord = count.capitals + count.small >= kLeastLetters && count.digits == count.zeros;
  for (int i = from; i < to; ++i) {
    const UChar32 letter = text.char32At(i);
    if (u_islower(letter) != 0) text.replace(i, 1, u_toupper(letter));
    if (letter == '0' && isAWord) text.replace(i, 1, UChar32('O'));
  }
}

bool isDigitAt(const icu::UnicodeString& text, int at) {
  return at >= 0 && at < text.length() && u_isdigit(text.char32At(at)) != 0;
}

/// Sets the points of a date of this form that begins there, behind which a blank may stand.
void repairDate(icu::UnicodeString& text, int from, std::string_view form) {
  icu::UnicodeString date = text;
  int at = from;
  for (const char wanted : form) {
    const UChar32 letter = at < text.length() ? text.char32At(at) : 0;
    if (wanted == '0' ? !isDigitAt(text, at) : letter != '.' && letter != ',') return;
    if (wanted == '.') date.replace(at, 1, UChar32('.'));
    ++at;
    if (wanted == '.' && at < text.length() && text.char32At(at) == ' ') ++at;
  }
  if (!isDigitAt(text, at)) text = date;
}

}  // namespace

// All letters of the alphabet lie in the basic plane: one unit each.
std::string repairedLetters(const std::string& text) {
  icu::UnicodeString letters = icu::UnicodeString::fromUTF8(text);
  int from = 0;
  for (int i = 0; i <= letters.length(); ++i) {
    if (i < letters.length() && u_isalnum(letters.char32At(i)) != 0) continue;
    repairWord(letters, from, i);
    from = i + 1;
  }
  for (int i = 0; i < letters.length(); ++i) {
    if (isDigitAt(letters, i - 1) || !isDigitAt(letters, i)) continue;
    for (const std::string_view form : {"00.00.0000", "0000.00.00"})
      repairDate(letters, i, form);
  }
  std::string repaired;
  letters.toUTF8String(repaired);
  return repaired;
}

}  // namespace corvana::engine
