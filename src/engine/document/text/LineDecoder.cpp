#include "engine/document/text/LineDecoder.h"

#include <algorithm>
#include <utility>

#include <unicode/uchar.h>
#include <unicode/unistr.h>

namespace corvana::engine {
namespace {

// Measured on print of 400 to 1,200 pixels a card.

/// Of a pause between two letters, letters with marks have 0.006 at most; where one was taken for a
/// pause, since the network hardly knows it, 0.03 and more.
constexpr float kHiddenLetter = 0.02F;
/// Beside a P the network gives a thorn less than 0.0005, beside a thorn that it takes for a P at
/// least 0.004.
constexpr float kThorn = 0.002F;
/// Beside a C with a caron less than 0.0005 of a G with a breve, beside that G at least 0.002.
constexpr float kBreve = 0.0015F;
/// Beside a 6 less than 0.001 of a G (997 of them), beside a G of a zone that it takes for a 6 at
/// least 0.07.
constexpr float kZonesG = 0.01F;

/// Where a letter of a name was misread the right one has 0.01 and more; beside digits that were
/// changed the ones before have less than 0.0003.
constexpr float kPossible = 0.005F;
/// At the rims of letters pauses and the letters beside them have shares too.
constexpr float kPossiblyLeftOut = 0.1F;

constexpr UChar32 kLastOfAscii = 0x7F;

bool isLetterWithMark(const std::string& letter) {
  const UChar32 c = icu::UnicodeString::fromUTF8(letter).char32At(0);
  return c > kLastOfAscii && u_isalpha(c) != 0;
}

/// Puts letters together to words.
class Words {
 public:
  void add(const std::string& letter, std::size_t answer) {
    const bool isBlank = letter == " ";
    if (!isBlank && isAfterBlank_) found_.emplace_back(answer, answer);
    if (!isBlank) found_.back().second = answer;
    isAfterBlank_ = isBlank;
  }
  std::vector<std::pair<std::size_t, std::size_t>> found() && { return std::move(found_); }

 private:
  std::vector<std::pair<std::size_t, std::size_t>> found_;
  bool isAfterBlank_ = true;
};

}  // namespace

LineDecoder::LineDecoder(std::vector<std::string> letters) : letters_(std::move(letters)) {
  isMarked_.push_back(false);
  for (const std::string& letter : letters_)
    isMarked_.push_back(isLetterWithMark(letter));
  addLookalike("P", "Þ", {"Þ", "þ"}, kThorn);
  addLookalike("p", "þ", {"Þ", "þ"}, kThorn);
  addLookalike("Č", "Ğ", {"Ğ", "ğ"}, kBreve);
  addLookalike("č", "ğ", {"Ğ", "ğ"}, kBreve);
  addLookalike("6", "G", {"G"}, kZonesG);
}

std::optional<std::size_t> LineDecoder::indexOf(const std::string& letter) const {
  const auto found = std::ranges::find(letters_, letter);
  if (found == letters_.end()) return std::nullopt;
  return static_cast<std::size_t>(found - letters_.begin()) + 1;
}

void LineDecoder::addLookalike(const std::string& letter, const std::string& rare,
                               const std::vector<std::string>& signs, float least) {
  const auto seen = indexOf(letter);
  const auto meant = indexOf(rare);
  if (!seen || !meant) return;
  Lookalike lookalike{*seen, *meant, {}, least};
  for (const std::string& sign : signs)
    if (const auto index = indexOf(sign)) lookalike.signs.push_back(*index);
  lookalikes_.push_back(std::move(lookalike));
}

LineDecoder::Letter LineDecoder::likeliest(std::span<const float> answer,
                                           bool isPauseAllowed) const {
  const auto from = answer.begin() + (isPauseAllowed ? 0 : 1);
  const auto best = std::max_element(from, answer.end());
  return {static_cast<std::size_t>(best - answer.begin()), *best};
}

LineDecoder::Letter LineDecoder::rareInPlaceOf(Letter seen, std::span<const float> answer) const {
  const auto lookalike = std::ranges::find(lookalikes_, seen.index, &Lookalike::letter);
  if (lookalike == lookalikes_.end()) return seen;
  float share = 0;
  for (const std::size_t sign : lookalike->signs)
    share += answer[sign];
  return share >= lookalike->least ? Letter{lookalike->rare, share} : seen;
}

bool LineDecoder::hidesALetter(std::span<const float> pause) const {
  float marked = 0;
  for (std::size_t i = 1; i < pause.size(); ++i)
    if (isMarked_[i]) marked += pause[i];
  return marked >= kHiddenLetter;
}

/// What may stand in place of a letter that the answer gives.
void LineDecoder::addOthers(std::span<const float> answer, LineDoubts& doubts) const {
  for (std::size_t k = 1; k < answer.size(); ++k)
    if (answer[k] >= kPossible) doubts.addOther(letters_[k - 1], answer[k]);
}

/// What is known of a line on the way along it.
struct LineDecoder::Draft {
  std::string text;
  Words words;
  LineDoubts doubts;
  std::vector<float> shares;  ///< of letters that the network itself gives
  float leastHidden = 1;      ///< of those that it took for pauses

