#pragma once

#include <optional>
#include <string>

#include <tl/expected.hpp>

#include "devices/gstreamer/FilmFormat.h"
#include "platform/media/WriterSettings.h"

/// Writer settings as devices recommend them and films obey them.
namespace devices {

/// H.264 or HEVC settings that suit pictures of this size.
platform::WriterSettings videoSettings(const platform::AVVideoCodecType& codec, int width,
                                       int height);

/// AAC settings of a voice: 48 kHz, mono, 96 kbit/s.
platform::WriterSettings audioSettings();

/// Encoders, bit rates and sound format of a film; absent video settings mean defaults, absent
/// audio settings no sound track. The error names what is missing on this machine or is absurd.
tl::expected<FilmFormat, std::string> filmFormat(
    const std::optional<platform::WriterSettings>& video,
    const std::optional<platform::WriterSettings>& audio);

}  // namespace devices
