#include "app/stamp/Stamps.h"

#include "app/record/Files.h"

namespace corvana::app {
namespace {

namespace fs = std::filesystem;

StoredStamp stampNumber(std::size_t number) {
  const std::string name = "stamp-" + std::to_string(number);
  return {name + ".tsq", name + ".tsr"};
}

bool isThere(const fs::path& file) {
  std::error_code error;
  return fs::exists(file, error);
}

}  // namespace

std::vector<StoredStamp> stampsIn(const fs::path& folder) {
  std::vector<StoredStamp> stamps;
  for (auto stamp = stampNumber(1); isThere(folder / stamp.answer);
       stamp = stampNumber(stamps.size() + 1))
    stamps.push_back(stamp);
  return stamps;
}

platform::Expected<StoredStamp> addStamp(const fs::path& folder, const std::string& request,
                                         const std::string& answer) {
  const StoredStamp stamp = stampNumber(stampsIn(folder).size() + 1);
  // The answer last: without it there is no stamp.
  return writeFile(folder / stamp.request, request)
      .and_then([&] { return writeFile(folder / stamp.answer, answer); })
      .and_then([&] { return putOnDisk(folder); })
      .map([&] { return stamp; });
}

}  // namespace corvana::app