  void append(const std::string& letter, std::size_t at) {
    text += letter;
    words.add(letter, at);
    doubts.add(letter);
  }
};

void LineDecoder::readLetter(const Around& around, std::span<const float> answer,
                             Draft& draft) const {
  // Connectionist temporal classification: what is repeated without a pause stands once.
  const bool isNew = around.seen.index != around.before;
  if (isNew) {
    const Letter letter = rareInPlaceOf(around.seen, answer);
    draft.append(letters_[letter.index - 1], around.at);
    draft.shares.push_back(letter.share);
  }
  addOthers(answer, draft.doubts);
  const bool mayBeNone =
      isNew && around.seen.index != around.after && answer[0] >= kPossiblyLeftOut;
  if (mayBeNone) draft.doubts.addOther({}, answer[0]);
}

void LineDecoder::readPause(const Around& around, std::span<const float> answer,
                            Draft& draft) const {
  const Letter letter = likeliest(answer, false);
  const bool isLonely = around.isWithin && around.before == 0 && around.after == 0;
  const bool isNeighbours = letter.index == around.before || letter.index == around.after;
  if (isLonely && hidesALetter(answer)) {
    draft.append(letters_[letter.index - 1], around.at);
    addOthers(answer, draft.doubts);
    draft.leastHidden = std::min(draft.leastHidden, letter.share);
  } else if (letter.share >= kPossiblyLeftOut && !isNeighbours) {
    draft.doubts.add({});
    draft.doubts.addOther(letters_[letter.index - 1], letter.share);
  }
}

LineReading LineDecoder::read(std::span<const float> answers) const {
  const std::size_t count = answers.size() / classes();
  const auto answer = [&](std::size_t i) { return answers.subspan(i * classes(), classes()); };
  std::vector<Letter> path;
  for (std::size_t i = 0; i < count; ++i)
    path.push_back(likeliest(answer(i), true));

  Draft draft;
  for (std::size_t i = 0; i < count; ++i) {
    const Around around{.at = i,
                        .before = i == 0 ? 0 : path[i - 1].index,
                        .seen = path[i],
                        .after = i + 1 == count ? 0 : path[i + 1].index,
                        .isWithin = i > 0 && i + 1 < count};
    if (path[i].index == 0) {
      readPause(around, answer(i), draft);
    } else {
      readLetter(around, answer(i), draft);
    }
  }
  if (draft.shares.empty()) return {};
  LineReading reading{.text = std::move(draft.text),
                      .words = std::move(draft.words).found(),
                      .others = draft.doubts.otherTexts()};
  for (const float share : draft.shares)
    reading.confidence += share / static_cast<double>(draft.shares.size());
  reading.leastConfident = std::min(draft.leastHidden, *std::ranges::min_element(draft.shares));
  return reading;
}

}  // namespace corvana::engine
