#pragma once

namespace corvana::session {

/// The film's picture: a phone held upright.
inline constexpr int kPictureWidth = 720;
inline constexpr int kPictureHeight = 1280;
inline constexpr int kFramesPerSecond = 30;
inline constexpr int kSoundRate = 48000;

}  // namespace corvana::session
