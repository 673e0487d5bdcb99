#pragma once

namespace corvana::platform {

/// Straight (not premultiplied) sRGB components from 0 to 1.
struct UIColor {
  double red = 0;
  double green = 0;
  double blue = 0;
  double alpha = 1;
  bool operator==(const UIColor&) const = default;

  static constexpr UIColor white(double level, double alpha) {
    return {level, level, level, alpha};
  }
};

namespace colors {
inline constexpr UIColor kWhite{1, 1, 1, 1};
inline constexpr UIColor kBlack{0, 0, 0, 1};
// Gray and red are dark enough for white letters to stand out 4.5 to 1 or more.
inline constexpr UIColor kGray{0.38, 0.38, 0.38, 1};
inline constexpr UIColor kRed{0.77, 0.12, 0.12, 1};
inline constexpr UIColor kGreen{0, 1, 0, 1};
inline constexpr UIColor kYellow{1, 1, 0, 1};
inline constexpr UIColor kPurple{0.5, 0, 0.5, 1};
inline constexpr UIColor kClear{0, 0, 0, 0};
}  // namespace colors

}  // namespace corvana::platform
