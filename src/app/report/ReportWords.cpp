#include "app/report/ReportWords.h"

#include <algorithm>
#include <system_error>

#include "app/record/Files.h"
#include "app/report/RunFolder.h"

namespace corvana::app {
namespace {

namespace fs = std::filesystem;

constexpr std::uint64_t kMostWordsBytes = 1 << 18;

/// Fills from the left, so that what was filled in is not looked at again.
std::string filled(const std::string& text, ReportWords::Places places) {
  std::string result;
  std::size_t at = 0;
  while (at < text.size()) {
    const auto place = std::ranges::find_if(places, [&](const auto& candidate) {
      return text.compare(at, std::char_traits<char>::length(candidate.first) + 2,
                          "{" + std::string(candidate.first) + "}") == 0;
    });
    if (place == places.end()) {
      result += text[at++];
    } else {
      result += place->second;
      at += std::char_traits<char>::length(place->first) + 2;
    }
  }
  return result;
}

}  // namespace

std::vector<std::string> ReportWords::languagesIn(const fs::path& folder) {
  std::vector<std::string> codes;
  std::error_code error;
  for (const auto& entry : fs::directory_iterator(folder, error)) {
    if (entry.path().extension() == ".json") codes.push_back(entry.path().stem().string());
  }
  std::ranges::sort(codes);
  return codes;
}

platform::Expected<ReportWords> ReportWords::load(const fs::path& folder,
                                                  const std::string& language) {
  const auto codes = languagesIn(folder);
  if (std::ranges::find(codes, language) == codes.end()) {
    std::string known;
    for (const std::string& code : codes)
      known += (known.empty() ? "" : ", ") + code;
    return platform::failure("There is no report in the language " + inQuotes(language) +
                             "; choose from " + known + ".");
  }
  const fs::path file = folder / (language + ".json");
  const auto text = readFile(file, kMostWordsBytes);
  if (!text) return tl::unexpected(text.error());
  auto words = parseJson(*text, file.string());
  if (!words) return tl::unexpected(words.error());
  ReportWords result;
  result.words_ = std::move(*words);
  return result;
}

std::string ReportWords::of(const std::string& key, Places places) const {
  return filled(textIn(words_, key.c_str()).value_or(key), places);
}

std::string ReportWords::name(const char* group, const std::string& name, Places places) const {
  const auto words = textIn(words_, (std::string(group) + "." + name).c_str());
  return words ? filled(*words, places) : name;
}

}  // namespace corvana::app
