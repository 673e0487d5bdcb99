#include <fstream>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "PhotoMaker.h"
#include "support/Scratch.h"

namespace corvana::tests {
namespace {

namespace fs = std::filesystem;

photos::Order order(int count, std::uint64_t seed) {
  photos::Order order;
  order.count = count;
  order.seed = seed;
  order.data = PHOTO_DATA;
  order.portraits = PORTRAITS;
  order.models = FACE_MODELS;
  return order;
}

nlohmann::json make(const photos::Order& wanted, const fs::path& folder) {
  const auto made = photos::makePhotos(wanted, folder, [](auto, auto) {});
  EXPECT_TRUE(made) << made.error();
  return nlohmann::json::parse(bytesOf(folder / "truth.json"));
}

TEST(Photos, AreTheSameForTheSameSeedWhateverTheCount) {
  const ScratchFolder scratch;
  const auto ofLinden = [](int count, std::uint64_t seed) {
    photos::Order wanted = order(count, seed);
    wanted.designs = {"linden"};
    return wanted;
  };
  const auto one = make(ofLinden(1, 4), scratch / "one");
  const auto two = make(ofLinden(2, 4), scratch / "two");
  const auto other = make(ofLinden(1, 5), scratch / "other");
  ASSERT_EQ(one["pictures"].size(), 2U);
  for (std::size_t i = 0; i < one["pictures"].size(); ++i) {
    const std::string name = one["pictures"][i]["file"];
    EXPECT_EQ(one["pictures"][i], two["pictures"][i]);
    EXPECT_EQ(bytesOf(scratch / "one" / name), bytesOf(scratch / "two" / name)) << name;
    EXPECT_NE(bytesOf(scratch / "one" / name), bytesOf(scratch / "other" / name)) << name;
  }
}

TEST(Photos, SayWhatIsOnThem) {
  const ScratchFolder scratch;
  photos::Order wanted = order(8, 1);
  wanted.designs = {"linden", "passport"};
  wanted.grounds = {"print", "cloth"};
  const auto truth = make(wanted, scratch / "photos");
  ASSERT_EQ(truth["pictures"].size(), 12U);
  for (const auto& picture : truth["pictures"]) {
    const bool isBack = picture["side"] == "back";
    EXPECT_TRUE(fs::exists(scratch / "photos" / picture["file"].get<std::string>()));
    EXPECT_EQ(picture["photo"], !isBack);
    EXPECT_EQ(picture.contains("zone"), isBack || picture["design"] == "passport");
    EXPECT_EQ(picture["fields"].contains("surname"), !isBack);
    EXPECT_EQ(picture["ground"], picture["pair"].get<int>() / 2 % 2 == 0 ? "print" : "cloth");
  }
}

TEST(Photos, OfNothingAreRefusedWithASentence) {
  const ScratchFolder scratch;
  const auto complaint = [&](auto change) {
    photos::Order wanted = order(1, 1);
    change(wanted);
    const auto made = photos::makePhotos(wanted, scratch / "photos", [](auto, auto) {});
    return made ? std::string() : made.error();
  };
  EXPECT_NE(complaint([](auto& wanted) { wanted.designs = {"seaside"}; }).find("seaside"),
            std::string::npos);
  // What is set aside has to be asked for twice.
  fs::copy(PHOTO_DATA, scratch / "data", fs::copy_options::recursive);
  auto aside = nlohmann::json::parse(bytesOf(scratch / "data/designs/linden.json"));
  aside["unseen"] = true;
  writeBytes(scratch / "data/designs/linden.json", aside.dump());
  const auto askForIt = [&](auto& wanted) {
    wanted.data = scratch / "data";
    wanted.designs = {"linden"};
  };
  EXPECT_NE(complaint(askForIt).find("linden"), std::string::npos);
  EXPECT_NE(complaint([](auto& wanted) { wanted.grounds = {"water"}; }).find("water"),
            std::string::npos);
  EXPECT_NE(complaint([&](auto& wanted) { wanted.portraits = scratch.path(); }).find("--portraits"),
            std::string::npos);
}

}  // namespace
}  // namespace corvana::tests
