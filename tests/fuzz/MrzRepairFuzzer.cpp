#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "engine/document/mrz/MrzRepair.h"
#include "engine/document/mrz/MrzVotes.h"

/// Each line of the input is a line of print; what is read of it twice must be the same.
namespace corvana {

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::vector<std::string> print(1);
  for (std::size_t i = 0; i < size; ++i) {
    if (data[i] == '\n')
      print.emplace_back();
    else
      print.back() += static_cast<char>(data[i]);
  }
  const auto lines = engine::mrzLinesAmong(print);
  engine::MrzVotes votes;
  std::vector<engine::MrzPrint> seen;
  for (const std::string& line : lines)
    seen.push_back({line, 0.5});
  votes.add(seen);
  const auto mrz = engine::readMrz(lines);
  if (mrz && (!votes.result() || votes.result()->lines != mrz->lines)) __builtin_trap();
  return 0;
}

}  // namespace corvana
