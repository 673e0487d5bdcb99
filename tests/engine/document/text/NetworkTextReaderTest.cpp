#include <algorithm>
#include <string>

#include <gtest/gtest.h>
#include <opencv2/imgproc.hpp>

#include "TestCards.h"
#include "engine/document/CardTurn.h"
#include "engine/document/outline/CardWarp.h"
#include "engine/document/text/LetterRepair.h"
#include "engine/document/text/NetworkTextReader.h"
#include "engine/document/text/SecondOpinion.h"
#include "engine/document/text/TesseractReader.h"
#include "engine/document/text/TextLines.h"
#include "engine/vision/MatViews.h"

namespace corvana::tests {
namespace {

using engine::CardTurn;
using engine::TextLine;

/// The front of a card as it is straightened.
platform::PixelBufferRef front(int holder) {
  cv::Mat card;
  cv::cvtColor(drawCard(0, tests::holder(holder), "person_a.jpg").front, card, cv::COLOR_RGBA2RGB);
  cv::resize(card, card, {engine::kCardWidth, engine::kCardHeight}, 0, 0, cv::INTER_AREA);
  return engine::pixelBufferFrom(card);
}

const TextLine* lineWith(const std::vector<TextLine>& lines, const std::string& text) {
  const auto found = std::ranges::find_if(
      lines, [&](const TextLine& line) { return line.text.find(text) != std::string::npos; });
  return found == lines.end() ? nullptr : &*found;
}

TEST(NetworkTextReader, ReadsWhatAndWhereAndAgain) {
  auto reader =
      engine::NetworkTextReader::load(engine::NetworkTextReader::Models::inFolder(ENGINE_RESOURCES))
          .value();
  const auto card = front(2);
  const auto lines = reader.read(*card);
  const TextLine* surname = lineWith(lines, "OKONKWO");
  ASSERT_NE(surname, nullptr);
  EXPECT_GT(surname->confidence, 0.9);
  EXPECT_NEAR(surname->tilt, 0, 2);
  const cv::Mat name = engine::grayMat(*card)(engine::pixelRect(surname->box, {1000, 630}));
  double darkest = 255;
  cv::minMaxLoc(name, &darkest);
  EXPECT_LT(darkest, 100) << "the box holds the print";

  const TextLine* label = lineWith(lines, "Date of expiry");
  ASSERT_NE(label, nullptr);
  ASSERT_EQ(label->words.size(),
            static_cast<std::size_t>(std::ranges::count(label->text, ' ')) + 1);
  double end = label->box.minX();
  for (const engine::WordReach& word : label->words) {
    EXPECT_GT(word.from, end);
    const cv::Rect gap(cv::Point2d(end, label->box.minY()),
                       cv::Point2d(word.from, label->box.maxY()));
    double palest = 0;
    cv::minMaxLoc(engine::grayMat(*card)(gap), nullptr, &palest);
    EXPECT_GT(palest, 150) << "the ground between words";
    end = word.to;
  }
  EXPECT_LT(end, label->box.maxX());

  EXPECT_NE(lineWith(reader.readAgain(*card, {*surname}), "OKONKWO"), nullptr);
  EXPECT_EQ(lineWith(reader.readAgain(*front(0), {*surname}), "OKONKWO"), nullptr)
      << "it was read, not remembered";
  EXPECT_TRUE(reader.readAgain(*card, {}).empty());

  EXPECT_GT(reader.turnSign(*card, lines), 0.5);
  cv::Mat turned;
  cv::rotate(engine::rgbMat(*card), turned, cv::ROTATE_180);
  const auto onItsHead = engine::pixelBufferFrom(turned);
  EXPECT_LT(reader.turnSign(*onItsHead, reader.find(*onItsHead)), -0.5);
}

/// A front with a band along its right side, on which a title runs upward or downward.
platform::PixelBufferRef frontWithBand(bool isUpward) {
  const auto card = front(2);
  cv::Mat band(150, engine::kCardHeight, CV_8UC3, cv::Scalar(120, 20, 50));
  cv::putText(band, "RESIDENCE PERMIT", {40, 95}, cv::FONT_HERSHEY_DUPLEX, 1.6, {250, 240, 230}, 3,
              cv::LINE_AA);
  cv::rotate(band, band, isUpward ? cv::ROTATE_90_COUNTERCLOCKWISE : cv::ROTATE_90_CLOCKWISE);
  cv::Mat picture = engine::rgbMat(*card).clone();
  band.copyTo(picture.colRange(engine::kCardWidth - 150, engine::kCardWidth));
  return engine::pixelBufferFrom(picture);
}

TEST(NetworkTextReader, ReadsTitlesThatRunUpOrDown) {
  auto reader =
      engine::NetworkTextReader::load(engine::NetworkTextReader::Models::inFolder(ENGINE_RESOURCES))
          .value();
  for (const bool isUpward : {true, false}) {
    const auto card = frontWithBand(isUpward);
    const auto lines = reader.read(*card);
    const TextLine* title = lineWith(lines, "RESIDENCE PERMIT");
    ASSERT_NE(title, nullptr) << isUpward;
    EXPECT_TRUE(engine::runsUpOrDown(*title));
    EXPECT_GT(title->box.minX(), 850);
    EXPECT_NE(lineWith(lines, "OKONKWO"), nullptr);
    EXPECT_TRUE(std::ranges::none_of(
        lines, [&](const TextLine& line) { return &line != title && engine::runsUpOrDown(line); }));
    EXPECT_NE(lineWith(reader.readAgain(*card, {*title}), "RESIDENCE PERMIT"), nullptr);
  }
}

TEST(NetworkTextReader, ReadsPaleSmallPrintOnASecondLook) {
  auto reader =
      engine::NetworkTextReader::load(engine::NetworkTextReader::Models::inFolder(ENGINE_RESOURCES))
          .value();
  const auto card = engine::pixelBufferFrom(engine::rgbMat(*front(2)) * 0.45);
  auto known = reader.read(*card);
  const TextLine* label = lineWith(known, "expiry");
  ASSERT_NE(label, nullptr);
  const platform::CGRect place = label->box;
  // As if it had been overlooked.
  std::erase_if(known, [&](const TextLine& line) { return line.box == place; });
  const platform::CGRect whole{0, 0, double(card->width()), double(card->height())};
  const auto small = reader.readSmall(*card, whole, known);
  const TextLine* found = lineWith(small, "expiry");
  ASSERT_NE(found, nullptr);
  EXPECT_NEAR(found->box.midX(), place.midX(), 8);
  EXPECT_NEAR(found->box.midY(), place.midY(), 5);
  EXPECT_EQ(lineWith(small, "OKONKWO"), nullptr) << "it is known";
  const platform::CGRect above{0, 0, whole.width, place.minY() - 5};
  EXPECT_EQ(lineWith(reader.readSmall(*card, above, known), "expiry"), nullptr);
}

TEST(TesseractReader, ReadsTheSameCardWithoutNetworks) {
  auto reader = engine::TesseractReader::load().value();
  EXPECT_NE(lineWith(reader.read(*front(2)), "OKONKWO"), nullptr);
  EXPECT_EQ(reader.name().find("Tesseract "), 0U);
  const auto missing = engine::TesseractReader::load("/nowhere");
  ASSERT_FALSE(missing);
  EXPECT_NE(missing.error().sentence.find("tesseract-ocr-eng"), std::string::npos);
}

/// Always reads the same.
class OtherReader final : public engine::TextReader {
 public:
  explicit OtherReader(TextLine line) : line_(std::move(line)) {}
  std::vector<TextLine> read(const platform::PixelBuffer&) override { return {line_}; }
  std::vector<TextLine> readAgain(const platform::PixelBuffer&,
                                  const std::vector<TextLine>& known) override {
    std::vector<TextLine> lines(known.size(), line_);
    for (std::size_t i = 0; i < known.size(); ++i)
      lines[i].box = known[i].box;
    return lines;
  }
  std::string name() const override { return "other"; }

