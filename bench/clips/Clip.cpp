#include "Clip.h"

#include <algorithm>
#include <cmath>

#include <opencv2/imgproc.hpp>

#include "CardArtist.h"
#include "Ease.h"
#include "SideArtist.h"
#include "Thumb.h"

namespace corvana::bench {
namespace {

using session::CardPose;
using session::Random;

constexpr double kAspect = 85.60 / 53.98;
constexpr int kPortraitPixels = 520;
/// The frame in which the card should be held, as the headless screen has it.
const cv::Rect2d kFrame(40, 800, 640, 404);

/// A place given in shares of the card, in the picture.
cv::Point2d onCard(const CardPose& pose, cv::Point2d share) {
  const auto& c = pose.corners;
  const cv::Point2d upper = cv::Point2d(c[0]) + share.x * cv::Point2d(c[1] - c[0]);
  const cv::Point2d lower = cv::Point2d(c[3]) + share.x * cv::Point2d(c[2] - c[3]);
  return upper + share.y * (lower - upper);
}

/// The same card on white paper: its ground made as light as print gets.
cv::Mat onWhite(const cv::Mat& side) {
  constexpr double kPaper = 246;
  std::vector<cv::Mat> channels;  // red, green, blue and what is cut off at the corners
  cv::split(side, channels);
  for (std::size_t i = 0; i < 3; ++i) {
    cv::Mat values = channels[i].clone().reshape(1, 1);
    cv::sort(values, values, cv::SORT_ASCENDING);
    channels[i] *= kPaper / values.at<std::uint8_t>(values.cols * 7 / 10);
  }
  cv::Mat white;
  cv::merge(channels, white);
  return white;
}

bool isCard(const photos::Design& design) {
  return !design.unseen && !design.book && design.size().width < 90;
}

}  // namespace

session::Result<ClipMatter> ClipMatter::read(const std::string& designs,
                                             const std::string& portraits,
                                             const std::string& models) {
  ClipMatter matter;
  auto all = photos::readDesigns(designs + "/designs");
  if (!all) return session::fault(all.error());
  std::ranges::copy_if(*all, std::back_inserter(matter.designs), isCard);
  auto names = photos::readNames(designs + "/people.json");
  if (!names) return session::fault(names.error());
  matter.names = std::move(*names);
  auto reader = session::PortraitReader::create(models);
  if (!reader) return session::fault(reader.error());
  for (const char* file : {"/person_a.jpg", "/person_b.jpg"}) {
    auto portrait = reader->read(portraits + file);
    if (!portrait) return session::fault(portrait.error());
    matter.portraits.push_back(std::move(*portrait));
  }
  return matter;
}

Clip::Clip(const ClipMatter& matter, Cause cause, std::uint64_t seed)
    : cause_(cause),
      random_(seed * 1009 + static_cast<std::uint64_t>(cause)),
      swayX_(random_, 0.4),
      swayY_(random_, 0.35) {
  wrongFrom_ = random_.uniform(1.5, 1.8);
  held_ = drawHeld();
  wrong_ = drawWrong(held_);
  roll_ = random_.uniform(-6, 6);
  lean_ = random_.uniform(-0.05, 0.05);
  noise_ = random_.uniform(1, 5);
  gain_ = random_.uniform(0.7, 1.0);
  strength_ = cause == Cause::blur ? random_.uniform(3.5, 7.0) : random_.uniform(0.08, 0.2);
  spot_ = {random_.uniform(0.15, 0.85), random_.uniform(0.2, 0.8)};
  spotSize_ = random_.uniform(0.11, 0.2);
  fingerTurn_ = random_.uniform(-35, 35) + (random_.uniform(0, 1) < 0.5 ? 0 : 90);
  if (isWhite()) drawLightOnWhite();
  paintCard(matter);
}

void Clip::drawLightOnWhite() {
  const bool isStrong = cause_ == Cause::strongLight;
  gain_ = random_.uniform(0.7, 0.95);
  if (isStrong) strength_ = random_.uniform(0.96, 1.12);
  const double angle = random_.uniform(0, 2 * CV_PI);
  slope_ = random_.uniform(0.0, 0.5) * cv::Point2d(std::cos(angle), std::sin(angle));
}

void Clip::lightUnevenly(cv::Mat& picture, double wrong) const {
  const double share = cause_ == Cause::strongLight ? wrong : 1.0;
  for (int row = 0; row < picture.rows; ++row) {
    for (int column = 0; column < picture.cols; ++column) {
      const double x = static_cast<double>(column) / picture.cols - 0.5;
      const double y = static_cast<double>(row) / picture.rows - 0.75;  // where the card is held
      picture.at<cv::Vec3f>(row, column) *= 1 + share * (slope_.x * x + slope_.y * y);
    }
  }
}

Clip::Place Clip::drawHeld() {
  const double width = random_.uniform(460, 620);
  return {kFrame.x + 0.5 * kFrame.width + random_.uniform(-20, 20),
          kFrame.y + 0.5 * kFrame.height + random_.uniform(-30, 20), width};
}

Clip::Place Clip::drawWrong(const Place& held) {
  Place wrong = held;
  if (cause_ == Cause::tooNear) wrong.width = random_.uniform(850, 1050);
  if (cause_ == Cause::tooFar) wrong.width = random_.uniform(190, 310);
  if (cause_ != Cause::partlyOutside) return wrong;
  const double hidden = random_.uniform(0.12, 0.45);
  const double direction = random_.uniform(0, 3);
  const double height = held.width / kAspect;
  if (direction < 1) wrong.x = held.width * (0.5 - hidden);
  if (direction >= 1 && direction < 2) wrong.x = 720 - held.width * (0.5 - hidden);
  if (direction >= 2) wrong.y = 1280 - height * (0.5 - hidden);
  return wrong;
}

void Clip::paintCard(const ClipMatter& matter) {
  const photos::Design& design = photos::drawFrom(matter.designs, random_);
  const session::CardData holder = photos::drawHolder(design, matter.names, random_);
  const session::Portrait& portrait = photos::drawFrom(matter.portraits, random_);
  const cv::Rect2d place = design.front.photo.value_or(cv::Rect2d(0, 0, 26, 33));
  const cv::Mat photo =
      session::passportPhoto(portrait, place.width / place.height, kPortraitPixels);
  const bool isBack = design.back && random_.uniform(0, 1) < 0.4;
  const photos::SideDesign& shown = isBack ? *design.back : design.front;
  if (cause_ == Cause::finger && !shown.fields.empty()) {
    const cv::Rect2d print = photos::fieldBox(design, photos::drawFrom(shown.fields, random_));
    const cv::Size2d size = design.size();
    spot_ = {(print.x + random_.uniform(0.2, 0.6) * std::min(print.width, 25.0)) / size.width,
             (print.y + 0.5 * print.height) / size.height};
  }
  auto artist = photos::SideArtist::create(design);
  cv::Mat side = artist.value().paint(shown, holder, holder, photo);
  if (isWhite()) side = onWhite(side);
  session::PersonScript script;
  person_ = std::make_unique<session::PersonView>(portrait, script);
  const cv::Scalar skin = person_->skinColour();
  card_ =
      std::make_unique<session::CardView>(side, side, std::min(held_.width, wrong_.width), skin);
  near_ =
      std::make_unique<session::CardView>(side, side, std::max(held_.width, wrong_.width), skin);
  finger_ = session::drawThumb(skin);
}

CardPose Clip::poseAt(double seconds, double wrong) const {
  const double width = held_.width + wrong * (wrong_.width - held_.width);
  const cv::Point2d middle(held_.x + wrong * (wrong_.x - held_.x) + 3.0 * swayX_.at(seconds),
                           held_.y + wrong * (wrong_.y - held_.y) + 3.0 * swayY_.at(seconds));
  const double angle = roll_ * CV_PI / 180;
  const double w = 0.5 * width;
  const double h = w / kAspect;
  const auto place = [&](double x, double y) {
    y *= 1 - lean_ * x / (2 * w);
    return middle + cv::Point2d(std::cos(angle) * x - std::sin(angle) * y,
                                std::sin(angle) * x + std::cos(angle) * y);
  };
  CardPose pose;
  pose.visible = true;
  pose.roll = roll_;
  pose.corners = {place(-w, -h), place(w, -h), place(w, h), place(-w, h)};
  pose.grip = place(0.1 * w, 0.92 * h);
  return pose;
}

void Clip::shine(cv::Mat& picture, const CardPose& pose, double wrong) const {
  cv::Mat lamp(picture.size(), CV_32FC3, cv::Scalar::all(0));
  const cv::Point2d centre = onCard(pose, spot_);
  const double radius = spotSize_ * wrong_.width;
  cv::ellipse(lamp, centre, cv::Size2d(radius, 0.6 * radius), fingerTurn_, 0, 360,
              cv::Scalar::all(1.5 * wrong), cv::FILLED, cv::LINE_AA);
  cv::GaussianBlur(lamp, lamp, {}, 0.18 * radius);
  picture += 255 * lamp;
}

void Clip::layFinger(cv::Mat& picture, const CardPose& pose, double wrong) const {
  const double width = 0.19 * held_.width;
  const double angle = (pose.roll + fingerTurn_) * CV_PI / 180;
  const cv::Point2d across(width * std::cos(angle), width * std::sin(angle));
  const double length = static_cast<double>(finger_.rows) / finger_.cols;
  const cv::Point2d along(-across.y * length, across.x * length);
  const cv::Point2d tip = onCard(pose, spot_) + ((1 - wrong) * 0.8 - 0.15) * along;
  const cv::Point2d left = tip - 0.5 * across;
  session::layOver(picture, finger_,
                   {cv::Point2f(left), cv::Point2f(left + across),
                    cv::Point2f(left + across + along), cv::Point2f(left + along)},
                   1.0);
}

void Clip::expose(cv::Mat& picture, const CardPose& pose, double wrong) {
  const bool changes = cause_ == Cause::dark || cause_ == Cause::strongLight;
  const double gain = changes ? gain_ + wrong * (strength_ - gain_) : gain_;
  picture.convertTo(picture, CV_32FC3, gain);
  if (isWhite()) lightUnevenly(picture, wrong);
  const bool isGlare = cause_ == Cause::glare || cause_ == Cause::glareOnWhite;
  if (isGlare && wrong > 0) shine(picture, pose, wrong);
  picture.convertTo(picture, CV_8UC3);
  if (cause_ == Cause::blur && wrong > 0.02)
    cv::GaussianBlur(picture, picture, {}, strength_ * wrong);
  cv::GaussianBlur(picture, picture, {}, 0.6);
  cv::RNG numbers(static_cast<std::uint64_t>(random_.uniform(1, 1e9)));
  cv::Mat grain(picture.size(), CV_16SC3);
  numbers.fill(grain, cv::RNG::NORMAL, 0, noise_);
  cv::add(picture, grain, picture, cv::noArray(), CV_8U);
}

cv::Mat Clip::picture(double seconds) {
  const double wrong = session::ease(seconds, wrongFrom_, wrongFrom_ + kRamp);
  cv::Mat picture;
  session::PersonPose person;
  person.yaw = 2.0 * swayX_.at(seconds);
  person_->draw(person, picture);
  const CardPose pose = poseAt(seconds, wrong);
  const double width = cv::norm(pose.corners[1] - pose.corners[0]);
  const bool isNear = width > 0.5 * (held_.width + wrong_.width);
  const bool growing = wrong_.width > held_.width;
  (isNear == growing || wrong_.width == held_.width ? (growing ? *near_ : *card_)
                                                    : (growing ? *card_ : *near_))
      .draw(pose, picture);
  if (cause_ == Cause::finger && wrong > 0) layFinger(picture, pose, wrong);
  expose(picture, pose, wrong);
  return picture;
}

}  // namespace corvana::bench
