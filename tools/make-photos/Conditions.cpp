#include "Conditions.h"

#include <algorithm>

#include "People.h"

namespace corvana::photos {
namespace {

using session::Random;

constexpr double kDeepestThumb = 11.0;  // millimetres, what it covers of the card, from the edge
constexpr double kLeastThumb = 2.5;

bool chance(Random& random, double share) {
  return random.uniform(0.0, 1.0) < share;
}

bool isClear(const cv::Rect2d& place, const std::vector<cv::Rect2d>& contents) {
  return std::all_of(contents.begin(), contents.end(),
                     [&](const cv::Rect2d& box) { return (box & place).empty(); });
}

/// Where a thumb may lie `depth` deep: one of the four edges, `along` it.
cv::Rect2d thumbBox(int edge, double along, double depth, cv::Size2d card) {
  const double half = 0.5 * kThumbWidth;
  switch (edge) {
    case 0:
      return {along * card.width - half, card.height - depth, kThumbWidth, depth};
    case 1:
      return {0.0, along * card.height - half, depth, kThumbWidth};
    case 2:
      return {along * card.width - half, 0.0, kThumbWidth, depth};
    default:
      return {card.width - depth, along * card.height - half, depth, kThumbWidth};
  }
}

std::optional<ThumbPlace> drawThumbPlace(cv::Size2d card, const std::vector<cv::Rect2d>& contents,
                                         Random& random) {
  for (int attempt = 0; attempt < 60; ++attempt) {
    const int edge = static_cast<int>(random.uniform(0.0, 4.0));
    const double along = random.uniform(0.12, 0.88);
    const double depth = random.uniform(kLeastThumb, kDeepestThumb);
    const cv::Rect2d box = thumbBox(edge, along, depth, card);
    if (!isClear(box, contents)) continue;
    const cv::Point2d middle(box.x + 0.5 * box.width, box.y + 0.5 * box.height);
    const std::array<cv::Point2d, 4> tips = {
        cv::Point2d(middle.x, box.y), {depth, middle.y}, {middle.x, depth}, {box.x, middle.y}};
    return ThumbPlace{tips[static_cast<std::size_t>(edge)], 90.0 * edge};
  }
  return std::nullopt;
}

std::optional<Glare> drawGlare(cv::Size2d card, const std::vector<cv::Rect2d>& contents,
                               Random& random) {
  Glare glare{{card.width * random.uniform(0.0, 1.0), card.height * random.uniform(0.0, 1.0)},
              card.width * random.uniform(0.08, 0.22),
              random.uniform(0.15, 1.0)};
  const cv::Rect2d blinded(glare.centre.x - glare.radius, glare.centre.y - glare.radius,
                           2.0 * glare.radius, 2.0 * glare.radius);
  // Over print, what still lets it be seen.
  if (!isClear(blinded, contents)) glare.strength = std::min(glare.strength, 0.45);
  return glare;
}

void drawPose(Conditions& conditions, Random& random) {
  static const std::vector<double> kAspects = {4.0 / 3.0, 3.0 / 4.0, 16.0 / 9.0, 9.0 / 16.0};
  conditions.cardWidth = random.uniform(400.0, 1200.0);
  conditions.turn = random.uniform(0.0, 360.0);
  conditions.tilt = random.uniform(0.0, 15.0);
  conditions.tiltDirection = random.uniform(0.0, 360.0);
  conditions.groundTurn = random.uniform(0.0, 360.0);
  conditions.aspect = drawFrom(kAspects, random);
  conditions.focalLength = random.uniform(0.75, 1.1);
  const double filling = random.uniform(0.0, 1.0);
  conditions.fill = filling < 0.15 ? random.uniform(0.93, 0.985) : random.uniform(0.5, 0.88);
  conditions.cut = filling > 0.92;
}

void drawLight(Conditions& conditions, Random& random) {
  conditions.gain = random.uniform(0.72, 1.08);
  conditions.fall = random.uniform(0.0, 0.45);
  conditions.fallAngle = random.uniform(0.0, 360.0);
  conditions.warmth = random.uniform(-0.6, 1.0);
  if (chance(random, 0.25)) {
    conditions.shadow = random.uniform(0.2, 0.5);
    conditions.shadowAngle = random.uniform(0.0, 360.0);
    conditions.shadowPlace = random.uniform(-0.25, 0.25);
  }
}

}  // namespace

Conditions drawConditions(const std::string& ground, cv::Size2d card,
                          const std::vector<cv::Rect2d>& contents, Random& random) {
  Conditions conditions;
  conditions.ground = ground;
  drawPose(conditions, random);
  drawLight(conditions, random);
  const double thousandth = conditions.cardWidth / 1000.0;
  conditions.defocus = thousandth * random.uniform(0.2, 1.8);
  if (chance(random, 0.2)) conditions.motion = thousandth * random.uniform(2.0, 6.0);
  conditions.motionAngle = random.uniform(0.0, 180.0);
  conditions.noise = random.uniform(0.5, 6.0);
  if (chance(random, 0.2)) conditions.glare = drawGlare(card, contents, random);
  if (chance(random, 0.15)) conditions.thumb = drawThumbPlace(card, contents, random);
  conditions.quality = static_cast<int>(random.uniform(60.0, 96.0));
  return conditions;
}

}  // namespace corvana::photos
