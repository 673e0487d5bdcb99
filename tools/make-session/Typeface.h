#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include <opencv2/core.hpp>

#include "Result.h"

namespace corvana::session {

/// Letters of one font file, drawn with soft edges at any size and position.
class Typeface {
 public:
  /// file: the font's file name, searched for in the system's font folders; package: what to
  /// install when it is not there.
  static Result<Typeface> load(const std::string& file, const std::string& package);

  /// Draws UTF-8 text into an RGB picture; `size` is the em in pixels, `baseline` the left end.
  void draw(cv::Mat& picture, const std::string& text, cv::Point2d baseline, double size,
            const cv::Scalar& colour) const;
  double width(const std::string& text, double size) const;
  /// Whether the font has every letter of the text.
  bool has(const std::string& text) const;
  /// The largest size up to `size` at which the text is no wider than `room`.
  double fittingSize(const std::string& text, double size, double room) const;
  /// Draws each character centred in a cell of `pitch` pixels, as machine-readable lines are set.
  void drawInCells(cv::Mat& picture, const std::string& text, cv::Point2d baseline, double size,
                   double pitch, const cv::Scalar& colour) const;

 private:
  struct Face;
  explicit Typeface(std::shared_ptr<Face> face) : face_(std::move(face)) {}

  std::shared_ptr<Face> face_;
};

}  // namespace corvana::session
