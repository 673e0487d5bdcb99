#pragma once

#include <string>

#include <nlohmann/json.hpp>

#include "Photograph.h"
#include "Script.h"

namespace corvana::photos {

/// One picture with everything that went into it.
struct Taken {
  std::string file;
  int pair = 0;  ///< pictures of the same card have the same number
  bool back = false;
  std::string kind;
  session::CardData print;  ///< what the fields say
  session::CardData coded;  ///< what zone or code say
  std::string altered;      ///< the field in which they differ; mostly empty
};

/// What truth.json says of one picture.
nlohmann::ordered_json truthOf(const Taken& taken, const Design& design, const SideDesign& side,
                               const Conditions& conditions, const Photograph& photograph);

}  // namespace corvana::photos