 private:
  TextLine line_;
};

TEST(SecondOpinion, IsTakenForDoubtfulLettersOnly) {
  const auto card = front(0);
  const auto settled = [&](const char* first, double least, const char* second, double sure) {
    OtherReader other({second, {}, sure});
    return engine::withSecondOpinion(*card, {{first, {}, 0.9, 0, least}}, {}, other).front().text;
  };
  EXPECT_EQ(settled("OČUZHAN", 0.5, "OĞUZHAN", 0.9), "OĞUZHAN");
  EXPECT_EQ(settled("OČUZHAN", 0.95, "OĞUZHAN", 0.9), "OČUZHAN") << "no doubt";
  EXPECT_EQ(settled("OČUZHAN", 0.5, "OĞUZHAN", 0.6), "OČUZHAN") << "the other doubts more";
  EXPECT_EQ(settled("OČUZHAN", 0.5, "ANKARA", 0.95), "OČUZHAN") << "other text";
  EXPECT_EQ(settled("ADAQRA", 0.95, "ADAỌRA", 0.7), "ADAỌRA") << "a letter that it does not know";
  EXPECT_EQ(settled("OQTAY", 0.95, "ÖGTAY", 0.7), "OQTAY") << "other letters beside it";
  const TextLine hardlyRead{"AGÜN ŞƏaA", {}, 0.78, 0, 0.04};
  OtherReader other({"AYGÜN ŞƏBNƏM", {}, 0.96});
  EXPECT_EQ(engine::withSecondOpinion(*card, {hardlyRead}, {}, other).front().text, "AYGÜN ŞƏBNƏM");
}

TEST(SecondOpinion, IsTakenWhereTheFirstMadeNothingOfThePrint) {
  const platform::CGRect surname{250, 195, 289, 29};
  const platform::CGRect givenNames{250, 281, 147, 35};
  OtherReader other({"MƏMMƏDOVA", {}, 0.95});
  const auto lines = engine::withSecondOpinion(*front(0), {{"OKTAY", givenNames, 0.99}},
                                               {{"", givenNames}, {"", surname}}, other);
  ASSERT_EQ(lines.size(), 2U);
  EXPECT_EQ(lines[0].text, "MƏMMƏDOVA") << "from top to bottom";
  EXPECT_EQ(lines[0].box, surname);
  EXPECT_EQ(lines[1].text, "OKTAY");

  const platform::CGRect label{250, 170, 289, 18};
  EXPECT_EQ(
      engine::withSecondOpinion(*front(0), {{"OKTAY", givenNames, 0.99}}, {{"", label}}, other)
          .size(),
      1U)
      << "smaller print is no value";
}

TEST(LetterRepair, MendsLettersThatTheirWordBetrays) {
  const std::pair<const char*, const char*> cases[] = {
      {"HÓDMEZőVÁSÁRHELY", "HÓDMEZŐVÁSÁRHELY"},
      {"Hódmezővásárhely", "Hódmezővásárhely"},
      {"S0VEJ 117, AER0SK0BING", "SOVEJ 117, AEROSKOBING"},
      {"D23145890", "D23145890"},
      {"L40AA7H55C", "L40AA7H55C"},
      {"10.05.2030", "10.05.2030"},
      {"03,09.1996 FIN", "03.09.1996 FIN"},
      {"BC7018315 05,07, 2026", "BC7018315 05.07. 2026"},
      {"1996,09,03", "1996.09.03"},
      {"1,200,000 or 12,05,19961", "1,200,000 or 12,05,19961"},
      {"B0 C", "B0 C"},
      {"McDONALD", "McDONALD"},
      {"\xff\xfe", "\xEF\xBF\xBD\xEF\xBF\xBD"},
      {"", ""},
  };
  for (const auto& [read, meant] : cases)
    EXPECT_EQ(engine::repairedLetters(read), meant);
}

TEST(CardTurn, IsToldByClearSignsOnly) {
  EXPECT_EQ(engine::cardTurn({.lines = 0.9, .face = 0}), CardTurn::upright);
  EXPECT_EQ(engine::cardTurn({.lines = -0.9, .face = engine::faceSign(0.7, 0.96)}),
            CardTurn::upsideDown);
  EXPECT_EQ(engine::cardTurn({.lines = 0, .face = engine::faceSign(0.96, 0.7)}), CardTurn::upright);
  EXPECT_FALSE(engine::cardTurn({.lines = 0.9, .face = -1})) << "signs against each other";
  EXPECT_FALSE(engine::cardTurn({.lines = 0.2, .face = engine::faceSign(0.75, 0.72)}));
  EXPECT_FALSE(engine::cardTurn({}));
  EXPECT_EQ(engine::cardTurnByReading(90, 40), CardTurn::upright);
  EXPECT_EQ(engine::cardTurnByReading(0, 4), CardTurn::upsideDown);
  EXPECT_FALSE(engine::cardTurnByReading(50, 45));
  EXPECT_FALSE(engine::cardTurnByReading(0, 0));
}

}  // namespace
}  // namespace corvana::tests
