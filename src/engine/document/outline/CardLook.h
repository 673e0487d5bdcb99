#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "engine/document/outline/Quad.h"
#include "engine/document/text/TextReader.h"
#include "platform/media/PixelBuffer.h"

namespace corvana::engine {

/// A first look inside an outline, before anything is read: whether a card is in it.
struct CardLook {
  Quad outline;                     ///< the way up that the face tells, if one is seen
  platform::PixelBufferRef card;    ///< straightened
  platform::PixelBufferRef turned;  ///< straightened, the other way up
  std::vector<TextLine> lines;      ///< places only, in pixels of `card`
  double faceScore = 0;
  double faceScoreTurned = 0;
  /// As readBarcode() gives it; not looked for where there is other evidence.
  std::optional<std::map<std::string, std::string>> barcode;

  /// Takes the card for lying the other way up. Only before anything but its face is known.
  void turn();
  /// How much speaks for a card: level lines that end within it, and a face; 0 without lines, and
  /// for what is filled with lines like a page.
  double content() const;
  /// How long the level lines that end within it are together, in pixels of the picture: comparable
  /// between outlines, while the lines of a part of a card seem longer in its own width.
  double printLength() const;
  /// The same, times the share of all print that these lines are.
  double fittingPrint() const;
  bool hasSureFace() const;
  bool mayHaveFace() const;
  /// Whether there is no need to look inside another outline.
  bool isCertainlyACard() const;
};

/// Whether an outline may be that of the whole card of which another holds a part, since a dark
/// band ends it or the ground is like its rim: it lies around the other, and is more of the shape
/// that its own size of documents has.
bool completes(const Quad& whole, const Quad& part);

}  // namespace corvana::engine
