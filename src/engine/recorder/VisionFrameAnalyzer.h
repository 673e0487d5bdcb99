#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "engine/document/DocumentAnalyzer.h"
#include "engine/document/guidance/PrintWatch.h"
#include "engine/recorder/CardReads.h"
#include "engine/recorder/FrameAnalyzer.h"
#include "engine/selfie/LivenessJudge.h"
#include "engine/selfie/PersonCompare.h"
#include "engine/selfie/SelfieAnalyzer.h"
#include "engine/vision/FaceDetector.h"
#include "engine/vision/LiveFaceTracker.h"
#include "platform/foundation/Fault.h"
#include "platform/foundation/RunLoop.h"

namespace corvana::engine {

/// Looks at frames with the face and document models.
class VisionFrameAnalyzer final : public FrameAnalyzer {
 public:
  struct Models {
    std::filesystem::path faceDetector;
    std::filesystem::path faceLandmarks;
    std::filesystem::path faceEmbedding;
    NetworkTextReader::Models text;
    /// As `DocumentAnalyzer::Setup` has them.
    std::shared_ptr<const DocumentTables> documents{};
    /// Settles two-digit years.
    CalendarDate today{};
    std::optional<std::string> knownType{};
    /// Of `makeReadQueue`.
    std::shared_ptr<platform::WorkQueue> readQueue{};
  };

  /// Loads the models; the error is one sentence: a model, language data or a font is missing or
  /// broken.
  static platform::Expected<std::shared_ptr<VisionFrameAnalyzer>> load(const Models& models);
  /// On which cards are read, while looks go on. Main queue.
  static std::shared_ptr<platform::WorkQueue> makeReadQueue(platform::RunLoop& loop);

  Observation analyze(const platform::CMSampleBufferRef& frame, const AnalysisTask& task) override;

  /// How long a full reading takes beside the looks.
  static constexpr platform::Duration kUsualReading = std::chrono::milliseconds(300);
  /// Least time between two readings of a card: one costs as much as ten looks.
  static constexpr platform::Duration kReadInterval = std::chrono::milliseconds(500);
  /// How far, as a part of its width, a card may move from one look to the next and still be read:
  /// one that is just coming in is blurred, and half of it looks like another side.
  static constexpr double kSteadyMove = 0.02;
  /// A card that was out of sight for so long may have been turned or changed meanwhile.
  static constexpr platform::Duration kOutOfSight = std::chrono::milliseconds(500);

 private:
  VisionFrameAnalyzer(std::shared_ptr<FaceDetector> detector,
                      const std::shared_ptr<FaceLandmarks>& landmarks, FaceEmbedder embedder,
                      std::shared_ptr<DocumentAnalyzer> documents,
                      std::shared_ptr<platform::WorkQueue> readQueue);

  SelfieView lookForSelfie(const platform::PixelBufferRef& picture, Observation& observation);
  void followLiveFace(const platform::PixelBuffer& picture, Observation& observation);
  DocumentView lookForDocument(const platform::PixelBufferRef& picture,
                               const Observation& observation);
  bool isSteady(const CardSighting& sighting);
  /// Tells what was read meanwhile, if anything was, of the card that is still in its place.
  void showReading(DocumentView& view);
  void watchPrint(const CardSighting& sighting, platform::TimePoint now);

  std::shared_ptr<FaceDetector> detector_;
  std::shared_ptr<FaceLandmarks> landmarks_;
  SelfieAnalyzer selfies_;
  PersonCompare persons_;
  std::shared_ptr<DocumentAnalyzer> documents_;
  CardReads reads_;

  int run_ = -1;
  LivenessJudge liveness_{{}};  ///< of this run
  SelfieVerdict lastSelfie_ = SelfieVerdict::noFace;
  LiveFaceTracker tracker_;
  std::optional<platform::TimePoint> lastReading_;
  std::optional<Quad> lastOutline_;
  /// The print of the card that has been held still since it was read.
  CardMemory memory_;
  PrintWatch print_;
  std::optional<platform::TimePoint> lastOutlineTime_;
};

/// Where a rectangle of the screen lies in a camera picture that fills the screen mirrored.
platform::CGRect guideInPicture(const platform::CGRect& overlay, const platform::CGSize& screen,
                                const platform::CGSize& picture);

}  // namespace corvana::engine
