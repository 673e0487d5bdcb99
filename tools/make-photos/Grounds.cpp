#include "Grounds.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <map>

#include <opencv2/imgproc.hpp>

#include "GroundLight.h"
#include "GroundPainters.h"
#include "People.h"
#include "Typeface.h"

namespace corvana::photos {
namespace {

using session::Random;
using session::Typeface;

cv::Mat plain(cv::Size size, double scale, Random& random) {
  static const std::vector<cv::Scalar> kColours = {
      {232, 232, 228}, {206, 200, 190}, {122, 126, 130}, {46, 50, 58},
      {38, 62, 108},   {60, 104, 84},   {168, 58, 52},   {222, 206, 172}};
  const cv::Mat light = 1.0 + 0.015 * unevenness(size, 9.0 * scale, 9.0 * scale, random);
  return coloured(light, drawFrom(kColours, random));
}

cv::Mat wood(cv::Size size, double scale, Random& random) {
  static const std::vector<cv::Scalar> kColours = {
      {104, 74, 52}, {164, 122, 82}, {206, 172, 128}, {84, 56, 44}, {142, 104, 84}};
  cv::Mat light = 1.0 + 0.07 * unevenness(size, 0.5 * scale, 30.0 * scale, random) +
                  0.08 * unevenness(size, 4.0 * scale, 70.0 * scale, random);
  const double plank = random.uniform(60.0, 140.0) * scale;
  for (double y = random.uniform(0.0, plank); y < size.height; y += plank) {
    const int row = static_cast<int>(y);
    cv::Mat gap =
        light.rowRange(row, std::min(size.height, row + 1 + static_cast<int>(0.4 * scale)));
    gap *= 0.55;
  }
  return coloured(light, drawFrom(kColours, random));
}

cv::Mat cloth(cv::Size size, double scale, Random& random) {
  static const std::vector<cv::Scalar> kColours = {{176, 168, 152}, {54, 66, 96},    {128, 44, 50},
                                                   {96, 110, 84},   {222, 216, 204}, {70, 70, 74}};
  const double thread = random.uniform(0.5, 1.3) * scale;
  const double checks = random.uniform(0.0, 1.0) < 0.4 ? random.uniform(12.0, 30.0) * scale : 0.0;
  cv::Mat light = 1.0 + 0.04 * unevenness(size, thread, 12.0 * thread, random) +
                  0.06 * unevenness(size, 40.0 * scale, 25.0 * scale, random);
  for (int row = 0; row < size.height; ++row)
    for (int column = 0; column < size.width; ++column) {
      const double weave = std::sin(CV_PI * row / thread) * std::sin(CV_PI * column / thread);
      float& value = light.at<float>(row, column);
      value += static_cast<float>(0.09 * weave);
      if (checks <= 0.0) continue;
      if (std::fmod(row, checks) < 0.5 * checks) value *= 0.86F;
      if (std::fmod(column, checks) < 0.5 * checks) value *= 0.86F;
    }
  return coloured(light, drawFrom(kColours, random));
}

void drawColumn(cv::Mat& page, const cv::Rect& place, const Typeface& face, double letter,
                Random& random) {
  const cv::Scalar ink = cv::Scalar::all(random.uniform(20, 70));
  double y = place.y + letter;
  while (y < place.y + place.height) {
    if (random.uniform(0, 1) < 0.05) {
      const int height = static_cast<int>(letter * random.uniform(8.0, 18.0));
      const cv::Rect picture(place.x, static_cast<int>(y), place.width, height);
      cv::rectangle(page, picture, cv::Scalar::all(random.uniform(60, 190)), cv::FILLED);
      y += height + 2.0 * letter;
      continue;
    }
    const bool heading = random.uniform(0, 1) < 0.07;
    const double size = heading ? 2.2 * letter : letter;
    std::string line = words(static_cast<std::size_t>(place.width / size * 2.2), random);
    while (!line.empty() && face.width(line, size) > place.width)
      line.resize(line.size() - 1);
    face.draw(page, line, {static_cast<double>(place.x), y}, size, ink);
    y += 1.3 * size;
  }
}

cv::Mat print(cv::Size size, double scale, const Typeface& face, Random& random) {
  const double paper = random.uniform(205, 245);
  cv::Mat page(size, CV_8UC3, cv::Scalar(paper, paper, paper * random.uniform(0.93, 1.0)));
  const double width = random.uniform(45.0, 90.0) * scale;
  const double letter = random.uniform(2.4, 4.2) * scale;
  for (double x = 0.04 * width; x < size.width; x += 1.08 * width)
    drawColumn(page, {static_cast<int>(x), 0, static_cast<int>(width), size.height}, face, letter,
               random);
  return page;
}

cv::Mat stone(cv::Size size, double scale, Random& random) {
  static const std::vector<cv::Scalar> kColours = {
      {150, 146, 142}, {92, 92, 96}, {196, 182, 170}, {60, 64, 62}};
  const cv::Mat light = 1.0 + 0.16 * unevenness(size, 1.4 * scale, 1.4 * scale, random) +
                        0.12 * unevenness(size, 0.4 * scale, 0.4 * scale, random);
  return coloured(light, drawFrom(kColours, random));
}

cv::Mat tiles(cv::Size size, double scale, Random& random) {
  static const std::vector<cv::Scalar> kColours = {
      {214, 216, 214}, {120, 150, 160}, {186, 150, 120}, {70, 84, 100}};
  cv::Mat light = 1.0 + 0.02 * unevenness(size, 15.0 * scale, 15.0 * scale, random);
  const double tile = random.uniform(35.0, 110.0) * scale;
  const double joint = random.uniform(1.5, 3.5) * scale;
  for (int row = 0; row < size.height; ++row)
    for (int column = 0; column < size.width; ++column)
      if (std::fmod(row, tile) < joint || std::fmod(column, tile) < joint)
        light.at<float>(row, column) *= 0.72F;
  return coloured(light, drawFrom(kColours, random));
}

/// A carpet: spots of several colours, rows of lozenges, pile in all directions.
cv::Mat carpet(cv::Size size, double scale, Random& random) {
  static const std::vector<cv::Scalar> kColours = {
      {132, 40, 44}, {40, 60, 92}, {188, 164, 120}, {70, 92, 66}, {60, 46, 42}};
  cv::Mat picture(size, CV_8UC3, drawFrom(kColours, random));
  const double step = random.uniform(14.0, 32.0) * scale;
  const cv::Scalar inks[] = {drawFrom(kColours, random), drawFrom(kColours, random)};
  int row = 0;
  for (double y = 0.0; y < size.height + step; y += step, ++row) {
    int column = 0;
    for (double x = 0.0; x < size.width + step; x += step, ++column) {
      const double half = step * ((row + column) % 2 == 0 ? 0.42 : 0.18);
      const std::vector<cv::Point> lozenge = {cv::Point2d(x - half, y), cv::Point2d(x, y - half),
                                              cv::Point2d(x + half, y), cv::Point2d(x, y + half)};
      cv::fillConvexPoly(picture, lozenge, inks[(row + column) % 2], cv::LINE_AA);
    }
  }
  const cv::Mat pile = 1.0 + 0.14 * unevenness(size, 0.6 * scale, 0.6 * scale, random);
  return lit(picture, pile);
}

/// Upholstery: stripes of uneven width, straight or nearly.
cv::Mat stripes(cv::Size size, double scale, Random& random) {
  static const std::vector<cv::Scalar> kColours = {
      {226, 218, 200}, {110, 132, 120}, {70, 80, 108}, {178, 96, 70}, {54, 50, 52}, {206, 186, 90}};
  cv::Mat picture(size, CV_8UC3);
  for (double x = 0.0; x < size.width;) {
    const double width = random.uniform(3.0, 26.0) * scale;
    cv::rectangle(picture, cv::Rect2d(x, 0.0, width + 1.0, size.height), drawFrom(kColours, random),
                  cv::FILLED);
    x += width;
  }
  return lit(picture, 1.0 + 0.06 * unevenness(size, 1.0 * scale, 20.0 * scale, random));
}

/// Leather: grains of uneven size, each with a dark rim, and worn places.
cv::Mat leather(cv::Size size, double scale, Random& random) {
  static const std::vector<cv::Scalar> kColours = {
      {92, 52, 34}, {38, 34, 34}, {150, 96, 58}, {112, 30, 36}, {66, 74, 62}};
  const double grain = random.uniform(0.8, 2.2) * scale;
  const cv::Mat bumps = cv::abs(unevenness(size, grain, grain, random));
  const cv::Mat rims = cv::min(bumps, 0.5) * 0.7;
  const cv::Mat worn = 0.10 * unevenness(size, 25.0 * scale, 25.0 * scale, random);
  return coloured(0.68 + rims + worn, drawFrom(kColours, random));
}

/// Marble: veins that wander, on a cloudy stone.
cv::Mat marble(cv::Size size, double scale, Random& random) {
  static const std::vector<cv::Scalar> kColours = {
      {232, 230, 226}, {70, 84, 80}, {206, 192, 178}, {120, 104, 104}};
  const cv::Mat wander = unevenness(size, 14.0 * scale, 14.0 * scale, random) +
                         0.35 * unevenness(size, 4.0 * scale, 4.0 * scale, random);
  const cv::Mat veins = cv::min(cv::abs(wander), 0.12) * (1 / 0.12);
  const double depth = random.uniform(0.15, 0.4);
  const cv::Mat clouds = 0.05 * unevenness(size, 20.0 * scale, 20.0 * scale, random);
  return coloured(1.0 - depth + depth * veins + clouds, drawFrom(kColours, random));
}

/// Terrazzo: chips of stone of all sizes in a paler mass.
cv::Mat terrazzo(cv::Size size, double scale, Random& random) {
  static const std::vector<cv::Scalar> kColours = {{214, 208, 198}, {96, 92, 90},
                                                   {158, 88, 66},   {70, 104, 98},
                                                   {228, 224, 216}, {178, 152, 112}};
  cv::Mat picture(size, CV_8UC3, drawFrom(kColours, random));
  const double chips = size.area() / (60.0 * scale * scale);
  for (int i = 0; i < chips; ++i) {
    const cv::Point2d at(random.uniform(0.0, size.width), random.uniform(0.0, size.height));
    const double reach = scale * random.uniform(0.6, 5.0);
    std::vector<cv::Point> chip;
    for (double angle = random.uniform(0.0, 1.0); angle < 6.28; angle += random.uniform(0.7, 1.6))
      chip.emplace_back(at + reach * cv::Point2d(std::cos(angle), 0.7 * std::sin(angle)));
    cv::fillPoly(picture, chip, drawFrom(kColours, random), cv::LINE_AA);
  }
  return lit(picture, 1.0 + 0.03 * unevenness(size, 2.0 * scale, 2.0 * scale, random));
}

/// Bands of several colours and widths, again and again, as one colour for each pixel.
std::vector<cv::Vec3f> sett(int length, double scale, Random& random) {
  static const std::vector<cv::Scalar> kColours = {{150, 30, 40},  {24, 60, 44},    {30, 40, 84},
                                                   {210, 180, 70}, {232, 228, 220}, {30, 28, 30}};
  std::vector<cv::Vec3f> repeat;
  for (int band = 0; band < 7; ++band) {
    const cv::Scalar colour = drawFrom(kColours, random);
    const auto width = static_cast<std::size_t>(random.uniform(0.8, 12.0) * scale) + 1;
    repeat.insert(repeat.end(), width, cv::Vec3f(cv::Vec3d(colour[0], colour[1], colour[2])));
  }
  std::vector<cv::Vec3f> all;
  for (std::size_t i = 0; i < static_cast<std::size_t>(length); ++i)
    all.push_back(repeat[i % repeat.size()]);
  return all;
}

/// Tartan: the same bands across and along, whose colours mix where they cross, on twill.
cv::Mat tartan(cv::Size size, double scale, Random& random) {
  const auto bands = sett(std::max(size.width, size.height), scale, random);
  const int thread = std::max(1, static_cast<int>(0.5 * scale));
  cv::Mat picture(size, CV_8UC3);
  for (int row = 0; row < size.height; ++row)
    for (int column = 0; column < size.width; ++column) {
      const float across = (row + column) / thread % 2 == 0 ? 0.65F : 0.35F;
      picture.at<cv::Vec3b>(row, column) =
          across * bands[static_cast<std::size_t>(row)] +
          (1.0F - across) * bands[static_cast<std::size_t>(column)];
    }
  return lit(picture, 1.0 + 0.08 * unevenness(size, 0.8 * scale, 0.8 * scale, random));
}

/// Cork: pressed crumbs of several browns, with dark pores.
cv::Mat cork(cv::Size size, double scale, Random& random) {
  static const std::vector<cv::Scalar> kColours = {
      {196, 156, 108}, {172, 128, 84}, {212, 178, 134}, {150, 108, 72}};
  cv::Mat picture(size, CV_8UC3, drawFrom(kColours, random));
  const double crumbs = size.area() / (5.0 * scale * scale);
  for (int i = 0; i < crumbs; ++i) {
    const cv::Point2d at(random.uniform(0.0, size.width), random.uniform(0.0, size.height));
    cv::Size2d reach(scale * random.uniform(0.5, 2.2), scale * random.uniform(0.4, 1.3));
    const bool isPore = random.uniform(0.0, 1.0) < 0.06;
    if (isPore) reach *= 0.6;
    cv::ellipse(picture, cv::RotatedRect(at, reach, random.uniform(0, 180)),
                isPore ? cv::Scalar(62, 42, 30) : drawFrom(kColours, random), cv::FILLED,
                cv::LINE_AA);
  }
  return lit(picture, 1.0 + 0.05 * unevenness(size, 0.5 * scale, 0.5 * scale, random));
}

/// A mat of bamboo: round slats side by side, tied by threads across.
cv::Mat bamboo(cv::Size size, double scale, Random& random) {
  static const std::vector<cv::Scalar> kColours = {
      {214, 190, 130}, {176, 140, 84}, {120, 88, 58}, {196, 198, 150}};
  const double slat = random.uniform(2.5, 7.0) * scale;
  const double tie = random.uniform(25.0, 60.0) * scale;
  cv::Mat light = 1.0 + 0.05 * unevenness(size, 0.4 * scale, 12.0 * scale, random) +
                  0.05 * unevenness(size, slat, 60.0 * scale, random);
  for (int row = 0; row < size.height; ++row) {
    const double across = 2.0 * std::fmod(row, slat) / slat - 1.0;
    light.row(row) *= 0.45 + 0.55 * std::sqrt(1.0 - across * across);
  }
  for (double x = random.uniform(0.0, tie); x < size.width; x += tie) {
    const cv::Rect2d thread(x, 0.0, 1.2 * scale, size.height);
    light(cv::Rect(thread) & cv::Rect({}, size)) *= 0.5;
  }
  return coloured(light, drawFrom(kColours, random));
}

/// Knitted wool: columns of loops that lean to one side and the other.
cv::Mat knit(cv::Size size, double scale, Random& random) {
  static const std::vector<cv::Scalar> kColours = {
      {206, 196, 176}, {70, 88, 120}, {150, 60, 70}, {96, 110, 84}};
  const double loop = random.uniform(2.4, 5.0) * scale;
  cv::Mat light(size, CV_32FC1);
  for (int row = 0; row < size.height; ++row) {
    for (int column = 0; column < size.width; ++column) {
      const double across = std::fmod(column, 2.0 * loop) / loop - 1.0;  // of two leaning stitches
      const double along = std::fmod(row + 0.9 * loop * std::abs(across), loop) / loop;
      const double rim = std::min(std::abs(across), 1.0 - std::abs(across));
      light.at<float>(row, column) =
          static_cast<float>(0.55 + 0.5 * std::sqrt(rim) + 0.25 * std::sin(CV_PI * along));
    }
  }
  light += 0.06 * unevenness(size, 0.4 * scale, 0.8 * scale, random);
  return coloured(light, drawFrom(kColours, random));
}

using Painter = cv::Mat (*)(cv::Size, double, Random&);

const std::map<std::string, Painter>& painters() {
  static const std::map<std::string, Painter> kAll = {
      {"plain", plain},       {"wood", wood},
      {"cloth", cloth},       {"stone", stone},
      {"tiles", tiles},       {"carpet", carpet},
      {"stripes", stripes},   {"leather", leather},
      {"marble", marble},     {"terrazzo", terrazzo},
      {"tartan", tartan},     {"cork", cork},
      {"bamboo", bamboo},     {"bricks", bricks},
      {"knit", knit},         {"grass", grass},
      {"mosaic", mosaic},     {"denim", denim},
      {"keyboard", keyboard}, {"cardboard", cardboard},
      {"notebook", notebook}, {"steel", steel},
      {"wicker", wicker},     {"atlas", atlas},
      {"oilcloth", oilcloth}, {"quilt", quilt},
      {"letters", letters},   {"parquet", parquet},
      {"grille", grille},     {"calendar", calendar},
      {"lace", lace},         {"strandboard", strandboard}};
  return kAll;
}

}  // namespace

std::string words(std::size_t letters, Random& random) {
  static const std::vector<std::string> kSyllables = {
      "ba", "lor", "mi", "ten", "qua", "ri", "sol", "ve", "dun", "ka", "pel", "os", "ti", "gran"};
  std::string text;
  while (text.size() < letters) {
    for (int left = static_cast<int>(random.uniform(1.0, 4.0)); left > 0; --left)
      text += drawFrom(kSyllables, random);
    text += random.uniform(0, 1) < 0.1 ? ", " : " ";
  }
  return text;
}

const std::vector<std::string>& groundNames() {
  static const std::vector<std::string> kNames = {
      "plain",    "wood",    "print",    "cloth",    "stone",      "tiles",    "carpet",
      "stripes",  "leather", "marble",   "terrazzo", "tartan",     "cork",     "bamboo",
      "bricks",   "knit",    "grass",    "mosaic",   "denim",      "keyboard", "cardboard",
      "notebook", "steel",   "wicker",   "atlas",    "oilcloth",   "quilt",    "letters",
      "parquet",  "grille",  "calendar", "lace",     "strandboard"};
  return kNames;
}

session::Result<cv::Mat> paintGround(const std::string& name, cv::Size size, double scale,
                                     Random& random) {
  if (const auto found = painters().find(name); found != painters().end())
    return found->second(size, scale, random);
  if (name != "print")
    return session::fault("There is no ground named " + name + ": correct the design.");
  auto face = Typeface::load("DejaVuSerif.ttf", "fonts-dejavu-core");
  if (!face) return session::fault(face.error());
  return print(size, scale, *face, random);
}

}  // namespace corvana::photos
