#include "engine/speech/Pronouncer.h"

#include <algorithm>
#include <cctype>
#include <mutex>

#include <flite/flite.h>

// Flite's headers leave the declaration of a language and a lexicon to their user.
extern "C" {
void usenglish_init(cst_voice* voice);
cst_lexicon* cmulex_init(void);
}

namespace corvana::engine {
namespace {

/// The lexicon is one static object of the library, which its first user completes.
cst_lexicon* lexicon() {
  static std::once_flag once;
  static cst_lexicon* shared = nullptr;
  std::call_once(once, [] { shared = cmulex_init(); });
  return shared;
}

bool isDigit(char c) {
  return std::isdigit(static_cast<unsigned char>(c)) != 0;
}

/// The text with a space between groups of `size` characters.
std::string grouped(const std::string& text, std::size_t size) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (i > 0 && i % size == 0) result += ' ';
    result += text[i];
  }
  return result;
}

bool isCapital(char c) {
  return std::isupper(static_cast<unsigned char>(c)) != 0;
}

bool isLetter(char c) {
  return std::isalpha(static_cast<unsigned char>(c)) != 0;
}

std::string lowercase(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return text;
}

/// Flite's American phones are ARPABET in lower case, but for its unstressed vowel.
std::string arpabet(std::string phone) {
  std::erase_if(phone, isDigit);  // The lexicon marks stress by a digit.
  if (phone == "ax") return "AH";
  std::transform(phone.begin(), phone.end(), phone.begin(),
                 [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
  return phone;
}

void append(std::string& phones, const char* phone) {
  if (!phones.empty()) phones += ' ';
  phones += arpabet(phone);
}

/// The word as one word, where text analysis would spell out what looks unpronounceable.
std::string lexiconPhones(const std::string& word) {
  std::string result;
  cst_val* list = lex_lookup(lexicon(), word.c_str(), nullptr, nullptr);
  for (const cst_val* rest = list; rest; rest = val_cdr(rest))
    append(result, val_string(val_car(rest)));
  delete_val(list);
  return result;
}

}  // namespace

struct Pronouncer::Voice {
  cst_voice* handle = new_voice();
  ~Voice() { delete_voice(handle); }
};

Pronouncer::Pronouncer() : voice_(std::make_unique<Voice>()) {
  usenglish_init(voice_->handle);
  feat_set(voice_->handle->features, "lexicon", lexicon_val(lexicon()));
}

Pronouncer::~Pronouncer() = default;

std::string Pronouncer::analysedPhones(const std::string& text) const {
  cst_utterance* utterance = new_utterance();
  utt_set_input_text(utterance, text.c_str());
  utt_init(utterance, voice_->handle);
  default_tokenization(utterance);
  default_textanalysis(utterance);
  default_phrasing(utterance);
  default_pos_tagger(utterance);
  default_lexical_insertion(utterance);
  std::string result;
  for (cst_item* item = relation_head(utt_relation(utterance, "Segment")); item;
       item = item_next(item)) {
    append(result, item_feat_string(item, "name"));
  }
  delete_utterance(utterance);
  return result;
}

std::vector<std::string> Pronouncer::pronunciations(const std::string& asciiWord) const {
  const auto all = [&](bool (*is)(char)) {
    return std::all_of(asciiWord.begin(), asciiWord.end(), is);
  };
  std::vector<std::string> sounds;
  if (all(isLetter)) sounds.push_back(lexiconPhones(lowercase(asciiWord)));
  sounds.push_back(analysedPhones(asciiWord));
  if (asciiWord.size() == 4 && all(isDigit))
    sounds.push_back(analysedPhones(grouped(asciiWord, 2)));
  if (all(isDigit) || all(isCapital)) sounds.push_back(analysedPhones(grouped(asciiWord, 1)));
  std::vector<std::string> distinct;
  for (std::string& sound : sounds) {
    if (!sound.empty() && std::find(distinct.begin(), distinct.end(), sound) == distinct.end())
      distinct.push_back(std::move(sound));
  }
  return distinct;
}

}  // namespace corvana::engine
