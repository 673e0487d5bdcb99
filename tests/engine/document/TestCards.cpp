#include "TestCards.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include <opencv2/imgproc.hpp>

#include "CardArtist.h"
#include "CardView.h"
#include "Mrz.h"
#include "Typeface.h"
#include "devices/gstreamer/ImageFile.h"
#include "engine/vision/MatViews.h"

namespace tests {
namespace {

using session::CardArtist;

constexpr double kScale = CardArtist::kPixelsPerMillimetre;

cv::Mat readPortrait(const std::string& name) {
  return engine::rgbMat(*devices::readImage(std::string(PORTRAITS) + "/" + name).value()).clone();
}

/// The upper middle of a portrait, as on a passport photo.
cv::Mat photo(const std::string& portrait) {
  const cv::Mat picture = readPortrait(portrait);
  const int height = portrait == "person_a.jpg" ? 300 : 700;
  const int width = static_cast<int>(height * CardArtist::kPhotoAspect);
  const int middle = portrait == "person_a.jpg" ? 222 : picture.cols / 2;
  return picture(cv::Rect(middle - width / 2, 0, width, height));
}

struct Design {
  const char* font;
  cv::Scalar paper;
  cv::Scalar ink;
  cv::Scalar banner;
  const char* title;
  double photoLeft;
  double textLeft;
  double zoneLine;  ///< distance of the zone's lines, mm
};

const std::array<Design, 3>& designs() {
  static const std::array<Design, 3> kDesigns{{
      {"DejaVuSerif.ttf",
       {236, 226, 208},
       {40, 30, 20},
       {150, 60, 50},
       "REPUBLIC OF ARDEN",
       56,
       6,
       5.5},
      {"DejaVuSansCondensed.ttf",
       {206, 222, 236},
       {10, 20, 60},
       {206, 222, 236},
       "RESIDENCE PERMIT",
       5,
       36,
       6.1},
      {"DejaVuSans-Bold.ttf",
       {228, 236, 224},
       {30, 40, 30},
       {120, 170, 130},
       "DRIVING LICENCE",
       58,
       5,
       5.8},
  }};
  return kDesigns;
}

/// Draws in millimetres on a side in three channels.
struct Side {
  explicit Side(const Design& look)
      : design(look),
        picture(static_cast<int>(CardArtist::kHeight * kScale),
                static_cast<int>(CardArtist::kWidth * kScale), CV_8UC3, look.paper),
        type(session::Typeface::load(look.font, "fonts-dejavu-core").value()) {
    for (int i = 0; i < 40; ++i) {
      cv::ellipse(picture, {picture.cols / 2, picture.rows * 2}, {200 + 45 * i, 300 + 55 * i}, 0, 0,
                  360, look.paper * 0.95, 3, cv::LINE_AA);
    }
  }
  void text(const std::string& words, double x, double y, double size) {
    type.draw(picture, words, {x * kScale, y * kScale}, size * kScale, design.ink);
  }
  cv::Mat finished() const {
    const int radius = static_cast<int>(3.18 * kScale);
    cv::Mat mask(picture.size(), CV_8UC1, cv::Scalar(0));
    const cv::Rect inner(radius, radius, mask.cols - 2 * radius, mask.rows - 2 * radius);
    cv::rectangle(mask, inner, 255, cv::FILLED);
    cv::dilate(mask, mask,
               cv::getStructuringElement(cv::MORPH_ELLIPSE, {2 * radius + 1, 2 * radius + 1}));
    std::vector<cv::Mat> channels;
    cv::split(picture, channels);
    channels.push_back(mask);
    cv::Mat result;
    cv::merge(channels, result);
    return result;
  }

