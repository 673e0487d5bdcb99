// Forges a sealed record of a run in many ways and counts how many forgeries are found.
// Usage: forge-records RECORD OTHER_RECORD PUBLIC_KEY [COUNT]      (both sealed with that key)
// Exits 1 if a forgery passes, or an honest record does not.

#include <cstdlib>
#include <iomanip>
#include <iostream>
#include <map>

#include "app/seal/Forgery.h"
#include "app/seal/RecordCheck.h"
#include "support/Scratch.h"

namespace corvana {
namespace {

namespace fs = std::filesystem;

constexpr int kUsualCount = 1000;

struct Count {
  int forged = 0;
  int found = 0;
};

bool holds(const fs::path& record, const app::TrustedKeys& keys) {
  const auto report = app::checkRecord(record, &keys);
  return report && report->holds();
}

int run(const fs::path& record, const fs::path& other, const fs::path& key, int count) {
  const auto keys = app::TrustedKeys::ofKey(key);
  if (!keys || !holds(record, *keys) || !holds(other, *keys)) {
    std::cerr << "forge-records: give two records that hold by the key.\n";
    return EXIT_FAILURE;
  }
  const tests::ScratchFolder scratch;
  std::map<std::string, Count> counts;
  Count all;
  for (int number = 0; number < count; ++number) {
    fs::copy(record, scratch / "forged");
    const auto forgery =
        tests::forge(scratch / "forged", other, static_cast<std::uint32_t>(number));
    const bool isFound = !holds(scratch / "forged", *keys);
    if (!isFound)
      std::cerr << number << " passed: " << forgery.kind << ", " << forgery.what << '\n';
    for (Count* each : {&counts[forgery.kind], &all}) {
      ++each->forged;
      each->found += isFound ? 1 : 0;
    }
    fs::remove_all(scratch / "forged");
  }
  counts["all"] = all;
  for (const auto& [kind, of] : counts) {
    std::cout << std::left << std::setw(40) << kind << std::right << std::setw(6) << of.found
              << " of " << std::setw(5) << of.forged << " found\n";
  }
  return all.found == all.forged ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace
}  // namespace corvana

int main(int count, char** arguments) {
  if (count < 4) {
    std::cerr << "usage: forge-records RECORD OTHER_RECORD PUBLIC_KEY [COUNT]\n";
    return EXIT_FAILURE;
  }
  return corvana::run(arguments[1], arguments[2], arguments[3],
                      count > 4 ? std::atoi(arguments[4]) : corvana::kUsualCount);
}
