#include "app/seal/Forgery.h"

#include <algorithm>
#include <functional>
#include <random>
#include <vector>

#include <nlohmann/json.hpp>

#include "app/keys/Jws.h"
#include "app/record/Files.h"
#include "support/Scratch.h"

namespace corvana::tests {
namespace {

namespace fs = std::filesystem;
using nlohmann::ordered_json;

class Forger {
 public:
  Forger(const fs::path& record, const fs::path& other, std::uint32_t number)
      : record_(record), other_(other), random_(number + 1) {}

  std::string changeAByte() { return changeAByteOf(anyFile()); }

  std::string takeALineOut() {
    return changeLines([&](auto& lines) { lines.erase(lines.begin() + below(lines.size())); });
  }
  std::string doubleALine() {
    return changeLines([&](auto& lines) {
      const auto line = below(lines.size());
      lines.insert(lines.begin() + line, std::string(lines[static_cast<std::size_t>(line)]));
    });
  }
  std::string swapLines() {
    return changeLines([&](auto& lines) {
      const auto at = static_cast<std::size_t>(below(lines.size()));
      std::size_t with = at;
      while (lines[with] == lines[at])
        with = static_cast<std::size_t>(below(lines.size()));
      std::swap(lines[at], lines[with]);
    });
  }

  std::string cutTheFilm() {
    const auto size = static_cast<std::uintmax_t>(
        below(static_cast<std::size_t>(fs::file_size(record_ / "film.mp4"))));
    fs::resize_file(record_ / "film.mp4", size);
    return "film.mp4 to " + std::to_string(size);
  }

  std::string recomputeSums() {
    std::string what = changeAByteOf(anyBoundFile());
    writeSums();
    return what;
  }

  /// With sums that fit, and a key of the forger's own.
  std::string sealAnew() {
    std::string what = recomputeSums();
    const ScratchFolder scratch;
    const auto key = *app::SigningKey::create(scratch / "key");
    writeBytes(record_ / "result.jws", *app::sealDetached(key, bytesOf(record_ / "result.json")));
    return what;
  }

  std::string putAnothersFileIn() {
    std::string name = anyFile();
    while (bytesOf(record_ / name) == bytesOf(other_ / name))
      name = anyFile();
    fs::copy(other_ / name, record_ / name, fs::copy_options::overwrite_existing);
    return name;
  }

  /// All but the film is the other run's, whose seal holds.
  std::string putTheFilmElsewhere() {
    for (const auto& entry : fs::directory_iterator(other_)) {
      if (entry.path().filename() == "film.mp4") continue;
      fs::copy(entry.path(), record_ / entry.path().filename(),
               fs::copy_options::overwrite_existing);
    }
    return "film.mp4";
  }

  std::string takeAFileOut() {
    const std::string name = anyFile();
    fs::remove(record_ / name);
    return name;
  }

 private:
  std::ptrdiff_t below(std::size_t limit) {
    return static_cast<std::ptrdiff_t>(
        std::uniform_int_distribution<std::size_t>(0, limit - 1)(random_));
  }

  std::string oneOf(const std::vector<std::string>& names) {
    return names[static_cast<std::size_t>(below(names.size()))];
  }

  std::string anyFile() {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(record_))
      names.push_back(entry.path().filename());
    std::ranges::sort(names);
    return oneOf(names);
  }

  std::string anyBoundFile() {
    std::string name = anyFile();
    while (name.starts_with("result."))
      name = anyFile();
    return name;
  }

  std::string changeAByteOf(const std::string& name) {
    std::string bytes = bytesOf(record_ / name);
    const auto at = static_cast<std::size_t>(below(bytes.size()));
    bytes[at] = static_cast<char>(bytes[at] ^ static_cast<char>(1 + below(255)));
    writeBytes(record_ / name, bytes);
    return name + " byte " + std::to_string(at);
  }

  template <class Change>
  std::string changeLines(const Change& change) {
    const std::string name = oneOf({"events.jsonl", "seal.jsonl", "result.json"});
    std::vector<std::string> lines;
    std::istringstream text(bytesOf(record_ / name));
    for (std::string line; std::getline(text, line);)
      lines.push_back(line);
    change(lines);
    std::string changed;
    for (const std::string& line : lines)
      changed += line + "\n";
    writeBytes(record_ / name, changed);
    return name;
  }

  void writeSums() {
    auto result = ordered_json::parse(bytesOf(record_ / "result.json"));
    for (auto& [name, sum] : result["sha256"].items())
      sum = *app::sha256(record_ / name);
    writeBytes(record_ / "result.json", result.dump(2) + "\n");
  }

  const fs::path record_;
  const fs::path other_;
  std::minstd_rand random_;
};

constexpr struct {
  const char* name;
  std::string (Forger::*commit)();
} kKinds[] = {{"one byte changed", &Forger::changeAByte},
              {"line taken out", &Forger::takeALineOut},
              {"line doubled", &Forger::doubleALine},
              {"lines swapped", &Forger::swapLines},
              {"film cut", &Forger::cutTheFilm},
              {"byte changed, sums recomputed", &Forger::recomputeSums},
              {"byte changed, sealed with another key", &Forger::sealAnew},
              {"another run's file put in", &Forger::putAnothersFileIn},
              {"film put into another run's record", &Forger::putTheFilmElsewhere},
              {"file taken out", &Forger::takeAFileOut}};

}  // namespace

int forgeryKinds() {
  return static_cast<int>(std::size(kKinds));
}

Forgery forge(const fs::path& record, const fs::path& other, std::uint32_t number) {
  const auto& kind = kKinds[number % std::size(kKinds)];
  Forger forger(record, other, number);
  return {kind.name, (forger.*kind.commit)()};
}

}  // namespace corvana::tests
