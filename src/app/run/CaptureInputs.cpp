#include "app/run/CaptureInputs.h"

#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include "app/settings/OptionTable.h"

namespace corvana::app {
namespace {

namespace fs = std::filesystem;

constexpr std::uint64_t kMostOptionsBytes = 1 << 16;
constexpr int kMostNumberedFolders = 10000;

bool isUtf8(const std::string& text) {
  std::string back;
  icu::UnicodeString::fromUTF8(text).toUTF8String(back);
  return back == text;
}

bool hasLetter(const std::string& text) {
  const auto unicode = icu::UnicodeString::fromUTF8(text);
  for (int i = 0; i < unicode.length(); i = unicode.moveIndex32(i, 1)) {
    if (u_isalnum(unicode.char32At(i))) return true;
  }
  return false;
}

Expected<std::string> checkText(const CaptureArguments& arguments) {
  std::string text = arguments.text.value_or("");
  if (arguments.textFile) {
    auto content = readFile(*arguments.textFile, kMostTextBytes);
    if (!content) return tl::unexpected(content.error());
    text = std::move(*content);
  }
  while (!text.empty() && (text.back() == '\n' || text.back() == '\r'))
    text.pop_back();
  if (text.size() > kMostTextBytes) {
    return platform::failure("The text is longer than 8000 bytes; give a shorter one.");
  }
  if (!isUtf8(text)) return platform::failure("The text is not valid UTF-8; save it so.");
  if (!hasLetter(text)) {
    return platform::failure("The text holds no word to read aloud; give a sentence.");
  }
  return text;
}

Expected<void> setOptions(const std::optional<fs::path>& file) {
  if (!file) return {};
  const auto content = readFile(*file, kMostOptionsBytes);
  if (!content) return tl::unexpected(content.error());
  const auto object = parseJson(*content, file->string());
  if (!object) return tl::unexpected(object.error());
  return applyOptions(*object);
}

Expected<fs::path> chooseFolder(const std::optional<fs::path>& wanted) {
  if (wanted) {
    if (auto checked = checkEmptyFolder(*wanted); !checked) return tl::unexpected(checked.error());
    return *wanted;
  }
  for (int number = 1; number < kMostNumberedFolders; ++number) {
    const fs::path folder = "videoid-run-" + std::to_string(number);
    if (!fs::exists(folder)) return folder;
  }
  return platform::failure("This folder is full of runs; name one with --output.");
}

}  // namespace

Expected<CaptureInputs> checkInputs(const CaptureArguments& arguments) {
  CaptureInputs inputs;
  if (auto set = setOptions(arguments.options); !set) return tl::unexpected(set.error());
  auto text = checkText(arguments);
  if (!text) return tl::unexpected(text.error());
  inputs.text = std::move(*text);
  auto reference = loadReference(arguments.reference);
  if (!reference) return tl::unexpected(reference.error());
  inputs.reference = std::move(*reference);
  auto media = chooseMedia(arguments.source, arguments.videoCodec);
  if (!media) return tl::unexpected(media.error());
  inputs.openMedia = std::move(*media);
  auto folder = chooseFolder(arguments.output);
  if (!folder) return tl::unexpected(folder.error());
  inputs.folder = std::move(*folder);
  return inputs;
}

}  // namespace corvana::app
