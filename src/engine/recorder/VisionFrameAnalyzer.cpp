#include "engine/recorder/VisionFrameAnalyzer.h"

#include <algorithm>
#include <cmath>
#include <future>
#include <utility>

#include "corvana/SelfieCapture.h"
#include "engine/document/outline/CardWarp.h"
#include "engine/selfie/MouthLook.h"
#include "engine/vision/ImageOps.h"
#include "platform/foundation/Fault.h"

namespace corvana::engine {
namespace {

using corvana::SelfieCapture;
using corvana::VideoCaptureMode;
using platform::CGRect;
using platform::CGSize;
using platform::PixelBuffer;
using platform::PixelBufferRef;

/// Longest side of the analysed picture, in pixels: enough for a card that fills the width of a
/// phone held upright, and a quarter of the work of 4K.
constexpr int kStandardSide = 1280;

/// Of a face whose lips are looked at.
constexpr float kLeastPresence = 0.5F;
constexpr double kMostMouthYaw = 30;

/// Correlation from which a card's print is the same: from picture to picture the piece that
/// changes most has 0.93 to 0.99, and one with another digit 0.71 to 0.95 (288 made pairs; one of a
/// small and badly blurred card had 0.97).
constexpr double kUnchangedPrint = 0.96;

PixelBufferRef analysisPicture(const PixelBufferRef& image, corvana::CaptureMode mode) {
  const int longest = std::max(image->width(), image->height());
  if (mode != corvana::CaptureMode::standard || longest <= kStandardSide) return rgbPicture(image);
  const double scale = static_cast<double>(kStandardSide) / longest;
  return resized(*image, static_cast<int>(image->width() * scale),
                 static_cast<int>(image->height() * scale));
}

LivenessJudge::Limits livenessLimits() {
  const SelfieCapture::Options& options = SelfieCapture::options;
  return {platform::seconds(options.livenessWatchSeconds), options.livenessBlinkShare,
          options.livenessRelief, options.livenessRepetition, options.livenessEdges};
}

/// Absent where the lips are not seen from in front.
std::optional<MouthLook> mouthIn(const PixelBuffer& picture, const FaceDetails& face) {
  const bool isSeen = face.presence >= kLeastPresence && std::abs(face.pose.yaw) <= kMostMouthYaw;
  if (!isSeen) return {};
  return mouthLook(picture, face.mesh);
}

platform::Expected<std::shared_ptr<FaceDetector>> loadFaces(const std::filesystem::path& model) {
  return FaceDetector::load(model).map(
      [](FaceDetector&& detector) { return std::make_shared<FaceDetector>(std::move(detector)); });
}

CGSize sizeOf(const PixelBuffer& picture) {
  return {static_cast<double>(picture.width()), static_cast<double>(picture.height())};
}

}  // namespace

CGRect guideInPicture(const CGRect& overlay, const CGSize& screen, const CGSize& picture) {
  if (picture.width <= 0 || picture.height <= 0) return {};
  const double scale = std::max(screen.width / picture.width, screen.height / picture.height);
  if (scale <= 0) return {};
  const double left = (overlay.x - (screen.width - picture.width * scale) / 2) / scale;
  const double top = (overlay.y - (screen.height - picture.height * scale) / 2) / scale;
  const double width = overlay.width / scale;
  return {picture.width - left - width, top, width, overlay.height / scale};
}

VisionFrameAnalyzer::VisionFrameAnalyzer(std::shared_ptr<FaceDetector> detector,
                                         const std::shared_ptr<FaceLandmarks>& landmarks,
                                         FaceEmbedder embedder,
                                         std::shared_ptr<DocumentAnalyzer> documents,
                                         std::shared_ptr<platform::WorkQueue> readQueue)
    : detector_(std::move(detector)),
      landmarks_(landmarks),
      selfies_(detector_, landmarks),
      persons_(landmarks, std::move(embedder)),
      documents_(std::move(documents)),
      reads_(documents_, std::move(readQueue)) {}

platform::Expected<std::shared_ptr<VisionFrameAnalyzer>> VisionFrameAnalyzer::load(
    const Models& models) {
  auto faces = loadFaces(models.faceDetector);
  if (!faces) return tl::unexpected(faces.error());
  auto landmarks = FaceLandmarks::load(models.faceLandmarks);
  if (!landmarks) return tl::unexpected(landmarks.error());
  auto embedder = FaceEmbedder::load(models.faceEmbedding);
  if (!embedder) return tl::unexpected(embedder.error());
  // Who reads on another thread needs a detector of its own.
  const auto readersFaces = loadFaces(models.faceDetector);
  if (!readersFaces) return tl::unexpected(readersFaces.error());
  auto documents = DocumentAnalyzer::load(*readersFaces, {.text = models.text,
                                                          .documents = models.documents,
                                                          .today = models.today,
                                                          .knownType = models.knownType});
  if (!documents) return tl::unexpected(documents.error());
  return std::shared_ptr<VisionFrameAnalyzer>(new VisionFrameAnalyzer(
      *std::move(faces), std::make_shared<FaceLandmarks>(std::move(*landmarks)),
      std::move(*embedder), std::make_shared<DocumentAnalyzer>(std::move(*documents)),
      models.readQueue));
}

std::shared_ptr<platform::WorkQueue> VisionFrameAnalyzer::makeReadQueue(platform::RunLoop& loop) {
  return loop.makeWorkQueue("CardReader", platform::QualityOfService::utility, kUsualReading);
}

Observation VisionFrameAnalyzer::analyze(const platform::CMSampleBufferRef& frame,
                                         const AnalysisTask& task) {
  if (task.run != std::exchange(run_, task.run)) {
    liveness_ = LivenessJudge(livenessLimits());
    lastSelfie_ = SelfieVerdict::noFace;
    tracker_.stop();
    lastReading_.reset();
    lastOutline_.reset();
    memory_ = {};
    reads_.drop();
    print_.forget();
  }
  const PixelBufferRef picture = analysisPicture(frame->image, task.captureMode);
  Observation observation;
  observation.task = task;
  observation.frameTime = frame->presentationTime;
  observation.fullSize = sizeOf(*picture);
  if (task.mode == VideoCaptureMode::selfieCapture) {
    observation.selfie = lookForSelfie(picture, observation);
    return observation;
  }
  if (task.mode != VideoCaptureMode::idCapture) {
    followLiveFace(*picture, observation);
    return observation;
  }
  const Observation asked = observation;  // following the face does not change it
  auto face = std::async(std::launch::async, [&] { followLiveFace(*picture, observation); });
  auto document = lookForDocument(picture, asked);
  face.get();
  observation.document = std::move(document);
  return observation;
}

SelfieView VisionFrameAnalyzer::lookForSelfie(const PixelBufferRef& picture,
                                              Observation& observation) {
  const AnalysisTask& task = observation.task;
  const SelfieJudgement judgement = selfies_.analyze(
      picture, guideInPicture(task.selfieOverlayFrame, task.screenSize, observation.fullSize),
      lastSelfie_);
  lastSelfie_ = judgement.verdict;
  SelfieView view;
  view.verdict = judgement.verdict;
  view.issue = judgement.issueMessage;
  view.sharpness = judgement.sharpness;
  if (judgement.face) {
    observation.liveFace = judgement.face->box;
    tracker_.start(judgement.face->box, observation.frameTime);
  }
  if (const auto& details = judgement.details) {
    view.liveness = liveness_.add({observation.frameTime, *judgement.gray, judgement.face->box,
                                   *details, judgement.passiveLiveness});
    view.measures = {details->leftEyeOpen, details->rightEyeOpen, view.liveness->score};
    view.head = HeadLook{details->pose, judgement.face->box.width, liveness_.lids()};
  }
  if (judgement.verdict == SelfieVerdict::good) {
    view.selfie = corvana::Selfie{std::make_shared<platform::UIImage>(picture), judgement.faceImage,
                                  view.measures.value_or(FaceMeasures{}).livenessScore};
  }
  return view;
}

void VisionFrameAnalyzer::followLiveFace(const PixelBuffer& picture, Observation& observation) {
  if (!tracker_.isFollowing()) {
    const auto faces = detector_->detect(picture);
    if (faces.empty()) return;
    tracker_.start(faces.front().box, observation.frameTime);
  }
  // A search of the whole picture costs five times as much; a face seldom goes far in a tenth of a
  // second.
  auto faces = detector_->detectNear(picture, tracker_.box());
  auto sighting = tracker_.update(faces, observation.frameTime);
  if (!sighting.box) {
    faces = detector_->detect(picture);
    sighting = tracker_.update(faces, observation.frameTime);
  }
  observation.liveFace = sighting.box;
  observation.liveFaceLostFor = sighting.lostFor;
  if (!sighting.box) return;
  const auto face = std::ranges::find(faces, *sighting.box, &Face::box);
  if (observation.task.mode == VideoCaptureMode::readingText) {
    observation.mouth = mouthIn(picture, landmarks_->locate(picture, *face));
  }
  observation.person =
      persons_.look(observation.frameTime, picture, *face,
                    {observation.task.selfieFace, SelfieCapture::options.samePersonThreshold});
}

bool VisionFrameAnalyzer::isSteady(const CardSighting& sighting) {
  const auto last = std::exchange(lastOutline_, sighting.outline);
  if (!last || !sighting.outline) return false;
  double move = 0;
  for (std::size_t i = 0; i < last->corners.size(); ++i) {
    const auto& from = last->corners[i];
    const auto& to = sighting.outline->corners[i];
    move = std::max(move, std::hypot(to.x - from.x, to.y - from.y));
  }
  return move <= kSteadyMove * sighting.outline->width();
}

void VisionFrameAnalyzer::watchPrint(const CardSighting& sighting, platform::TimePoint now) {
  if (sighting.outline) lastOutlineTime_ = now;
  if (!lastOutlineTime_ || now - *lastOutlineTime_ > kOutOfSight) print_.forget();
}

DocumentView VisionFrameAnalyzer::lookForDocument(const PixelBufferRef& picture,
                                                  const Observation& observation) {
  const AnalysisTask& task = observation.task;
  const CardSighting sighting = documents_->find(
      *picture, guideInPicture(task.idOverlayFrame, task.screenSize, observation.fullSize));
  DocumentView view;
  view.verdict = sighting.verdict;
  if (sighting.outline) view.location = sighting.outline->bounds();
  if (sighting.verdict == CardVerdict::none) view.surroundings = brightnessOf(*picture);
  watchPrint(sighting, observation.frameTime);
  const bool steady = isSteady(sighting);
  // Another card may have taken its place: what one was seen to hold must not be told of the other.
  if (!steady) {
    memory_ = {};
    reads_.drop();
  }
  if (sighting.verdict != CardVerdict::found || !steady) return view;
  CardView card = documents_->view(picture, *sighting.outline);
  view.quality = card.quality;
  const PrintLook print = print_.look(*card.gray);
  view.quality->coveredPrint = print.covered;
  card.isAsRead = print.leastAlike >= kUnchangedPrint;
  showReading(view);
  const bool due = !lastReading_ || observation.frameTime - *lastReading_ >= kReadInterval;
  if (due && !reads_.isBusy() && !flawOf(*view.quality, corvana::IDCapture::options)) {
    lastReading_ = observation.frameTime;
    reads_.start({std::move(card), memory_});
  }
  return view;
}

void VisionFrameAnalyzer::showReading(DocumentView& view) {
  auto read = reads_.take();
  if (!read) return;
  CardReads::Order& order = read->order;
  CardReading& reading = read->reading;
  memory_ = std::move(order.memory);
  // On a card that is held on its head the lines lie elsewhere than on its view.
  if (reading.isUpsideDown) {
    print_.forget();
  } else if (memory_.repeats == 0) {
    print_.remember(*order.card.gray, reading.lines);
  }
  const Quad& outline = order.card.outline;
  const Quad upright = reading.isUpsideDown ? upsideDown(outline) : outline;
  if (reading.faceBox) view.portrait = boundsInPicture(*reading.faceBox, upright);
  view.familyMatches = std::move(reading.familyMatches);
  view.reading = std::move(reading.data);
}

}  // namespace corvana::engine
