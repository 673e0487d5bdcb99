#include "engine/document/TextLines.h"

#include <algorithm>
#include <cstddef>

namespace engine {
namespace {

/// Words below it differ from picture to picture.
constexpr double kMinConfidence = 60;
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

/// Words on one height.
struct Line {
  double top;
  double bottom;
  std::vector<const TextWord*> words;

  bool takes(const platform::CGRect& box) const {
    const double shared = std::min(bottom, box.maxY()) - std::max(top, box.minY());
    return shared > 0.5 * std::min(bottom - top, box.height);
  }
};

std::string joined(Line line) {
  std::sort(line.words.begin(), line.words.end(),
            [](const TextWord* a, const TextWord* b) { return a->box.minX() < b->box.minX(); });
  std::string text;
  for (const TextWord* word : line.words) {
    if (!text.empty()) text += ' ';
    text += cleaned(word->text);
  }
  return text;
}

}  // namespace

std::vector<std::string> textLines(const std::vector<TextWord>& words) {
  std::vector<const TextWord*> kept;
  for (const TextWord& word : words) {
    if (word.confidence >= kMinConfidence && !cleaned(word.text).empty()) kept.push_back(&word);
  }
  std::stable_sort(kept.begin(), kept.end(), [](const TextWord* a, const TextWord* b) {
    return a->box.midY() < b->box.midY();
  });
  std::vector<Line> lines;
  for (const TextWord* word : kept) {
    if (lines.empty() || !lines.back().takes(word->box)) {
      lines.push_back({word->box.minY(), word->box.maxY(), {}});
    }
    lines.back().words.push_back(word);
  }
  std::vector<std::string> texts;
  for (Line& line : lines)
    texts.push_back(joined(std::move(line)));
  return texts;
}

}  // namespace engine
