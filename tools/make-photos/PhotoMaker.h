#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "Kind.h"
#include "Result.h"

namespace corvana::photos {

/// Which photographs are wanted.
struct Order {
  int count = 10;  ///< cards; each gives a picture of every side it has
  std::uint64_t seed = 1;
  std::vector<std::string> designs;  ///< names; empty: all
  std::vector<std::string> grounds;  ///< names; empty: those of each design
  bool unseen = false;               ///< the designs that are set aside, in place of all others
  Kind kind = Kind::original;
  std::filesystem::path data;       ///< folder of designs/ and people.json
  std::filesystem::path portraits;  ///< folder of pictures of one person each
  std::filesystem::path models;     ///< folder of the face models
};

/// Told the cards done and the cards in all.
using Progress = std::function<void(int, int)>;

/// Writes the pictures and truth.json into `folder`, which is made when it is missing. Card n of a
/// seed, its holder and its pictures are the same whatever the count.
session::Result<void> makePhotos(const Order& order, const std::filesystem::path& folder,
                                 const Progress& progress);

}  // namespace corvana::photos
