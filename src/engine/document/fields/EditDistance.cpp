#include "engine/document/fields/EditDistance.h"

#include <algorithm>
#include <numeric>
#include <vector>

namespace corvana::engine {

std::size_t editDistance(const std::string& a, const std::string& b) {
  std::vector<std::size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), 0U);
  for (std::size_t i = 0; i < a.size(); ++i) {
    std::size_t diagonal = row[0]++;
    for (std::size_t j = 0; j < b.size(); ++j) {
      const std::size_t above = row[j + 1];
      row[j + 1] = std::min({diagonal + (a[i] == b[j] ? 0U : 1U), above + 1, row[j] + 1});
      diagonal = above;
    }
  }
  return row.back();
}

}  // namespace corvana::engine
