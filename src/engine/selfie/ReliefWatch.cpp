#include "engine/selfie/ReliefWatch.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace corvana::engine {
namespace {

// Points of the face that no expression moves much: nose, brow, temples, cheekbones, eye corners.
constexpr std::array<std::size_t, 71> kRigidPoints{
    1,   2,   4,   5,   195, 197, 6,   168, 9,   151, 10,  67,  297, 127, 356, 234, 454, 116,
    345, 33,  133, 263, 362, 98,  327, 50,  280, 48,  278, 115, 344, 131, 360, 198, 420, 122,
    351, 193, 417, 8,   108, 337, 69,  299, 109, 338, 21,  251, 162, 389, 123, 352, 117, 346,
    101, 330, 36,  266, 142, 371, 126, 355, 47,  277, 114, 343, 188, 412, 174, 399, 94};
constexpr std::size_t kRightEyeCorner = 33;
constexpr std::size_t kLeftEyeCorner = 263;

/// So many frames must agree, so that one misplaced mesh is no evidence.
constexpr std::size_t kAgreeingFrames = 3;

using Column = std::array<double, kRigidPoints.size()>;

double dot(const Column& a, const Column& b) {
  double sum = 0;
  for (std::size_t i = 0; i < a.size(); ++i)
    sum += a[i] * b[i];
  return sum;
}

/// Takes out of `column` what the direction of `unit` explains.
void remove(Column& column, const Column& unit) {
  const double part = dot(column, unit);
  for (std::size_t i = 0; i < column.size(); ++i)
    column[i] -= part * unit[i];
}

void removeAll(Column& column, const std::vector<Column>& basis) {
  for (const Column& unit : basis)
    remove(column, unit);
}

template <typename Coordinate>
Column columnOf(Coordinate coordinate) {
  Column column;
  for (std::size_t i = 0; i < column.size(); ++i)
    column[i] = coordinate(kRigidPoints[i]);
  return column;
}

/// Square and of unit length: what polynomials of second order of the places can explain.
std::vector<Column> polynomials(const FaceMesh& mesh, double unit) {
  const SurfacePoint& right = mesh[kRightEyeCorner];
  const SurfacePoint& left = mesh[kLeftEyeCorner];
  const auto x = [&](std::size_t i) { return (mesh[i].x - (right.x + left.x) / 2) / unit; };
  const auto y = [&](std::size_t i) { return (mesh[i].y - (right.y + left.y) / 2) / unit; };
  std::vector<Column> basis;
  for (Column column : {columnOf([](std::size_t) { return 1.0; }), columnOf(x), columnOf(y),
                        columnOf([&](std::size_t i) { return x(i) * x(i); }),
                        columnOf([&](std::size_t i) { return x(i) * y(i); }),
                        columnOf([&](std::size_t i) { return y(i) * y(i); })}) {
    removeAll(column, basis);
    const double length = std::sqrt(dot(column, column));
    for (double& value : column)
      value /= std::max(length, 1e-9);
    basis.push_back(column);
  }
  return basis;
}

}  // namespace

double reliefMotion(const FaceMesh& reference, const FaceMesh& face) {
  const SurfacePoint& right = reference[kRightEyeCorner];
  const SurfacePoint& left = reference[kLeftEyeCorner];
  const double eyes = std::max(std::hypot(left.x - right.x, left.y - right.y), 1.0);
  const std::vector<Column> explained = polynomials(reference, eyes);
  Column depth = columnOf([&](std::size_t i) { return reference[i].z; });
  removeAll(depth, explained);
  const double relief = std::max(dot(depth, depth), 1e-9);
  // What is left is square to the polynomials, so they need not be taken out of the movement.
  const double alongX = dot(columnOf([&](std::size_t i) { return face[i].x; }), depth) / relief;
  const double alongY = dot(columnOf([&](std::size_t i) { return face[i].y; }), depth) / relief;
  return std::hypot(alongX, alongY);
}

void ReliefWatch::add(const FaceMesh& mesh) {
  if (!first_) first_ = mesh;
  recent_.push_back(reliefMotion(*first_, mesh));
  if (recent_.size() < kAgreeingFrames) return;
  if (recent_.size() > kAgreeingFrames) recent_.pop_front();
  greatest_ = std::max(greatest_, *std::ranges::min_element(recent_));
}

}  // namespace corvana::engine
