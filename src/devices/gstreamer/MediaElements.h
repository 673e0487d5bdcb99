#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/media/WriterSettings.h"

/// Which GStreamer elements this system needs, which of them are installed, and which Debian
/// package brings the others. Any thread.
namespace devices {

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
  /// Rest of the launch line up to the muxer: `%b` stands for kbit/s, `%B` for bit/s, `%k` for
  /// frames between key frames.
  std::string settings;
};

/// The encoder that writes this codec on this machine; absent when there is none.
std::optional<VideoEncoder> encoderFor(const platform::AVVideoCodecType& codec);

/// Codecs that can be encoded while everything else goes on, best first: HEVC only in hardware,
/// since in software it leaves no core for the analysis.
std::vector<platform::AVVideoCodecType> realTimeVideoCodecs();

struct AudioEncoder {
  std::string element;
  /// Samples of nothing that the encoder puts before the first one it is given.
  int delay = 0;
};

/// The AAC encoder of this machine; absent when there is none.
std::optional<AudioEncoder> aacEncoder();

}  // namespace devices
