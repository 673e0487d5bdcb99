// How long the module compares texts on the main queue, beside the least that the same work can
// cost.

#include "capture/TextMatching.h"

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

namespace corvana {
namespace {

/// Text as it stands on cards, one letter in ten with a mark.
std::string cardText(std::int64_t characters, unsigned seed) {
  static const std::vector<std::string> kMarked = {"Ä", "É", "Ł", "Ş", "Ö"};
  std::mt19937 random(seed);
  std::string text;
  for (std::int64_t i = 0; i < characters; ++i) {
    const unsigned draw = random();
    if (draw % 10 == 0) {
      text += kMarked[draw / 10 % kMarked.size()];
    } else {
      text += static_cast<char>(draw / 10 % 7 == 0 ? ' ' : 'A' + draw / 70 % 26);
    }
  }
  return text;
}

std::vector<int> numbers(std::int64_t count, unsigned seed) {
  std::mt19937 random(seed);
  std::vector<int> result(static_cast<std::size_t>(count));
  std::generate(result.begin(), result.end(), [&] { return static_cast<int>(random() % 31); });
  return result;
}

/// The same two rows, over numbers that are there already.
int plainDistance(const std::vector<int>& a, const std::vector<int>& b) {
  std::vector<int> last(b.size() + 1);
  std::vector<int> current(b.size() + 1);
  std::iota(last.begin(), last.end(), 0);
  for (std::size_t i = 0; i < a.size(); ++i) {
    current[0] = static_cast<int>(i) + 1;
    for (std::size_t j = 0; j < b.size(); ++j)
      current[j + 1] = a[i] == b[j] ? last[j] : std::min({last[j], last[j + 1], current[j]}) + 1;
    std::swap(last, current);
  }
  return last.back();
}

void editDistance(benchmark::State& state) {
  const std::string a = cardText(state.range(0), 1);
  const std::string b = cardText(state.range(0), 2);
  for (auto _ : state)
    benchmark::DoNotOptimize(capture::levenshteinDistance(a, b));
}
BENCHMARK(editDistance)->Arg(100)->Arg(300)->Arg(1000)->Arg(3000)->Unit(benchmark::kMicrosecond);

void editDistanceOfNumbers(benchmark::State& state) {
  const std::vector<int> a = numbers(state.range(0), 1);
  const std::vector<int> b = numbers(state.range(0), 2);
  for (auto _ : state)
    benchmark::DoNotOptimize(plainDistance(a, b));
}
BENCHMARK(editDistanceOfNumbers)
    ->Arg(100)
    ->Arg(300)
    ->Arg(1000)
    ->Arg(3000)
    ->Unit(benchmark::kMicrosecond);

std::vector<std::string> wordsToRead(std::int64_t count) {
  std::mt19937 random(3);
  std::vector<std::string> words(static_cast<std::size_t>(count));
  for (std::string& word : words)
    for (unsigned left = 3 + random() % 6; left > 0; --left)
      word += static_cast<char>('a' + random() % 26);
  return words;
}

std::string joined(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words)
    text += (text.empty() ? "" : " ") + word;
  return text;
}

void spokenWords(benchmark::State& state) {
  const std::vector<std::string> words = wordsToRead(state.range(0));
  const std::string text = joined(words);
  for (auto _ : state)
    benchmark::DoNotOptimize(capture::matchSpokenWords(words, text));
}
BENCHMARK(spokenWords)->Arg(32)->Arg(320)->Unit(benchmark::kMicrosecond);

/// One search for each word, over bytes, in a text from which nothing is taken away.
void spokenWordsInBytes(benchmark::State& state) {
  const std::vector<std::string> words = wordsToRead(state.range(0));
  const std::string text = joined(words);
  for (auto _ : state)
    for (const std::string& word : words)
      benchmark::DoNotOptimize(text.find(word));
}
BENCHMARK(spokenWordsInBytes)->Arg(32)->Arg(320)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace corvana
