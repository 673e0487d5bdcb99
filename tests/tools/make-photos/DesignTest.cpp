#include <algorithm>

#include <ZXing/ReadBarcode.h>
#include <gtest/gtest.h>
#include <opencv2/imgproc.hpp>

#include "AamvaRecord.h"
#include "Kind.h"
#include "SideArtist.h"
#include "support/Scratch.h"

namespace corvana::tests {
namespace {

using photos::Design;
using photos::SideDesign;

const std::vector<Design>& designs() {
  static const std::vector<Design> all = *photos::readDesigns(PHOTO_DATA "/designs");
  return all;
}

const Design& designNamed(const std::string& name) {
  return *std::find_if(designs().begin(), designs().end(),
                       [&](const Design& one) { return one.name == name; });
}

/// The designs that are set aside are nobody's to look at: this is how they are known to be whole.
TEST(Designs, KeepTheirFieldsOnTheCardAndApart) {
  EXPECT_EQ(std::count_if(designs().begin(), designs().end(),
                          [](const Design& design) { return design.unseen; }),
            4);
  for (const Design& design : designs()) {
    const cv::Rect2d card({0.0, 0.0}, design.size());
    for (const SideDesign* side : {&design.front, design.back ? &*design.back : nullptr}) {
      if (side == nullptr) continue;
      const auto boxes = photos::contentsOf(design, *side);
      for (std::size_t i = 0; i < boxes.size(); ++i) {
        EXPECT_EQ(boxes[i] & card, boxes[i]) << design.name << " " << boxes[i];
        for (std::size_t k = 0; k < i; ++k)
          EXPECT_TRUE((boxes[i] & boxes[k]).empty())
              << design.name << " " << boxes[i] << " lies on " << boxes[k];
      }
    }
  }
}

/// Where two pictures differ, in millimetres.
cv::Rect2d difference(const cv::Mat& one, const cv::Mat& other) {
  cv::Mat channels;
  cv::absdiff(one, other, channels);
  cv::Mat grey;
  cv::cvtColor(channels, grey, cv::COLOR_RGBA2GRAY);
  const cv::Rect pixels = cv::boundingRect(grey > 0);
  const double scale = photos::SideArtist::kPixelsPerMillimetre;
  return {pixels.x / scale, pixels.y / scale, pixels.width / scale, pixels.height / scale};
}

TEST(Designs, WriteTheCardsNumberUpwardAtItsEdge) {
  const Design& design = designNamed("linden");
  const auto artist = photos::SideArtist::create(design);
  ASSERT_TRUE(artist) << artist.error();
  const auto painted = [&](const std::string& number, bool upward) {
    SideDesign side;
    photos::Writing writing{"No. {documentNumber}", {40.0, 40.0}, 4.0, 40.0, "left", {}};
    writing.upward = upward;
    side.writings = {writing};
    session::CardData card;
    card.documentNumber = number;
    return artist->paint(side, card, card, {});
  };
  const cv::Mat bare = artist->paint({}, {}, {}, {});
  const cv::Rect2d level = difference(bare, painted("X1234567", false));
  const cv::Rect2d upward = difference(bare, painted("X1234567", true));
  // As long and as high, from the same point, turned to the left about it.
  EXPECT_NEAR(upward.height, level.width, 0.2);
  EXPECT_NEAR(upward.width, level.height, 0.2);
  EXPECT_NEAR(40.0 - upward.br().y, level.x - 40.0, 0.2);
  EXPECT_NEAR(40.0 - upward.x, 40.0 - level.y, 0.2);
  // Only the number differs, which is above the word before it.
  const cv::Rect2d number = difference(painted("X1234567", true), painted("Y7654321", true));
  EXPECT_LT(number.br().y, upward.br().y - 5.0);
  EXPECT_NEAR(number.y, upward.y, 1.0);
}

TEST(Designs, BeginValuesInAColumnWhereLabelsHaveRoom) {
  Design design = designNamed("linden");
  design.labels = photos::LabelPlace::before;
  design.labelRoom = 20.0;
  const auto artist = photos::SideArtist::create(design);
  ASSERT_TRUE(artist) << artist.error();
  const auto startOfValue = [&](const std::string& label) {
    SideDesign side;
    side.fields = {{"documentNumber", label, {5.0, 20.0}, 70.0, 0.0}};
    session::CardData none, card;
    none.documentNumber = "";
    card.documentNumber = "H1234";
    return difference(artist->paint(side, none, none, {}), artist->paint(side, card, card, {})).x;
  };
  const double column = startOfValue("No.");
  EXPECT_NEAR(column, 25.0, 0.5);
  EXPECT_EQ(startOfValue("Number"), column);
  EXPECT_GT(startOfValue("A label that is longer than its room"), column + 5.0);
}

TEST(Designs, ThatLackSomethingAreNamed) {
  const ScratchFolder scratch;
  writeBytes(scratch / "bare.json", R"({"kind": "passport"})");
  const auto read = photos::readDesigns(scratch.path());
  ASSERT_FALSE(read);
  EXPECT_NE(read.error().find("bare.json"), std::string::npos) << read.error();
  EXPECT_FALSE(photos::readDesigns(scratch / "nowhere"));
}

TEST(Holders, WriteCapitalsAsTheirLanguageDoes) {
  EXPECT_EQ(photos::capitals("Şükrü ilker", "tr"), "ŞÜKRÜ İLKER");
  EXPECT_EQ(photos::capitals("Großkreuz", "de"), "GROSSKREUZ");
}

TEST(Holders, OfAnAlteredCardDifferInOneCodedField) {
  const auto names = *photos::readNames(PHOTO_DATA "/people.json");
  for (std::uint64_t seed = 1; seed <= 40; ++seed) {
    session::Random random(seed);
    const Design& design = designNamed(seed % 2 == 0 ? "licence" : "permit");
    const session::CardData card = photos::drawHolder(design, names, random);
    session::CardData print = card;
    const std::string altered = photos::alter(print, design, names, random);
    for (const char* field : {"surname", "givenNames", "documentNumber", "dateOfBirth",
                              "dateOfIssue", "dateOfExpiry", "sex", "address"})
      EXPECT_EQ(photos::plainValue(print, field) != photos::plainValue(card, field),
                field == altered)
          << seed << " " << field;
  }
}

TEST(Licences, CarryARecordThatOthersRead) {
  session::CardData card;
  card.givenNames = "François Noël";
  card.surname = "Müller";
  const std::string record = photos::aamvaRecord(card);
  // Where the header says that the subfile begins, and how long it is.
  EXPECT_EQ(record.substr(15, 6), "100001");
  const auto at = static_cast<std::size_t>(std::stoi(record.substr(23, 4)));
  const auto length = static_cast<std::size_t>(std::stoi(record.substr(27, 4)));
  EXPECT_EQ(record.substr(at, 5), "DLDAQ");
  EXPECT_EQ(at + length, record.size());
  for (const char* element : {"DCSMUELLER\n", "DACFRANCOIS\n", "DADNOEL\n", "DBB08121984\n"})
    EXPECT_NE(record.find(element), std::string::npos) << element;

  const Design& design = designNamed("licence");
  const auto artist = photos::SideArtist::create(design);
  ASSERT_TRUE(artist) << artist.error();
  cv::Mat grey;
  cv::cvtColor(artist->paint(*design.back, card, card, {}), grey, cv::COLOR_RGBA2GRAY);
  const auto code =
      ZXing::ReadBarcode({grey.data, grey.cols, grey.rows, ZXing::ImageFormat::Lum},
                         ZXing::DecodeHints().setFormats(ZXing::BarcodeFormat::PDF417));
  EXPECT_EQ(std::string(code.bytes().begin(), code.bytes().end()), record);
}

}  // namespace
}  // namespace corvana::tests
