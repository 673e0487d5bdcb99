#include "engine/speech/SpeechModelPaths.h"

#include <array>
#include <fstream>
#include <string>
#include <string_view>

namespace corvana::engine {
namespace {

namespace fs = std::filesystem;

platform::Fault fault(const fs::path& file, const std::string& what) {
  return platform::Fault{"The speech model's file " + file.string() + " " + what +
                         ": install the package pocketsphinx-en-us again."};
}

/// An empty `opening` lets any content pass.
std::optional<platform::Fault> findFault(const fs::path& file, std::string_view opening) {
  std::ifstream stream(file, std::ios::binary);
  std::array<char, 16> head{};
  if (!stream) return fault(file, "is missing or may not be read");
  if (!stream.read(head.data(), head.size())) return fault(file, "is cut short");
  if (std::string_view(head.data(), head.size()).substr(0, opening.size()) != opening)
    return fault(file, "is not of its kind");
  return std::nullopt;
}

}  // namespace

SpeechModelPaths SpeechModelPaths::inFolder(const fs::path& folder) {
  return {folder / "en-us", folder / "cmudict-en-us.dict", folder / "en-us.lm.bin"};
}

std::optional<platform::Fault> SpeechModelPaths::findFault() const {
  struct Expected {
    fs::path file;
    std::string_view opening;
  };
  const std::array<Expected, 8> files{{
      {acousticModel / "feat.params", ""},
      {acousticModel / "mdef", "BMDF"},
      {acousticModel / "means", "s3\n"},
      {acousticModel / "variances", "s3\n"},
      {acousticModel / "transition_matrices", "s3\n"},
      {acousticModel / "sendump", ""},
      {dictionary, ""},
      {languageModel, ""},
  }};
  for (const Expected& expected : files) {
    if (auto found = engine::findFault(expected.file, expected.opening)) return found;
  }
  return std::nullopt;
}

}  // namespace corvana::engine
