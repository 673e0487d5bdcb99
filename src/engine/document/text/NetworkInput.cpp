#include "engine/document/text/NetworkInput.h"

#include <opencv2/imgproc.hpp>

namespace corvana::engine {

void fillInput(TfliteModel& model, const cv::Mat& rgb, cv::Size size) {
  cv::Mat input(size, CV_32FC3, model.input().data());
  input.setTo(0);
  cv::Mat part = input(cv::Rect({}, rgb.size()));
  cv::Mat bgr;
  cv::cvtColor(rgb, bgr, cv::COLOR_RGB2BGR);
  bgr.convertTo(part, CV_32F, 1 / 127.5, -1);
}

}  // namespace corvana::engine
