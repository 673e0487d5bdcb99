#include <cmath>

#include <gtest/gtest.h>

#include "engine/vision/FaceDetector.h"
#include "engine/vision/FaceLandmarks.h"
#include "engine/vision/MatViews.h"
#include "engine/vision/Portraits.h"

namespace corvana::engine {
namespace {

// Points read off the enlarged photographs by eye.
TEST(FaceDetector, FindsFeaturesWhereTheEyeSeesThem) {
  struct Expected {
    char person;
    double tolerance;
    std::array<platform::CGPoint, 4> points;  // right eye, left eye, nose tip, mouth
    double yaw, roll;
  };
  for (const Expected& expected :
       {Expected{'a', 4, {{{204, 101}, {246, 104}, {224, 129}, {222, 147}}}, 0, 3},
        {'b', 10, {{{437, 267}, {536, 287}, {490, 333}, {470, 384}}}, 9, 12}}) {
    SCOPED_TRACE(expected.person);
    const auto picture = pixelBufferFrom(tests::portrait(expected.person));
    const std::vector<Face> faces = tests::detector().detect(*picture);
    ASSERT_EQ(faces.size(), 1U);
    for (std::size_t i = 0; i < expected.points.size(); ++i) {
      EXPECT_NEAR(faces[0].keypoints[i].x, expected.points[i].x, expected.tolerance) << i;
      EXPECT_NEAR(faces[0].keypoints[i].y, expected.points[i].y, expected.tolerance) << i;
    }
    const FaceDetails details = tests::landmarks().locate(*picture, faces[0]);
    EXPECT_GT(details.presence, 0.9F);
    EXPECT_GT(details.leftEyeOpen, 0.8F);
    EXPECT_GT(details.rightEyeOpen, 0.8F);
    EXPECT_NEAR(details.pose.yaw, expected.yaw, 5);
    EXPECT_NEAR(details.pose.roll, expected.roll, 3);
    EXPECT_NEAR(details.mouth.midX(), expected.points[3].x, expected.tolerance);
    EXPECT_NEAR(details.mouth.midY(), expected.points[3].y, expected.tolerance);
  }
}

TEST(FaceDetector, FindsOneFaceWhereverAndHoweverLargeItIs) {
  for (const tests::Placed& placed : {tests::Placed{'a', 360, 640, 90},
                                      {'b', 140, 250, 90},
                                      {'a', 600, 1100, 120},
                                      {'b', 250, 900, 240},
                                      {'a', 360, 600, 520}}) {
    const auto picture = tests::cameraFrame({placed});
    const std::vector<Face> faces = tests::detector().detect(*picture);
    ASSERT_EQ(faces.size(), 1U) << placed.person << " " << placed.faceWidth;
    const double half = placed.faceWidth / 2;
    const platform::CGRect place{placed.x - half, placed.y - half, 2 * half, 2 * half};
    EXPECT_GT(overlap(faces[0].box, place), 0.8) << placed.person << " " << placed.faceWidth;

    const std::vector<Face> near = tests::detector().detectNear(*picture, place);
    ASSERT_EQ(near.size(), 1U);
    EXPECT_GT(overlap(near[0].box, faces[0].box), 0.9);
  }
}

TEST(FaceDetector, SeesNothingInEmptyOrOddPictures) {
  EXPECT_TRUE(tests::detector().detect(*tests::cameraFrame({})).empty());
  for (const cv::Size size : {cv::Size(1, 1), cv::Size(1, 900), cv::Size(900, 1), cv::Size(7, 5)}) {
    const auto picture = pixelBufferFrom(cv::Mat(size, CV_8UC1, cv::Scalar(90)));
    EXPECT_TRUE(tests::detector().detect(*picture).empty()) << size;
    EXPECT_TRUE(tests::detector().detectNear(*picture, {5000, 5000, 10, 10}).empty()) << size;
  }
}

}  // namespace
}  // namespace corvana::engine
