#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/media/WriterSettings.h"

/// Which GStreamer elements this system needs, which of them are installed, and which Debian
/// package brings the others. Any thread.
namespace corvana::devices {

struct MissingElement {
  std::string element;
  std::string package;  ///< Debian package that brings it
  std::string purpose;  ///< what can't be done without it
};

bool isElementInstalled(const std::string& element);

/// All that is needed but not installed; empty on a complete machine.
std::vector<MissingElement> missingElements();

struct VideoEncoder {
  std::string element;
  platform::AVVideoCodecType codec;
  bool hardware = false;
  std::string pictureFormat;  ///< of the raw pictures that it takes
  /// Rest of its launch line: `%b` stands for kbit/s, `%B` for bit/s, `%k` for frames between key
  /// frames.
  std::string settings;
  std::string parser;  ///< element that the muxer needs behind it; may be empty
};

/// The encoder that writes this codec on this machine; absent when there is none.
std::optional<VideoEncoder> encoderFor(const platform::AVVideoCodecType& codec);

/// What the user of the program wants films to be encoded in.
enum class VideoCodecChoice {
  automatic,  ///< HEVC where hardware encodes it, H.264 elsewhere
  h264,
  hevc,  ///< in software, too: only for machines with cores to spare
};

/// Codecs that a camera offers for its film, best first. By itself HEVC is offered only where
/// hardware encodes it, since in software it leaves no core for the analysis. Empty when no encoder
/// of the choice is installed.
std::vector<platform::AVVideoCodecType> realTimeVideoCodecs(VideoCodecChoice choice);

struct AudioEncoder {
  std::string element;
  /// How many samples of silence the encoder puts before the first one it is given.
  int delay = 0;
};

/// The AAC encoder of this machine; absent when there is none.
std::optional<AudioEncoder> aacEncoder();

}  // namespace corvana::devices
