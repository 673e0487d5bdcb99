#include "TestCards.h"

#include <cmath>

#include <opencv2/imgproc.hpp>

#include "CardArtist.h"
#include "CardView.h"
#include "devices/pictures/ImageFile.h"
#include "engine/vision/MatViews.h"

namespace corvana::tests {
namespace {

using session::CardArtist;

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

/// The side from another printer: on other paper, with the picture on the right of a front.
void reprint(cv::Mat& side, const cv::Scalar& paper, bool isFront) {
  cv::multiply(side, paper, side, 1.0 / 255);
  if (!isFront) return;
  const auto column = [&](double from, double until) {  // below the title, mm
    constexpr double kScale = CardArtist::kPixelsPerMillimetre;
    return side(cv::Range(int(11 * kScale), int(52 * kScale)),
                cv::Range(int(from * kScale), int(until * kScale)));
  };
  cv::Mat swapped;
  cv::hconcat(column(31.5, 83), column(3, 31.5), swapped);
  swapped.copyTo(column(3, 83));
}

cv::Mat background(int kind) {
  cv::Mat picture(1280, 720, CV_8UC3, cv::Scalar(120, 130, 125));
  for (int x = 0; kind == 3 && x < 720; x += 46)
    cv::line(picture, {x, 0}, {x + 60, 1280}, cv::Scalar(60, 60, 160), 14, cv::LINE_AA);
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
    card.sex = "M";
    card.optionalData = "7712O0B8S5Z2";
  } else if (number == 2) {
    card.surname = "OKONKWO";
    card.givenNames = "IFEOMA";
    card.dateOfBirth = "2003-12-31";
    card.documentNumber = "004518830217";
    card.dateOfExpiry = "2027-06-09";
  }
  return card;
}

CardSides drawCard(int design, const session::CardData& card, const std::string& portrait) {
  const CardArtist artist = CardArtist::create().value();
  CardSides sides{artist.front(card, photo(portrait)), artist.back(card)};
  if (design == 1) {
    reprint(sides.front, {255, 215, 180, 255}, true);
    reprint(sides.back, {180, 215, 255, 255}, false);
  }
  return sides;
}

cv::Mat lengthened(const cv::Mat& side, double aspect) {
  cv::Mat longer;
  cv::resize(side, longer, {side.cols, cvRound(side.cols / aspect)}, 0, 0, cv::INTER_AREA);
  return longer;
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
  session::CardView(side, side, held.width, {205, 160, 135}).draw(pose, picture);
  if (held.blur > 0) cv::GaussianBlur(picture, picture, cv::Size(), held.blur);
  cv::RNG random(3);
  cv::Mat noise(picture.size(), CV_16SC3);
  random.fill(noise, cv::RNG::NORMAL, 0, held.noise);
  cv::add(picture, noise, picture, cv::noArray(), CV_8U);
  return {engine::pixelBufferFrom(picture), pose.corners};
}

}  // namespace corvana::tests