  const Design& design;
  cv::Mat picture;
  session::Typeface type;
};

cv::Mat drawFront(const Design& design, const session::CardData& card, const cv::Mat& picture) {
  Side side(design);
  cv::rectangle(side.picture, {0, 0}, {side.picture.cols, static_cast<int>(9 * kScale)},
                design.banner, cv::FILLED);
  side.text(design.title, 6, 6.5, 4);
  const cv::Rect place(static_cast<int>(design.photoLeft * kScale), static_cast<int>(13 * kScale),
                       static_cast<int>(24 * kScale), static_cast<int>(30.5 * kScale));
  cv::resize(picture, side.picture(place), place.size(), 0, 0, cv::INTER_CUBIC);
  double y = 15;
  for (const std::string& line : {card.surname, card.givenNames, card.nationality, card.dateOfBirth,
                                  card.documentNumber, card.dateOfExpiry, card.placeOfBirth}) {
    side.text(line, design.textLeft, y, 3.2);
    y += 5.4;
  }
  return side.finished();
}

cv::Mat drawBack(const Design& design, const session::CardData& card) {
  Side side(design);
  side.text(card.authority, 6, 8, 3);
  side.text(card.address, 6, 14, 3);
  side.text(card.height + "  " + card.dateOfIssue, 6, 20, 3);
  const auto machine = session::Typeface::load("OCRB.otf", "fonts-ocr-b").value();
  double y = 34;
  for (const std::string& line : session::mrzLines(card)) {
    machine.drawInCells(side.picture, line, {4.7 * kScale, y * kScale},
                        2.54 * kScale / machine.width("0", 1.0), 2.54 * kScale, design.ink);
    y += design.zoneLine;
  }
  return side.finished();
}

cv::Mat background(int kind) {
  cv::Mat picture(1280, 720, CV_8UC3, cv::Scalar(120, 130, 125));
  if (kind == 3) {
    for (int x = 0; x < 720; x += 46) {
      cv::line(picture, {x, 0}, {x + 60, 1280}, cv::Scalar(60, 60, 160), 14, cv::LINE_AA);
    }
  }
  if (kind > 1) return picture;
  const cv::Mat person = readPortrait(kind == 0 ? "person_a.jpg" : "person_b.jpg");
  const double factor = 1280.0 / person.rows;
  cv::Mat large;
  cv::resize(person, large, cv::Size(), factor, factor);
  return large(cv::Rect((large.cols - 720) / 2, 0, 720, 1280)).clone();
}

}  // namespace

session::CardData holder(int number) {
  session::CardData card;
  if (number == 1) {
    card.surname = "VAN DER HOEVEN-QUILL";
    card.givenNames = "JOZEF ALOYSIUS";
    card.nationality = "ARDENIAN";
    card.dateOfBirth = "1959-02-28";
    card.documentNumber = "XB8071QZ5";
    card.dateOfExpiry = "2029-11-30";
    card.placeOfBirth = "PORT WEXLEY";
    card.address = "4/12 MILL LANE, WEXLEY";
    card.sex = "M";
    card.authority = "MINISTRY OF INTERIOR";
    card.optionalData = "7712O0B8S5Z2";
  }
  if (number == 2) {
    card.surname = "OKONKWO";
    card.givenNames = "IFEOMA";
    card.nationality = "LORIAN";
    card.dateOfBirth = "2003-12-31";
    card.documentNumber = "004518830217";
    card.dateOfExpiry = "2027-06-09";
    card.placeOfBirth = "SANDHAVEN";
    card.address = "230 GROVE STREET, KELL";
    card.authority = "DISTRICT OF KELL";
    card.height = "168 CM";
  }
  return card;
}

CardSides drawCard(int design, const session::CardData& card, const std::string& portrait) {
  if (design == 0) {
    const CardArtist artist = CardArtist::create().value();
    return {artist.front(card, photo(portrait)), artist.back(card)};
  }
  const Design& look = designs()[static_cast<std::size_t>(design - 1)];
  return {drawFront(look, card, photo(portrait)), drawBack(look, card)};
}

HeldPicture hold(const cv::Mat& side, const Held& held) {
  session::CardPose pose;
  pose.visible = true;
  pose.roll = held.roll;
  const double angle = held.roll * CV_PI / 180;
  const double w = held.width / 2;
  const double h = w * side.rows / side.cols;
  const auto place = [&](double x, double y) {
    y *= 1 - held.taper * x / (2 * w);
    return cv::Point2f(static_cast<float>(held.x + std::cos(angle) * x - std::sin(angle) * y),
                       static_cast<float>(held.y + std::sin(angle) * x + std::cos(angle) * y));
  };
  pose.corners = {place(-w, -h), place(w, -h), place(w, h), place(-w, h)};
  pose.grip = place(0.35 * w, 0.8 * h);
  cv::Mat picture = background(held.background);
  if (held.thumb) {
    session::CardView(side, side, held.width, {205, 160, 135}).draw(pose, picture);
  } else {
    cv::Mat drawing;
    cv::resize(side, drawing, cv::Size(), 1.15 * held.width / side.cols,
               1.15 * held.width / side.cols, cv::INTER_AREA);
    session::layOver(picture, drawing, pose.corners, 1.0);
  }
  if (held.blur > 0) cv::GaussianBlur(picture, picture, cv::Size(), held.blur);
  cv::RNG random(3);
  cv::Mat noise(picture.size(), CV_16SC3);
  random.fill(noise, cv::RNG::NORMAL, 0, held.noise);
  cv::add(picture, noise, picture, cv::noArray(), CV_8U);
  return {pictureOf(picture), pose.corners};
}

platform::PixelBufferRef scan(const cv::Mat& side, int width) {
  cv::Mat rgb;
  cv::cvtColor(side, rgb, cv::COLOR_RGBA2RGB);
  cv::resize(rgb, rgb, cv::Size(width, width * rgb.rows / rgb.cols), 0, 0, cv::INTER_AREA);
  return pictureOf(rgb);
}

platform::PixelBufferRef pictureOf(const cv::Mat& rgb) {
  const cv::Mat packed = rgb.clone();
  return std::make_shared<platform::PixelBuffer>(
      packed.cols, packed.rows, platform::PixelFormat::rgb24,
      std::vector<std::uint8_t>(packed.datastart, packed.dataend));
}

std::string joined(const std::vector<std::string>& lines) {
  return std::accumulate(lines.begin(), lines.end(), std::string());
}

double editRatio(const std::string& a, const std::string& b) {
  std::vector<std::size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), 0U);
  for (std::size_t i = 0; i < a.size(); ++i) {
    std::size_t diagonal = std::exchange(row[0], i + 1);
    for (std::size_t j = 0; j < b.size(); ++j) {
      const std::size_t change = diagonal + (a[i] == b[j] ? 0U : 1U);
      diagonal = row[j + 1];
      row[j + 1] = std::min({change, diagonal + 1, row[j] + 1});
    }
  }
  return static_cast<double>(row.back()) / static_cast<double>(std::max(a.size(), b.size()));
}

}  // namespace tests
