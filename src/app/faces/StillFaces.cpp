#include "app/faces/StillFaces.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "app/record/Files.h"
#include "devices/pictures/ImageFile.h"
#include "engine/selfie/SelfieAnalyzer.h"
#include "engine/vision/FaceCrop.h"

namespace corvana::app {
namespace {

using engine::Face;
using platform::Expected;
using platform::failure;

/// A face that is less sure may be a pattern.
constexpr float kSureScore = 0.75F;

auto peopleIn(const std::vector<Face>& faces) {
  return std::ranges::count_if(faces, [&](const Face& face) {
    return face.size() >= engine::kOtherPersonSize * faces.front().size() &&
           face.score >= kSureScore;
  });
}

}  // namespace

nlohmann::ordered_json faceToJson(const Face& face) {
  const auto pixel = [](double value) { return std::lround(value); };
  return {{"box",
           {pixel(face.box.x), pixel(face.box.y), pixel(face.box.width), pixel(face.box.height)}},
          {"score", std::round(static_cast<double>(face.score) * 1e4) / 1e4}};
}

Expected<StillFaces> StillFaces::load(const Resources& resources) {
  return engine::FaceDetector::load(resources.faceDetector())
      .map([](engine::FaceDetector&& detector) { return StillFaces(std::move(detector)); });
}

Expected<StillFace> StillFaces::read(const std::filesystem::path& photograph) {
  const auto picture = devices::readImage(photograph);
  if (!picture) return tl::unexpected(picture.error());
  const std::string name = inQuotes(photograph);
  const auto faces = detector_.detect(**picture);
  if (faces.empty()) {
    return failure("No face was found on " + name + ": give an upright picture of one person.");
  }
  if (const auto people = peopleIn(faces); people > 1) {
    return failure(name + " shows " + std::to_string(people) +
                   " faces: give a picture of one person, or cut the others off.");
  }
  const Face& face = faces.front();
  auto crop = engine::cropFace(**picture, face);
  if (crop) return StillFace{face, std::move(crop)};
  return failure("The face on " + name + " can't be compared: it has to look into the camera and " +
                 "to be " + std::to_string(std::lround(engine::kLeastFaceWidth)) +
                 " pixels wide, not " + std::to_string(std::lround(face.box.width)) + ".");
}

}  // namespace corvana::app
