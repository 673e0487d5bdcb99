#pragma once

#include <string>
#include <vector>

namespace corvana::engine {

/// A bigram language model of the words in their order, in ARPA format. Pairs that the text lacks
/// fall back to the words' own shares, so a reader may skip, repeat and pause. Needs one word.
std::string textLanguageModel(const std::vector<std::string>& words);

}  // namespace corvana::engine
