#include "app/seal/SealReading.h"

#include <utility>

#include "app/keys/Jws.h"
#include "app/keys/Sha256.h"
#include "app/record/Files.h"

namespace corvana::app {
namespace {

using nlohmann::json;
using platform::Expected;
using platform::failure;

constexpr const char* kTracks[] = {"video", "audio"};

std::vector<std::string_view> wholeLines(std::string_view text, bool& isCut) {
  std::vector<std::string_view> lines;
  for (std::size_t end = text.find('\n'); end != std::string_view::npos; end = text.find('\n')) {
    lines.push_back(text.substr(0, end));
    text.remove_prefix(end + 1);
  }
  isCut = !text.empty() || lines.size() % 2 != 0;
  return lines;
}

bool isSum(const json& object) {
  return object.is_object() && object.contains("sha256") && object["sha256"].is_string() &&
         object.contains("bytes") && object["bytes"].is_number_unsigned();
}

bool isPeriod(const json& line) {
  for (const char* track : kTracks) {
    if (!line.contains(track)) continue;
    const json& sum = line[track];
    if (!isSum(sum) || !sum.contains("samples") || !sum["samples"].is_number_unsigned()) {
      return false;
    }
  }
  return line.contains("t") && line["t"].is_number() && line.contains("video") &&
         line.contains("events") && isSum(line["events"]);
}

class Reader {
 public:
  explicit Reader(const TrustedKeys* keys) : keys_(keys) {}

  SealReading read(std::string_view text) {
    const auto lines = wholeLines(text, reading_.isCut);
    for (std::size_t i = 0; i + 1 < lines.size(); i += 2) {
      if (const auto taken = take(lines[i], lines[i + 1]); !taken) {
        reading_.fault = "line " + std::to_string(i + 1) + " " + taken.error().sentence;
        break;
      }
      last_ = lines[i + 1];
      ++reading_.lines;
    }
    return std::move(reading_);
  }

 private:
  Expected<void> take(std::string_view line, std::string_view signature) {
    auto content = parseJson(std::string(line), "");
    if (!content || !content->is_object()) return failure("was damaged or changed");
    const json previous = last_.empty() ? json() : json(sha256Of(last_));
    if (content->value("previous", json()) != previous) {
      return failure("does not follow the one before it: lines were changed, moved or taken out");
    }
    if (const auto checked = checkSignature(line, signature); !checked) return checked;
    return place(std::move(*content));
  }

  Expected<void> checkSignature(std::string_view line, std::string_view signature) {
    const auto object = parseJson(std::string(signature), "");
    if (!object || !object->is_object() || !object->contains("signature") ||
        !(*object)["signature"].is_string()) {
      return failure("has no signature");
    }
    if (!keys_) return {};
    const auto key = verifyDetached((*object)["signature"].get<std::string>(), line, *keys_);
    if (!key) return failure("has a signature that " + key.error().sentence);
    if (reading_.key && reading_.key != *key) return failure("was signed with another key");
    reading_.key = *key;
    return {};
  }

  Expected<void> place(json line) {
    auto& chains = reading_.chains;
    if (line.contains("chain")) {
      if (line["chain"] != chains.size() + 1) return failure("begins a chain out of turn");
      chains.push_back({std::move(line), {}, false});
      return {};
    }
    if (chains.empty() || chains.back().ended || !isPeriod(line)) {
      return failure("has no place in the seal");
    }
    chains.back().ended = line.contains("end");
    chains.back().periods.push_back(std::move(line));
    return {};
  }

  const TrustedKeys* const keys_;
  std::string_view last_;
  SealReading reading_;
};

}  // namespace

SealReading readSeal(std::string_view text, const TrustedKeys* keys) {
  return Reader(keys).read(text);
}

}  // namespace corvana::app
