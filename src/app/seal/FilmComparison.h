#pragma once

#include <filesystem>

#include "app/seal/SealReading.h"

namespace corvana::app {

/// How a film stands to what was sealed of it while it was recorded.
struct FilmComparison {
  /// Up to this second of the film every sample is the one that was sealed.
  double wholeTo = 0;
  bool differs = false;   ///< after that comes another one
  bool isCut = false;     ///< after that nothing comes that was sealed
  bool isLonger = false;  ///< it goes on after its sealed end
};

/// Takes the film apart, whether it was made plain or still grew when it was cut off. Blocks.
FilmComparison compareFilm(const std::filesystem::path& film, const SealChain& chain);

}  // namespace corvana::app
