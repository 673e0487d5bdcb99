#include "PersonView.h"

#include <opencv2/imgproc.hpp>

#include "Picture.h"
#include "Room.h"

namespace corvana::session {
namespace {

// The canvas holds what comes into view when the camera looks away from the person.
constexpr int kMarginX = 960;
constexpr int kMarginY = 100;
const cv::Size kCanvas(kPictureWidth + 2 * kMarginX, kPictureHeight + 2 * kMarginY);

/// A door's frame above the person and on both sides, down to the shoulders that hide it.
void standDoorway(cv::Mat& canvas, double shoulders) {
  const cv::Rect picture(kMarginX, kMarginY, kPictureWidth, static_cast<int>(shoulders) - 60);
  const cv::Scalar wood(196, 186, 172);
  const cv::Scalar shade(118, 106, 94);
  constexpr int kPost = 34;
  for (const int x : {24, kPictureWidth - 24 - kPost}) {
    cv::rectangle(canvas, {picture.x + x, picture.y + 60, kPost, picture.height}, wood, -1);
    cv::rectangle(canvas, {picture.x + x, picture.y + 60, kPost, picture.height}, shade, 3);
  }
  cv::rectangle(canvas, {picture.x + 24, picture.y + 60, kPictureWidth - 48, kPost}, wood, -1);
  cv::rectangle(canvas, {picture.x + 24, picture.y + 60, kPictureWidth - 48, kPost}, shade, 3);
}

constexpr std::size_t kRightCheek = 50;
constexpr std::size_t kLeftCheek = 280;

}  // namespace

PersonView::PersonView(const Portrait& portrait, const PersonScript& script)
    : place_(script.x, script.y),
      scale_(script.faceWidth / portrait.faceWidth()),
      rest_(roomWith(portrait, script)),
      canvas_(rest_.clone()),
      warp_(inCanvas(portrait, {0, 0}), place_, script.faceWidth),
      expression_(inCanvas(portrait, {kMarginX, kMarginY}), script.faceWidth, rest_),
      skin_(cheekColour(inCanvas(portrait, {kMarginX, kMarginY}))) {}

cv::Mat PersonView::roomWith(const Portrait& portrait, const PersonScript& script) const {
  cv::Mat room =
      setIntoRoom(portrait.image, scale_,
                  place_ + cv::Point2d(kMarginX, kMarginY) - portrait.centre() * scale_, kCanvas);
  if (script.doorway) standDoorway(room, script.y + 0.9 * script.faceWidth);
  return room;
}

engine::FaceMesh PersonView::inCanvas(const Portrait& portrait, cv::Point2d corner) const {
  engine::FaceMesh face = portrait.mesh;
  const cv::Point2d shift = place_ + corner - portrait.centre() * scale_;
  for (engine::SurfacePoint& point : face)
    point = {point.x * scale_ + shift.x, point.y * scale_ + shift.y, point.z * scale_};
  return face;
}

cv::Scalar PersonView::cheekColour(const engine::FaceMesh& face) const {
  cv::Scalar sum;
  for (const std::size_t index : {kRightCheek, kLeftCheek}) {
    const cv::Rect patch(static_cast<int>(face[index].x) - 6, static_cast<int>(face[index].y) - 6,
                         12, 12);
    sum += 0.5 * cv::mean(rest_(patch & cv::Rect({0, 0}, rest_.size())));
  }
  return sum;
}

void PersonView::draw(const PersonPose& pose, cv::Mat& picture) {
  if (pose != drawn_) {
    expression_.draw(rest_, canvas_, pose.lids, pose.mouth);
    warp_.maps(pose, {kMarginX, kMarginY}, mapX_, mapY_);
    cv::remap(canvas_, seen_, mapX_, mapY_, cv::INTER_LINEAR, cv::BORDER_REPLICATE);
    drawn_ = pose;
  }
  seen_.copyTo(picture);
}

}  // namespace corvana::session
