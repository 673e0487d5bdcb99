#include "engine/document/fields/PartedLines.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <limits>
#include <optional>
#include <string>
#include <utility>

#include "engine/document/kinds/LabelFile.h"

namespace corvana::engine {
namespace {

/// How far the beginnings of a label and of its value may lie apart, in heights of the line.
constexpr double kAligned = 0.8;
/// How far below its label a value stands at most, in heights of the taller of both.
constexpr double kMostBelow = 1.2;

using Tokens = std::vector<std::string>;

std::string joined(const Tokens& tokens, std::size_t from, std::size_t to) {
  std::string text;
  for (std::size_t i = from; i < to; ++i)
    text += (i == from ? "" : " ") + tokens[i];
  return text;
}

/// A line whose words' places are known.
struct PlacedLine {
  const TextLine& line;
  Tokens tokens;

  std::size_t size() const { return tokens.size(); }
  /// Between a word's outer letters' middles and its ends.
  double rim() const { return std::max(0.0, line.words.front().from - line.box.minX()); }
  double left(std::size_t word) const { return line.words[word].from - rim(); }
  double gapBefore(std::size_t word) const {
    return line.words[word].from - line.words[word - 1].to;
  }
  TextLine part(std::size_t from, std::size_t to) const {
    const double begin = from == 0 ? line.box.minX() : left(from);
    const double end = to == size() ? line.box.maxX() : line.words[to - 1].to + rim();
    TextLine result = line;
    result.text = joined(tokens, from, to);
    result.box.x = begin;
    result.box.width = end - begin;
    result.words = {line.words.begin() + static_cast<std::ptrdiff_t>(from),
                    line.words.begin() + static_cast<std::ptrdiff_t>(to)};
    return result;
  }
};

std::optional<PlacedLine> placed(const TextLine& line) {
  Tokens tokens = wordsBetweenBlanks(line.text);
  if (tokens.size() < 2 || tokens.size() != line.words.size()) return std::nullopt;
  return PlacedLine{line, std::move(tokens)};
}

bool isStroke(char c) {
  return c == '/' || c == '|';
}

/// Strokes part the languages of one label; a lone one may be read as a letter.
bool isAtStroke(const Tokens& tokens, std::size_t place) {
  const std::string& before = tokens[place - 1];
  const std::string& after = tokens[place];
  return isStroke(after.front()) || isStroke(before.back()) || isLikeStroke(before) ||
         isLikeStroke(after);
}

/// The words from one place to another, without what strokes part from them in the outer ones: of
/// "Datum narození/Date" the first two words.
std::string betweenStrokes(const Tokens& tokens, std::size_t from, std::size_t to) {
  constexpr const char* kStrokes = "/|";
  Tokens inner(tokens.begin() + static_cast<std::ptrdiff_t>(from),
               tokens.begin() + static_cast<std::ptrdiff_t>(to));
  inner.front().erase(0, inner.front().find_last_of(kStrokes) + 1);
  inner.back().resize(std::min(inner.back().find_first_of(kStrokes), inner.back().size()));
  return joined(inner, 0, inner.size());
}

/// Whether a label has words on both sides of the place, so that nothing begins there.
bool isWithinLabel(const Tokens& tokens, std::size_t place, const FieldLabels& labels) {
  for (std::size_t from = 0; from < place; ++from) {
    for (std::size_t to = place + 1; to <= tokens.size() && to - from <= kMostLabelWords; ++to) {
      if (labels.isLabel(joined(tokens, from, to))) return true;
      if (labels.isLabel(betweenStrokes(tokens, from, to))) return true;
    }
  }
  return false;
}

/// What begins at a place within a line.
enum class Beginning { nothing, label, labelAndValue };

Beginning beginningAt(const Tokens& tokens, std::size_t place, const FieldLabels& labels,
                      const ValueReader& read) {
  if (isAtStroke(tokens, place)) return Beginning::nothing;
  const auto before = labels.labelledText(joined(tokens, 0, place));
  const auto after = labels.labelledText(joined(tokens, place, tokens.size()));
  if (!before || !after || !before->hasWords || !after->hasWords || before->name == after->name)
    return Beginning::nothing;
  if (isWithinLabel(tokens, place, labels)) return Beginning::nothing;
  if (before->rest.empty()) return Beginning::label;
  // A name may look like a label, but no value follows it.
  const bool hasValues = before->name && after->name && read(*before->name, before->rest) &&
                         !after->rest.empty() && read(*after->name, after->rest);
  return hasValues ? Beginning::labelAndValue : Beginning::nothing;
}

bool isRightBelow(const platform::CGRect& label, const platform::CGRect& text) {
  const double drop = text.minY() - label.maxY();
  const double height = std::max(label.height, text.height);
  return text.midY() > label.maxY() && drop < kMostBelow * height;
}

/// How far the word is from the beginning of a line of print below, in heights.
double misalignment(const PlacedLine& line, std::size_t word, const std::vector<TextLine>& lines) {
  double least = std::numeric_limits<double>::max();
  for (const TextLine& other : lines) {
    if (!isRightBelow(line.line.box, other.box)) continue;
    least = std::min(least, std::abs(other.box.minX() - line.left(word)) / line.line.box.height);
  }
  return least;
}

/// Where a second label begins in a line of labels: above a value, or else behind the widest gap.
std::size_t likeliest(const PlacedLine& line, const std::vector<std::size_t>& places,
                      const std::vector<TextLine>& lines) {
  const auto apart = [&](std::size_t word) { return misalignment(line, word, lines); };
  const auto above = std::ranges::min_element(places, {}, apart);
  if (apart(*above) < kAligned) return *above;
  return *std::ranges::max_element(places, {},
                                   [&](std::size_t word) { return line.gapBefore(word); });
}

/// The word with which another label begins: the last one's with its value, or of labels alone the
/// likeliest.
std::optional<std::size_t> otherLabel(const PlacedLine& line, const std::vector<TextLine>& lines,
                                      const FieldLabels& labels, const ValueReader& read) {
  std::vector<std::size_t> places;
  for (std::size_t place = line.size() - 1; place > 0; --place) {
    const Beginning beginning = beginningAt(line.tokens, place, labels, read);
    if (beginning == Beginning::labelAndValue) return place;
    if (beginning == Beginning::label) places.push_back(place);
  }
  if (places.empty()) return std::nullopt;
  return likeliest(line, places, lines);
}

std::vector<TextLine> partedLabels(const TextLine& line, const std::vector<TextLine>& lines,
                                   const FieldLabels& labels, const ValueReader& read) {
  const auto words = placed(line);
  const auto place = words ? otherLabel(*words, lines, labels, read) : std::nullopt;
  if (!place) return {line};
  std::vector<TextLine> parts = partedLabels(words->part(0, *place), lines, labels, read);
  std::ranges::move(partedLabels(words->part(*place, words->size()), lines, labels, read),
                    std::back_inserter(parts));
  return parts;
}

/// Where the labels of fields begin that stand side by side right above a line, from the left. What
/// a label says in one language may stand above what it says in another.
std::vector<double> labelsAbove(const platform::CGRect& text, const std::vector<TextLine>& lines,
                                const FieldLabels& labels) {
  std::vector<double> beginnings;
  for (const TextLine& line : lines) {
    const bool reaches =
        line.box.minX() > text.minX() - text.height && line.box.minX() < text.maxX() - text.height;
    if (!reaches || !isRightBelow(line.box, text)) continue;
    const auto label = labels.labelledText(line.text);
    if (label && label->hasWords && label->name && label->rest.empty())
      beginnings.push_back(line.box.minX());
  }
  std::ranges::sort(beginnings);
  const auto isOneColumn = [&](double a, double b) { return b - a <= kAligned * text.height; };
  beginnings.erase(std::unique(beginnings.begin(), beginnings.end(), isOneColumn),
                   beginnings.end());
  return beginnings;
}

/// A line of print below labels parted where they begin; nothing where no word begins there. A
/// single word is no more than one value.
std::vector<TextLine> partedValues(const TextLine& line, const std::vector<TextLine>& lines,
                                   const FieldLabels& labels) {
  const std::vector<double> beginnings = labelsAbove(line.box, lines, labels);
  if (beginnings.size() < 2 || labels.labelledText(line.text)) return {line};
  const auto words = placed(line);
  if (!words) return {line};
  std::vector<TextLine> parts;
  std::size_t from = 0;
  for (auto label = std::next(beginnings.begin()); label != beginnings.end(); ++label) {
    std::size_t to = from + 1;
    while (to < words->size() && std::abs(words->left(to) - *label) > kAligned * line.box.height)
      ++to;
    if (to == words->size()) return {};
    parts.push_back(words->part(from, to));
    from = to;
  }
  parts.push_back(words->part(from, words->size()));
  return parts;
}

}  // namespace

std::vector<TextLine> partedLines(const std::vector<TextLine>& lines, const FieldLabels& labels,
                                  const ValueReader& read) {
  std::vector<TextLine> parted;
  for (const TextLine& line : lines)
    std::ranges::move(partedLabels(line, lines, labels, read), std::back_inserter(parted));
  std::vector<TextLine> result;
  for (const TextLine& line : parted)
    std::ranges::move(partedValues(line, parted, labels), std::back_inserter(result));
  return result;
}

}  // namespace corvana::engine
