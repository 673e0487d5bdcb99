#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <vector>

#include "engine/document/outline/Quad.h"
#include "engine/document/text/TextBoxes.h"
#include "engine/vision/FaceDetector.h"
#include "engine/vision/LiveFaceTracker.h"
#include "platform/foundation/Fault.h"
#include "platform/foundation/Time.h"
#include "platform/media/PixelBuffer.h"

namespace corvana::engine {

/// What was seen in a picture of what may be shown of it, in its pixels.
struct HeadSighting {
  platform::TimePoint time{};
  /// The live person's face, from the brows to the chin; absent where it is not seen.
  std::optional<platform::CGRect> face = {};
  /// Whether print, card and further faces were looked for: that is done every so often.
  bool isClose = false;
  /// In close looks: a further face, as the photo on a card has one, is too near to tell whose is
  /// whose.
  bool isCrowded = false;
  std::vector<Quad> print = {};   ///< lines that were found in close looks
  std::optional<Quad> card = {};  ///< its outline, in close looks that found one
};

/// Follows the live person's head through a film, and looks for what must not be shown in front of
/// it. One thread at a time.
class HeadFinder {
 public:
  /// The error is one sentence: a model is missing or broken.
  static platform::Expected<HeadFinder> load(const std::filesystem::path& faceModel,
                                             const std::filesystem::path& printModel);

  /// The face in a picture of one person that was accepted as such, as a selfie is; absent where
  /// none is seen.
  std::optional<platform::CGRect> faceIn(const platform::PixelBuffer& picture);
  /// What a single picture shows of the head whose face lies there.
  HeadSighting lookAt(const platform::PixelBuffer& picture, const platform::CGRect& face);

  /// Begins a film at this moment, whose person looks from there. Without a face the first large
  /// one of the film is the live one.
  void begin(const std::optional<platform::CGRect>& face, platform::TimePoint time);
  /// The next picture; `guide` is where a card was asked for, in its pixels, if that is known.
  HeadSighting next(const platform::PixelBufferRef& picture, platform::TimePoint time,
                    const std::optional<platform::CGRect>& guide);

  /// Between two close looks, which cost as much as twenty others.
  static constexpr platform::Duration kCloseInterval = std::chrono::milliseconds(90);

 private:
  HeadFinder(FaceDetector faces, TextBoxes print);
  std::optional<platform::CGRect> follow(const platform::PixelBuffer& picture,
                                         platform::TimePoint time);
  void lookClosely(const platform::PixelBuffer& picture, HeadSighting& sighting);

  FaceDetector faces_;
  TextBoxes print_;
  LiveFaceTracker tracker_;
  std::optional<platform::TimePoint> lastClose_;
};

}  // namespace corvana::engine
