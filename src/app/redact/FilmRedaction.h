#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

#include "engine/recorder/ScreenPlaces.h"
#include "engine/redaction/HeadFinder.h"
#include "platform/foundation/Fault.h"
#include "platform/geometry/Geometry.h"

namespace corvana::app {

/// What becomes of a film.
struct FilmRedaction {
  bool isSilent = false;    ///< without a sound track
  bool coversFace = false;  ///< not even the live head is shown
  /// Where the live face lay in a picture of the size `selfieSize`; absent where none is known.
  std::optional<platform::CGRect> selfieFace = {};
  platform::CGSize selfieSize = {};
  std::optional<engine::ScreenPlaces> places = {};  ///< where the card was asked for
};

/// How many pictures a film has, and how many of them show the live head.
struct RedactedPictures {
  std::uint64_t all = 0;
  std::uint64_t withHead = 0;
};

/// Makes a film of which nothing is shown but the live person's head, drawn into decoded pictures
/// and encoded anew. `to` must not exist yet. Blocks for about as long as the film is.
platform::Expected<RedactedPictures> redactFilm(const std::filesystem::path& from,
                                                const std::filesystem::path& to,
                                                engine::HeadFinder& heads,
                                                const FilmRedaction& wishes);

}  // namespace corvana::app
