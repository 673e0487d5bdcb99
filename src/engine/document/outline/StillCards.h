#pragma once

#include <optional>
#include <vector>

#include "engine/document/outline/CardOutlines.h"
#include "engine/document/outline/Quad.h"
#include "engine/document/text/TextBoxes.h"
#include "platform/foundation/Fault.h"
#include "platform/media/PixelBuffer.h"

namespace corvana::engine {

/// A still, made smaller where it has more pixels than a reading needs, and its lines of print.
struct StillPicture {
  platform::PixelBufferRef picture;
  std::vector<cv::RotatedRect> print;
};

StillPicture stillPicture(const platform::PixelBufferRef& picture, TextBoxes& print);

/// The same still with its print looked for part by part, as far as it has more pixels than the
/// network that finds print can see at once: what is printed on a card that is a small part of it,
/// or lies across it, shows only then. Costs as much as a dozen looks inside outlines.
StillPicture lookedAtInParts(const StillPicture& still, TextBoxes& print);

/// A part of a still, and where in it its first pixel lies.
struct StillPart {
  StillPicture still;
  platform::CGPoint origin;
};

/// What lies around an outline that is a small part of the still, with its print looked for anew:
/// more of it is found. Absent where it would show hardly more.
std::optional<StillPart> partAround(const StillPicture& still, const Quad& outline,
                                    TextBoxes& print);

/// What lies around a face that is on a card, as `partAround` gives it.
std::optional<StillPart> partAroundFace(const StillPicture& still, const platform::CGRect& face,
                                        TextBoxes& print);

/// Whether there is any print inside the outline, as far as the still shows it: true where the
/// outline is so small a part of it that print in it may not have been seen.
bool mayHavePrint(const StillPicture& still, const Quad& outline);

/// How closely a still is searched. A card that is a small part of it, or lies on printed paper,
/// may only be found by a fine search, in which wood and cloth have more edges than a card.
enum class Search { coarse, fine };

/// What to say of a picture without a card.
platform::Fault noCardSeen();

/// Where the card may lie in a photo or scan: outlines of its shape, or the whole picture where
/// that has a card's shape; at any turn, at least one is seen. Error: there is neither, or all are
/// less than 320 pixels wide.
platform::Expected<CardOutlines> cardsInStill(const StillPicture& still, Search search);

}  // namespace corvana::engine
