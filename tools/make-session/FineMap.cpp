#include "FineMap.h"

#include <opencv2/imgproc.hpp>

#include "Picture.h"

namespace corvana::session {

cv::Mat fineMap(const cv::Mat& coarse, int step) {
  cv::Mat fine;
  cv::resize(coarse, fine, {}, step, step, cv::INTER_LINEAR);
  return fine(cv::Rect(step, step, kPictureWidth, kPictureHeight));
}

}  // namespace corvana::session
