#pragma once

#include <filesystem>
#include <vector>

#include <opencv2/core.hpp>

#include "engine/document/text/LineDecoder.h"
#include "engine/vision/TfliteModel.h"
#include "platform/foundation/Fault.h"

namespace corvana::engine {

/// Reads one line of Latin print. One thread at a time. Movable.
class LineRecognizer {
 public:
  /// `alphabet` names the network's letters, one a line.
  static platform::Expected<LineRecognizer> load(const std::filesystem::path& model,
                                                 const std::filesystem::path& alphabet);

  /// Reads an 8-bit RGB picture of a line, `kLineHeight` high. About 16 ms for 300 pixels. Lines of
  /// like width in a row are quicker: the network is fitted to each width.
  LineReading read(const cv::Mat& line);

  /// How far apart the answers stand along the line.
  static constexpr int kPixelsPerAnswer = 8;

 private:
  /// A network fitted to lines of one width.
  struct Fitted {
    TfliteModel model;
    int width = 0;
    int lastUse = 0;
  };

  LineRecognizer(std::vector<Fitted> networks, LineDecoder decoder)
      : networks_(std::move(networks)), decoder_(std::move(decoder)) {}
  TfliteModel& networkFor(int width);

  std::vector<Fitted> networks_;
  LineDecoder decoder_;
  int uses_ = 0;
};

}  // namespace corvana::engine
