#pragma once

#include <filesystem>
#include <span>
#include <utility>
#include <vector>

#include <opencv2/core.hpp>

#include "engine/document/text/LineDecoder.h"
#include "engine/vision/TfliteModel.h"
#include "platform/foundation/Fault.h"

namespace corvana::engine {

/// Reads lines of Latin print, on two threads. One thread at a time uses it. Movable.
class LineRecognizer {
 public:
  /// `alphabet` names the network's letters, one a line.
  static platform::Expected<LineRecognizer> load(const std::filesystem::path& model,
                                                 const std::filesystem::path& alphabet);

  /// Reads 8-bit RGB pictures of lines, `kLineHeight` high. About 16 ms of a core for 300 pixels;
  /// lines of like width are quicker: the networks are fitted to each width.
  std::vector<LineReading> read(std::span<const cv::Mat> lines);

  /// How far apart the answers stand along the line.
  static constexpr int kPixelsPerAnswer = 8;

 private:
  /// Networks that one thread uses.
  class Networks {
   public:
    explicit Networks(TfliteModel model);
    LineReading read(const cv::Mat& line, const LineDecoder& decoder);

   private:
    /// A network fitted to lines of one width.
    struct Fitted {
      TfliteModel model;
      int width = 0;
      int lastUse = 0;
    };

    TfliteModel& fittedTo(int width);

    std::vector<Fitted> fitted_;
    int uses_ = 0;
  };

  LineRecognizer(TfliteModel model, LineDecoder decoder)
      : narrow_(model.another()), wide_(std::move(model)), decoder_(std::move(decoder)) {}

  Networks narrow_;
  Networks wide_;
  LineDecoder decoder_;
};

}  // namespace corvana::engine
