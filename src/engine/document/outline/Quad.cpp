#include "engine/document/outline/Quad.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace corvana::engine {
namespace {

/// Without `std::hypot`, whose care for the largest numbers costs most of a card search.
double distance(const platform::CGPoint& a, const platform::CGPoint& b) {
  const double across = a.x - b.x;
  const double down = a.y - b.y;
  return std::sqrt(across * across + down * down);
}

double turn(const platform::CGPoint& a, const platform::CGPoint& b, const platform::CGPoint& c) {
  return (b.x - a.x) * (c.y - b.y) - (b.y - a.y) * (c.x - b.x);
}

}  // namespace

platform::CGPoint Quad::center() const {
  platform::CGPoint sum;
  for (const auto& corner : corners) {
    sum.x += corner.x / 4;
    sum.y += corner.y / 4;
  }
  return sum;
}

double Quad::topLength() const {
  return distance(corners[0], corners[1]);
}
double Quad::rightLength() const {
  return distance(corners[1], corners[2]);
}
double Quad::bottomLength() const {
  return distance(corners[2], corners[3]);
}
double Quad::leftLength() const {
  return distance(corners[3], corners[0]);
}

double Quad::roll() const {
  const double dx = corners[1].x - corners[0].x + corners[2].x - corners[3].x;
  const double dy = corners[1].y - corners[0].y + corners[2].y - corners[3].y;
  return std::atan2(dy, dx) * 180 / std::numbers::pi;
}

platform::CGRect Quad::bounds() const {
  const auto [left, right] = std::minmax({corners[0].x, corners[1].x, corners[2].x, corners[3].x});
  const auto [top, bottom] = std::minmax({corners[0].y, corners[1].y, corners[2].y, corners[3].y});
  return {left, top, right - left, bottom - top};
}

bool Quad::isConvex() const {
  for (std::size_t i = 0; i < 4; ++i) {
    if (turn(corners[i], corners[(i + 1) % 4], corners[(i + 2) % 4]) <= 0) return false;
  }
  return true;
}

bool Quad::contains(const platform::CGPoint& point) const {
  for (std::size_t i = 0; i < 4; ++i) {
    if (turn(corners[i], corners[(i + 1) % 4], point) < 0) return false;
  }
  return true;
}

double Quad::taper() const {
  const double a = topLength() / bottomLength();
  const double b = leftLength() / rightLength();
  return std::max({a, 1 / a, b, 1 / b});
}

double Quad::documentAspect() const {
  // Halfway between the two, 1.50: a tilt of fifteen degrees makes a card of 1.53, a page of 1.47.
  return aspectErrorFrom(kCardAspect) <= aspectErrorFrom(kPageAspect) ? kCardAspect : kPageAspect;
}

double Quad::aspectErrorFrom(double aspect) const {
  return std::abs(std::log(this->aspect() / aspect));
}

bool Quad::hasDocumentsShape() const {
  constexpr double kMostShapeError = 0.045;  // a tilt of seventeen degrees
  return aspectError() <= kMostShapeError;
}

Quad shifted(Quad quad, const platform::CGPoint& by) {
  for (auto& corner : quad.corners) {
    corner.x += by.x;
    corner.y += by.y;
  }
  return quad;
}

double apart(const Quad& a, const Quad& b) {
  const auto farthest = [&](std::size_t turn) {
    double most = 0;
    for (std::size_t i = 0; i < 4; ++i) {
      const platform::CGPoint& corner = a.corners[i];
      const platform::CGPoint& other = b.corners[(i + turn) % 4];
      most = std::max(most, std::hypot(corner.x - other.x, corner.y - other.y));
    }
    return most;
  };
  return std::min(farthest(0), farthest(2)) / a.width();
}

Quad upsideDown(const Quad& quad) {
  return {{quad.corners[2], quad.corners[3], quad.corners[0], quad.corners[1]}};
}

}  // namespace corvana::engine
