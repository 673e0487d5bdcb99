#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "support/TestWorld.h"

namespace corvana::tests {

/// Numbers that follow from a seed alone, on every machine.
class Dice {
 public:
  explicit Dice(std::uint64_t seed) : engine_(seed) {}
  /// 0 to `sides` - 1.
  int roll(int sides) { return static_cast<int>(engine_() % static_cast<unsigned>(sides)); }
  bool chance(int percent) { return roll(100) < percent; }
  template <class T>
  const T& pick(const std::vector<T>& choices) {
    return choices[static_cast<std::size_t>(roll(static_cast<int>(choices.size())))];
  }

 private:
  std::mt19937_64 engine_;
};

/// Faces that the face model compares, the same objects each time.
const platform::UIImageRef& holdersFace();
const platform::UIImageRef& strangersFace();
/// A picture without pixels, which nothing can be made of.
const platform::UIImageRef& unreadableFace();

/// What a flow begins with: cards, text, machine, host. Tables of the host are written by it.
struct Beginning {
  std::string text;
  corvana::DetectedData front;
  std::optional<corvana::DetectedData> back;
  std::string reading;
  std::function<void(TestWorld&)> prepare;
};

Beginning randomBeginning(Dice& dice);

}  // namespace corvana::tests
