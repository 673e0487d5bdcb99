#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <span>
#include <string>

namespace corvana::devices {

/// The machine's loudspeaker: one sound at a time. Any thread.
class Loudspeaker {
 public:
  /// Whether anything could be heard; asked first, since the system's libraries would complain at
  /// length.
  static bool isThere();

  Loudspeaker();
  ~Loudspeaker();

  /// A number for a sound that is still to be made: `play` does nothing once there is a later one.
  std::uint64_t nextTurn() { return ++turn_; }
  bool isTurn(std::uint64_t turn) const { return turn == turn_; }
  /// Plays the source, the front of a GStreamer launch line, in place of what is heard; an "appsrc"
  /// named "source" is given the samples. Opening the device takes time: not for the main queue.
  void play(std::uint64_t turn, const std::string& source,
            std::span<const std::int16_t> samples = {});
  /// Silences what is heard, and returns at once.
  void stop();

 private:
  class Sound;

  std::atomic<std::uint64_t> turn_ = 0;
  std::mutex mutex_;
  std::unique_ptr<Sound> sound_;  ///< guarded by mutex_
};

}  // namespace corvana::devices
