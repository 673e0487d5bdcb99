#include "engine/speech/TextLanguageModel.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <sstream>
#include <utility>

namespace corvana::engine {
namespace {

constexpr const char* kStart = "<s>";
constexpr const char* kEnd = "</s>";

/// What each seen pair gives up for the unseen ones (absolute discounting).
constexpr double kDiscount = 0.5;

/// ARPA's stand-in for a probability of zero.
constexpr double kLogZero = -99;

double logOf(double probability) {
  return probability > 0 ? std::log10(probability) : kLogZero;
}

struct Counts {
  std::map<std::string, int> words;
  std::map<std::string, std::map<std::string, int>> followers;
  int total = 0;

  void add(const std::string& before, const std::string& word) {
    ++words[word];
    ++followers[before][word];
    ++total;
  }
  double share(const std::string& word) const {
    const auto found = words.find(word);
    return found == words.end() ? 0 : static_cast<double>(found->second) / total;
  }
};

Counts count(const std::vector<std::string>& words) {
  Counts counts;
  std::string before = kStart;
  for (const std::string& word : words) {
    counts.add(before, word);
    before = word;
  }
  counts.add(before, kEnd);
  return counts;
}

int occurrences(const std::map<std::string, int>& followers) {
  int sum = 0;
  for (const auto& [word, times] : followers)
    sum += times;
  return sum;
}

/// Shares the mass that the seen pairs gave up among the words not seen after this one.
double backoffWeight(const Counts& counts, const std::map<std::string, int>& followers) {
  double unseen = 1;
  for (const auto& [word, times] : followers)
    unseen -= counts.share(word);
  const double freed = kDiscount * static_cast<double>(followers.size()) / occurrences(followers);
  return freed / std::max(unseen, 1e-3);
}

}  // namespace

std::string textLanguageModel(const std::vector<std::string>& words) {
  const Counts counts = count(words);
  std::ostringstream unigrams;
  std::ostringstream bigrams;
  unigrams.imbue(std::locale::classic());
  bigrams.imbue(std::locale::classic());
  std::size_t pairs = 0;
  unigrams << logOf(counts.share(kEnd)) << ' ' << kEnd << " 0\n";
  for (const auto& [before, followers] : counts.followers) {
    unigrams << logOf(counts.share(before)) << ' ' << before << ' '
             << logOf(backoffWeight(counts, followers)) << '\n';
    for (const auto& [word, times] : followers) {
      bigrams << logOf((times - kDiscount) / occurrences(followers)) << ' ' << before << ' ' << word
              << '\n';
      ++pairs;
    }
  }
  std::ostringstream arpa;
  arpa.imbue(std::locale::classic());
  arpa << "\\data\\\nngram 1=" << counts.followers.size() + 1 << "\nngram 2=" << pairs
       << "\n\n\\1-grams:\n"
       << unigrams.str() << "\n\\2-grams:\n"
       << bigrams.str() << "\n\\end\\\n";
  return arpa.str();
}

}  // namespace corvana::engine
