#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "corvana/DetectedData.h"
#include "engine/document/mrz/MrzGlyphClassifier.h"
#include "platform/foundation/Fault.h"
#include "platform/geometry/Geometry.h"
#include "platform/media/PixelBuffer.h"

namespace corvana::engine {

/// What was seen of a machine-readable zone on a straightened card.
struct MrzReading {
  /// Rows that look like a zone, in pixels of the card; absent when there are none.
  std::optional<platform::CGRect> band;
  /// The lines as read, right or wrong; empty without a band.
  std::vector<std::string> lines;
  /// The zone, present only if all check digits hold and every unprotected letter is clear.
  std::optional<corvana::MRZResult> mrz;
};

/// Reads the machine-readable zone (TD1, three lines of thirty OCR-B letters) of a straightened
/// card. Movable; one thread at a time.
class MrzReader {
 public:
  /// Letters are learned from the first of the fonts that exists, when the first zone is seen that
  /// has to be read (0.2 s). Error: none exists, or it is broken.
  static platform::Expected<MrzReader> load(
      const std::vector<std::filesystem::path>& fonts = defaultOcrBFonts());

  /// Reads the zone of a card, which must be upright and about 1000 pixels wide.
  MrzReading read(const platform::PixelBuffer& card);

 private:
  explicit MrzReader(FontFace font) : font_(std::move(font)) {}
  const MrzGlyphClassifier& classifier();

  FontFace font_;
  std::optional<MrzGlyphClassifier> classifier_;  ///< most zones are read as print, without it
};

}  // namespace corvana::engine
