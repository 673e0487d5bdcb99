#pragma once

#include <memory>
#include <string>
#include <vector>

namespace corvana::engine {

/// Says how a word that no dictionary holds sounds, by Flite's text analysis, lexicon and
/// letter-to-sound rules for American English: names, numbers and abbreviations alike.
/// One thread at a time.
class Pronouncer {
 public:
  Pronouncer();
  ~Pronouncer();
  Pronouncer(const Pronouncer&) = delete;
  Pronouncer& operator=(const Pronouncer&) = delete;

  /// Pronunciations in ARPABET without stress ("HH AH L OW"): a name may be spoken or spelt out, a
  /// number read as a quantity, in pairs or digit by digit. Empty when the word has no sound.
  std::vector<std::string> pronunciations(const std::string& asciiWord) const;

 private:
  std::string analysedPhones(const std::string& text) const;

  struct Voice;
  std::unique_ptr<Voice> voice_;
};

}  // namespace corvana::engine
