#include "app/run/CaptureInputs.h"

#include <algorithm>
#include <functional>
#include <future>
#include <vector>

#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include "app/privacy/Consent.h"
#include "app/settings/OptionTable.h"

namespace corvana::app {
namespace {

namespace fs = std::filesystem;
using nlohmann::ordered_json;

constexpr std::uint64_t kMostOptionsBytes = 1 << 16;
constexpr int kMostNumberedFolders = 10000;
constexpr std::size_t kLongestName = 200;

bool isUtf8(const std::string& text) {
  std::string back;
  icu::UnicodeString::fromUTF8(text).toUTF8String(back);
  return back == text;
}

bool hasAny(const std::string& text, bool (*is)(UChar32)) {
  const auto unicode = icu::UnicodeString::fromUTF8(text);
  for (int i = 0; i < unicode.length(); i = unicode.moveIndex32(i, 1)) {
    if (is(unicode.char32At(i))) return true;
  }
  return false;
}

bool isLetter(UChar32 character) {
  return u_isalnum(character) != 0;
}

bool isControl(UChar32 character) {
  return u_charType(character) == U_CONTROL_CHAR && u_isspace(character) == 0;
}

void dropLastBreaks(std::string& text) {
  while (!text.empty() && (text.back() == '\n' || text.back() == '\r'))
    text.pop_back();
}

Expected<std::string> checkText(const CaptureArguments& arguments) {
  std::string text = arguments.text.value_or("");
  if (arguments.textFile) {
    auto content = readText(*arguments.textFile);
    if (!content) return content;
    text = std::move(*content);
  }
  dropLastBreaks(text);
  if (text.size() > kMostTextBytes) {
    return platform::failure("The text is longer than 8000 bytes; give a shorter one.");
  }
  if (!isUtf8(text)) return platform::failure("The text is not valid UTF-8; save it so.");
  if (hasAny(text, isControl)) {
    return platform::failure("The text holds a control character; save it as plain text.");
  }
  if (!hasAny(text, isLetter)) {
    return platform::failure("The text holds no word to read aloud; give a sentence.");
  }
  return text;
}

Expected<void> checkName(const char* option, const std::optional<std::string>& name) {
  if (!name) return {};
  const bool isPrintable = std::ranges::all_of(
      *name, [](char letter) { return static_cast<unsigned char>(letter) >= ' '; });
  if (!name->empty() && name->size() <= kLongestName && isPrintable && isUtf8(*name)) return {};
  return platform::failure(std::string(option) + " must be 1 to " + std::to_string(kLongestName) +
                           " bytes of UTF-8 without control characters.");
}

Expected<std::optional<SigningKey>> loadKey(const std::optional<fs::path>& file) {
  if (!file) return std::optional<SigningKey>();
  return SigningKey::load(*file).map([](SigningKey key) { return std::optional(std::move(key)); });
}

Expected<std::optional<std::string>> loadConsent(const CaptureArguments& arguments) {
  if (arguments.consent) {
    return readConsent(*arguments.consent).map([](std::string bytes) {
      return std::optional(std::move(bytes));
    });
  }
  if (!arguments.requiresConsent) return std::optional<std::string>();
  return platform::failure(
      "Give the record of the person's consent with --consent; nothing is recorded without it.");
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

Expected<void> setOptions(const std::optional<fs::path>& file) {
  if (!file) return {};
  const auto content = readFile(*file, kMostOptionsBytes);
  if (!content) return tl::unexpected(content.error());
  const auto object = parseJson(*content, file->string());
  if (!object) return tl::unexpected(object.error());
  return applyOptions(*object);
}

Expected<ordered_json> sumsOfReference(const fs::path& folder) {
  std::vector<fs::path> files;
  std::error_code error;
  for (const auto& entry : fs::directory_iterator(folder, error)) {
    if (entry.is_regular_file(error)) files.push_back(entry.path());
  }
  std::ranges::sort(files);
  return sumsOf(files);
}

Expected<std::string> readText(const fs::path& file) {
  constexpr std::string_view kByteOrderMark = "\xef\xbb\xbf";  // that some editors begin with
  auto text = readFile(file, kMostTextBytes);
  if (text && text->starts_with(kByteOrderMark)) text->erase(0, kByteOrderMark.size());
  if (text) dropLastBreaks(*text);
  return text;
}

Expected<CaptureInputs> checkInputs(const CaptureArguments& arguments) {
  CaptureInputs inputs;
  auto referenceRead =
      std::async(std::launch::async, loadReference, std::cref(arguments.reference));
  // The media library looks into a recording while the rest is read. A live camera is asked last:
  // how much the machine has time for is measured for it.
  const bool isRecording = arguments.source.isRecording();
  Expected<MediaOpener> media;
  if (isRecording) media = chooseMedia(arguments.source, arguments.videoCodec);
  if (auto set = setOptions(arguments.options); !set) return tl::unexpected(set.error());
  auto text = checkText(arguments);
  if (!text) return tl::unexpected(text.error());
  inputs.text = std::move(*text);
  auto reference = referenceRead.get();
  if (!reference) return tl::unexpected(reference.error());
  inputs.reference = std::move(*reference);
  auto sums = sumsOfReference(arguments.reference);
  if (!sums) return tl::unexpected(sums.error());
  inputs.referenceSums = std::move(*sums);
  for (const auto& checked : {checkName("--session-id", arguments.sessionId),
                              checkName("--subject", arguments.subject)}) {
    if (!checked) return tl::unexpected(checked.error());
  }
  auto consent = loadConsent(arguments);
  if (!consent) return tl::unexpected(consent.error());
  inputs.consent = std::move(*consent);
  auto key = loadKey(arguments.key);
  if (!key) return tl::unexpected(key.error());
  inputs.key = std::move(*key);
  if (!isRecording) media = chooseMedia(arguments.source, arguments.videoCodec);
  if (!media) return tl::unexpected(media.error());
  inputs.openMedia = std::move(*media);
  auto folder = chooseFolder(arguments.output);
  if (!folder) return tl::unexpected(folder.error());
  inputs.folder = std::move(*folder);
  return inputs;
}

}  // namespace corvana::app
