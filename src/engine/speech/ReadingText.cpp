#include "engine/speech/ReadingText.h"

#include <memory>

#include <unicode/locid.h>
#include <unicode/normalizer2.h>
#include <unicode/translit.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

namespace corvana::engine {
namespace {

bool isSpoken(UChar32 c) {
  return u_isalnum(c) || (U_GET_GC_MASK(c) & U_GC_M_MASK) != 0;
}

bool isApostrophe(UChar32 c) {
  return c == u'\'' || c == u'\u2019' || c == u'\u02BC';
}

bool isNumberMark(UChar32 c) {
  return c == u'.' || c == u',' || c == u':';
}

/// Whether the code point at `index` belongs to the word around it.
bool belongsToWord(const icu::UnicodeString& text, int32_t index) {
  const UChar32 c = text.char32At(index);
  if (isSpoken(c)) return true;
  const int32_t next = text.moveIndex32(index, 1);
  if (index == 0 || next >= text.length()) return false;
  const UChar32 before = text.char32At(text.moveIndex32(index, -1));
  const UChar32 after = text.char32At(next);
  if (isApostrophe(c)) return isSpoken(before) && isSpoken(after);
  return isNumberMark(c) && u_isdigit(before) && u_isdigit(after);
}

class Speller {
 public:
  Speller() {
    UErrorCode status = U_ZERO_ERROR;
    toAscii_.reset(
        icu::Transliterator::createInstance("Any-Latin; Latin-ASCII", UTRANS_FORWARD, status));
  }

  ReadingWord spell(const icu::UnicodeString& word) const {
    ReadingWord result;
    icu::UnicodeString lower = word;
    lower.toLower(icu::Locale::getRoot()).toUTF8String(result.spelling);
    icu::UnicodeString ascii = word;
    if (toAscii_) toAscii_->transliterate(ascii);
    for (int32_t i = 0; i < ascii.length(); ++i) {
      if (ascii[i] < 0x80) result.plain += static_cast<char>(ascii[i]);
    }
    return result;
  }

 private:
  std::unique_ptr<icu::Transliterator> toAscii_;
};

icu::UnicodeString composed(const std::string& text) {
  UErrorCode status = U_ZERO_ERROR;
  const icu::UnicodeString source = icu::UnicodeString::fromUTF8(text);
  const icu::Normalizer2* nfc = icu::Normalizer2::getNFCInstance(status);
  icu::UnicodeString result = nfc ? nfc->normalize(source, status) : source;
  return U_SUCCESS(status) ? result : source;
}

}  // namespace

std::vector<ReadingWord> readingWords(const std::string& text) {
  const icu::UnicodeString source = composed(text);
  const Speller speller;
  std::vector<ReadingWord> words;
  icu::UnicodeString word;
  for (int32_t i = 0; i < source.length(); i = source.moveIndex32(i, 1)) {
    if (belongsToWord(source, i)) {
      word.append(source.char32At(i));
    } else if (!word.isEmpty()) {
      words.push_back(speller.spell(word));
      word.remove();
    }
  }
  if (!word.isEmpty()) words.push_back(speller.spell(word));
  return words;
}

}  // namespace corvana::engine
