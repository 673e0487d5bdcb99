#include "engine/document/text/TextLines.h"

#include <algorithm>

#include "engine/document/outline/CardWarp.h"
#include "engine/document/text/AsciiLetters.h"

namespace corvana::engine {
namespace {

/// Words below it differ from picture to picture; two letters are easily seen in a pattern.
constexpr double kLeastConfidence = 0.60;
constexpr double kLeastConfidenceOfPairs = 0.85;
/// What is printed much smaller than the holder's data is the name of a field, the same on every
/// card of a kind and the first to blur; what is much taller is no print.
constexpr double kLeastHeight = 0.78;
constexpr double kMostHeight = 1.8;
/// Of all letters, not more than this share are the names of fields.
constexpr double kSmallPrintShare = 0.75;
constexpr const char* kTails = "gjpqy,;";
/// Of a number behind a label, or a date's year.
constexpr std::ptrdiff_t kLeastDigits = 4;
/// Letters of Latin and other scripts begin with a byte from here on; punctuation beyond ASCII
/// (dashes, quotes, bullets) lies in the blocks of which the first byte is E2.
constexpr unsigned char kFirstByteBeyondAscii = 0xC3;
constexpr unsigned char kPunctuationByte = 0xE2;

bool isAsciiLetterOrDigit(unsigned char c) {
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

bool isContinuation(unsigned char c) {
  return (c & 0xC0) == 0x80;
}

bool startsLetter(unsigned char c) {
  return isAsciiLetterOrDigit(c) || (c >= kFirstByteBeyondAscii && c != kPunctuationByte);
}

/// The word without punctuation around it; empty unless two letters or digits remain.
std::string cleaned(const std::string& text) {
  std::size_t first = text.size();
  std::size_t end = 0;
  int letters = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (!startsLetter(static_cast<unsigned char>(text[i]))) continue;
    ++letters;
    first = std::min(first, i);
    end = i + 1;
    while (end < text.size() && isContinuation(static_cast<unsigned char>(text[end])))
      ++end;
  }
  return letters < 2 ? std::string() : text.substr(first, end - first);
}

bool hasAny(const std::string& text, const char* letters) {
  return text.find_first_of(letters) != std::string::npos;
}

/// Height of a capital in the word's print: small letters reach up to three quarters of it, tails a
/// quarter below the line.
double capHeight(const TextLine& word) {
  const bool isTall = hasAny(word.text, "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZbdfhiklt");
  const bool hasTail = hasAny(word.text, kTails);
  return word.box.height / ((isTall ? 1.0 : 0.75) + (hasTail ? 0.26 : 0.0));
}

/// The same at most: a label before a number may be smaller, so that its tails reach no lower than
/// the number.
double mostCapHeight(const TextLine& word) {
  const std::string last = word.text.substr(word.text.rfind(' ') + 1);
  const bool isNumber = std::ranges::count_if(last, isDigit) >= kLeastDigits;
  return isNumber && !hasAny(last, kTails) ? word.box.height : capHeight(word);
}

/// The height of the holder's data: that of the letter above the small print, by height.
double usualHeight(const std::vector<const TextLine*>& words) {
  std::vector<double> heights;
  for (const TextLine* word : words) {
    heights.insert(heights.end(), characterCount(cleaned(word->text)), capHeight(*word));
  }
  if (heights.empty()) return 0;
  const auto middle =
      heights.begin() + static_cast<std::ptrdiff_t>(kSmallPrintShare * double(heights.size()));
  std::nth_element(heights.begin(), middle, heights.end());
  return *middle;
}

/// Whether the text's middle lies inside the area.
bool isInside(const platform::CGRect& area, const TextLine& text) {
  const double x = text.box.midX();
  const double y = text.box.midY();
  return x >= area.minX() && x < area.maxX() && y >= area.minY() && y < area.maxY();
}

std::vector<const TextLine*> worthKeeping(const std::vector<TextLine>& found,
                                          const std::vector<platform::CGRect>& blanks) {
  std::vector<const TextLine*> kept;
  for (const TextLine& text : found) {
    const bool isBlanked = std::ranges::any_of(
        blanks, [&](const platform::CGRect& blank) { return isInside(blank, text); });
    if (!isBlanked && isSure(text)) kept.push_back(&text);
  }
  const double usual = usualHeight(kept);
  std::erase_if(kept, [&](const TextLine* text) {
    return mostCapHeight(*text) < kLeastHeight * usual || capHeight(*text) > kMostHeight * usual;
  });
  return kept;
}

/// Words on one height.
struct Line {
  double top;
  double bottom;
  std::vector<const TextLine*> words;

  bool takes(const platform::CGRect& box) const {
    const double shared = std::min(bottom, box.maxY()) - std::max(top, box.minY());
    return shared > 0.5 * std::min(bottom - top, box.height);
  }
};

std::string joined(Line line) {
  std::sort(line.words.begin(), line.words.end(),
            [](const TextLine* a, const TextLine* b) { return a->box.minX() < b->box.minX(); });
  std::string text;
  for (const TextLine* word : line.words) {
    if (!text.empty()) text += ' ';
    text += cleaned(word->text);
  }
  return text;
}

}  // namespace

std::string trimmed(const std::string& text) {
  constexpr const char* kBlanks = " \n";
  const auto first = text.find_first_not_of(kBlanks);
  if (first == std::string::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::size_t characterCount(const std::string& text) {
  return static_cast<std::size_t>(std::ranges::count_if(
      text, [](char c) { return !isContinuation(static_cast<unsigned char>(c)); }));
}

bool isSure(const TextLine& word) {
  const std::size_t letters = characterCount(cleaned(word.text));
  return letters > 0 &&
         word.confidence >= (letters <= 2 ? kLeastConfidenceOfPairs : kLeastConfidence);
}

bool runsUpOrDown(const TextLine& line) {
  constexpr double kLeastLength = 0.1 * kCardWidth;
  constexpr double kLeastSlenderness = 2.5;
  return line.box.height >= kLeastLength && line.box.height >= kLeastSlenderness * line.box.width;
}

void sortFromTop(std::vector<TextLine>& lines) {
  std::ranges::stable_sort(lines, {}, [](const TextLine& line) { return line.box.midY(); });
}

bool isAmong(const std::vector<TextLine>& lines, const platform::CGRect& box) {
  return std::ranges::any_of(lines, [&box](const TextLine& line) {
    const platform::CGRect& known = line.box;
    const double across = std::min(known.maxX(), box.maxX()) - std::max(known.minX(), box.minX());
    const double down = std::min(known.maxY(), box.maxY()) - std::max(known.minY(), box.minY());
    return across > 0 && down > 0.5 * std::min(known.height, box.height);
  });
}

std::vector<std::string> textLines(const std::vector<TextLine>& found,
                                   const std::vector<platform::CGRect>& blanks) {
  std::vector<const TextLine*> kept = worthKeeping(found, blanks);
  std::stable_sort(kept.begin(), kept.end(), [](const TextLine* a, const TextLine* b) {
    return a->box.midY() < b->box.midY();
  });
  std::vector<Line> lines;
  for (const TextLine* word : kept) {
    if (lines.empty() || !lines.back().takes(word->box)) {
      lines.push_back({word->box.minY(), word->box.maxY(), {}});
    }
    lines.back().words.push_back(word);
  }
  std::vector<std::string> texts;
  texts.reserve(lines.size());
  for (Line& line : lines)
    texts.push_back(joined(std::move(line)));
  return texts;
}

}  // namespace corvana::engine
