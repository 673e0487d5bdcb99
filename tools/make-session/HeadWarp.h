#pragma once

#include <vector>

#include <opencv2/core.hpp>

#include "PersonMotion.h"
#include "Portrait.h"

namespace corvana::session {

/// Moves a still portrait as a head with depth: near points travel further than far ones. The head
/// follows its pose as a rigid body, the surroundings less and less with the distance from it, so
/// that no seam shows.
class HeadWarp {
 public:
  /// face: the face's surface in pixels of the film's picture, at rest.
  HeadWarp(const engine::FaceMesh& face, cv::Point2d centre, double faceWidth);

  /// For every pixel of the film's picture, where it comes from in a canvas that holds the resting
  /// picture with its corner at `corner`.
  void maps(const PersonPose& pose, cv::Point2f corner, cv::Mat& mapX, cv::Mat& mapY) const;

 private:
  struct Node {
    float depth;  ///< towards the camera, pixels from the neck's axis
    float head;   ///< share in the head's motion
    float chest;  ///< share in breathing
  };
  cv::Point2d rest(int column, int row) const;
  std::vector<cv::Point2f> displacements(const PersonPose& pose) const;
  cv::Point2f lookUp(const std::vector<cv::Point2f>& field, cv::Point2f place) const;

  cv::Point2d centre_;
  cv::Point2d pivot_;
  double faceWidth_;
  std::vector<Node> nodes_;
};

}  // namespace corvana::session
