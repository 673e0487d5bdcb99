#pragma once

#include <string>
#include <vector>

#include "Random.h"
#include "Result.h"
#include "Script.h"

namespace corvana::session {

/// The text spoken by a synthetic voice: one channel, kSoundRate samples a second, at the script's
/// level, without silence at its ends.
Result<std::vector<float>> speak(const std::string& text, const VoiceScript& voice);

/// Noise of a quiet room for the whole session.
std::vector<float> roomTone(double seconds, double level, Random& random);

/// Loudness of the sound around each frame of the film, 0 to 1, smoothed as a jaw moves.
std::vector<double> mouthOpening(const std::vector<float>& sound, std::size_t frames);

}  // namespace corvana::session
