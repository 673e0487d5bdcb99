#pragma once

namespace corvana::platform {

struct CGPoint {
  double x = 0;
  double y = 0;
  bool operator==(const CGPoint&) const = default;
};

struct CGSize {
  double width = 0;
  double height = 0;
  bool operator==(const CGSize&) const = default;
};

/// Origin at the top left, y downwards; units are those of the space it is given in.
struct CGRect {
  double x = 0;
  double y = 0;
  double width = 0;
  double height = 0;

  double minX() const { return x; }
  double minY() const { return y; }
  double midX() const { return x + width * 0.5; }
  double midY() const { return y + height * 0.5; }
  double maxX() const { return x + width; }
  double maxY() const { return y + height; }
  CGSize size() const { return {width, height}; }
  bool isEmpty() const { return width <= 0 || height <= 0; }
  bool operator==(const CGRect&) const = default;
};

}  // namespace corvana::platform
