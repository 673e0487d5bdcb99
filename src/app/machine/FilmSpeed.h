#pragma once

#include "devices/film/FilmSettings.h"
#include "devices/live/CameraMode.h"
#include "platform/foundation/Fault.h"
#include "platform/media/PixelBuffer.h"

namespace corvana::app {

/// How much faster than its camera an encoder has to be, so that a core has time for the looks.
inline constexpr double kFilmReserve = 2;

/// Pixels a second that the encoder of such films takes on this machine as it is busy now. Takes a
/// second at most. The error says what could not be tried.
platform::Expected<double> filmSpeed(devices::VideoCodecChoice choice);

/// What to ask of a live camera on a machine that encodes so many pixels a second: the best mode
/// that leaves time for the looks at faces and cards.
devices::CameraMode cameraModeFor(double pixelsPerSecond);

/// What is encoded for it: an upright picture of stripes that move over a slope, so that there is
/// something to encode in each. Nobody has a face in it.
platform::PixelBufferRef movingStripes(int number);

}  // namespace corvana::app
