#pragma once

#include <filesystem>
#include <memory>
#include <vector>

#include <opencv2/core.hpp>

#include "platform/foundation/Fault.h"

struct FT_FaceRec_;
struct FT_LibraryRec_;

namespace corvana::engine {

/// A font file, drawn one letter at a time. Movable; from one thread at a time.
class FontFace {
 public:
  /// A letter as drawn: ink 255 on 0, and where it lies.
  struct Glyph {
    cv::Mat ink;         ///< 8-bit, one channel; empty for a blank
    double left = 0;     ///< from the pen to the ink's left edge, pixels
    double top = 0;      ///< from the base line up to the ink's top edge, pixels
    double advance = 0;  ///< from this letter's pen to the next one's, pixels
  };

  static platform::Expected<FontFace> load(const std::filesystem::path& file);

  /// Opens a font file at a size: `emPixels` is the side of its em square in pixels.
  Glyph draw(char32_t letter, int emPixels);

 private:
  struct Delete {
    void operator()(FT_LibraryRec_* library) const;
    void operator()(FT_FaceRec_* face) const;
  };

  FontFace() = default;

  // The face lives in the library and must go first.
  std::unique_ptr<FT_LibraryRec_, Delete> library_;
  std::unique_ptr<FT_FaceRec_, Delete> face_;
};

}  // namespace corvana::engine
