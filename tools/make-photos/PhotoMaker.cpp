#include "PhotoMaker.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <map>
#include <system_error>

#include "Grounds.h"
#include "People.h"
#include "Portrait.h"
#include "SideArtist.h"
#include "Truth.h"
#include "devices/pictures/ImageFile.h"
#include "platform/media/PixelBuffer.h"

namespace corvana::photos {
namespace {

namespace fs = std::filesystem;
using nlohmann::ordered_json;
using session::CardData;
using session::Portrait;
using session::Random;

constexpr int kPortraitPixels = 520;

/// Every card, and every picture of it, has numbers of its own.
Random stream(std::uint64_t seed, int card, int which) {
  return Random((seed * 1000003ULL + static_cast<std::uint64_t>(card)) * 16ULL +
                static_cast<std::uint64_t>(which));
}

class Maker {
 public:
  Maker(const Order& order, fs::path folder) : order_(order), folder_(std::move(folder)) {}

  Result<void> prepare();
  Result<void> makeCard(int number);
  Result<void> writeTruth() const;

 private:
  Result<void> chooseDesigns();
  Result<void> readPortraits();
  Result<void> photograph(const Taken& taken, const Design& design, const SideDesign& side,
                          const cv::Mat& photo);
  const std::string& groundOf(const Design& design, int number) const;

  const Order& order_;
  fs::path folder_;
  std::vector<Design> designs_;
  std::vector<NameList> names_;
  std::vector<Portrait> portraits_;
  std::map<std::string, SideArtist> artists_;
  ordered_json pictures_ = ordered_json::array();
};

bool contains(const std::vector<std::string>& list, const std::string& name) {
  return std::find(list.begin(), list.end(), name) != list.end();
}

/// A letter that the font lacks would be painted as a box, and nobody could read it.
Result<void> checkLetters(const Design& design, const SideArtist& artist,
                          const std::vector<NameList>& names) {
  for (const std::string& language : design.languages) {
    const NameList& list = namesIn(names, language);
    for (const auto* texts :
         {&list.surnames, &list.female, &list.male, &list.places, &list.streets})
      for (const std::string& text : *texts)
        if (!artist.canWrite(text) || !artist.canWrite(capitals(text, language)))
          return fault("The letters " + design.valueFont.file + " of the design " + design.name +
                       " cannot write " + text + ": give it other letters or languages.");
  }
  return {};
}

Result<void> Maker::chooseDesigns() {
  auto all = readDesigns(order_.data / "designs");
  if (!all) return fault(all.error());
  for (const std::string& name : order_.designs)
    if (std::none_of(all->begin(), all->end(), [&](const Design& one) {
          return one.name == name && one.unseen == order_.unseen;
        }))
      return fault("There is no design " + name + (order_.unseen ? " set aside" : "") +
                   ": the files in " + (order_.data / "designs").string() + " name them.");
  for (Design& design : *all)
    if (design.unseen == order_.unseen &&
        (order_.designs.empty() || contains(order_.designs, design.name)))
      designs_.push_back(std::move(design));
  if (designs_.empty()) return fault("No design is left: give other --designs.");
  for (const std::string& ground : order_.grounds)
    if (!contains(groundNames(), ground))
      return fault("There is no ground " + ground + ": choose from plain, wood, print, cloth.");
  return {};
}

Result<void> Maker::readPortraits() {
  auto reader = session::PortraitReader::create(order_.models);
  if (!reader) return fault(reader.error());
  std::vector<fs::path> files;
  std::error_code error;
  for (const auto& entry : fs::directory_iterator(order_.portraits, error))
    if (entry.path().extension() == ".jpg" || entry.path().extension() == ".png")
      files.push_back(entry.path());
  if (files.empty())
    return fault("There is no portrait (.jpg, .png) in " + order_.portraits.string() +
                 ": correct --portraits.");
  std::sort(files.begin(), files.end());
  for (const fs::path& file : files) {
    auto portrait = reader->read(file);
    if (!portrait) return fault(portrait.error());
    portraits_.push_back(std::move(*portrait));
  }
  return {};
}

Result<void> Maker::prepare() {
  std::error_code error;
  fs::create_directories(folder_, error);
  if (error) return fault("The folder " + folder_.string() + " cannot be made: correct --output.");
  if (auto chosen = chooseDesigns(); !chosen) return chosen;
  auto names = readNames(order_.data / "people.json");
  if (!names) return fault(names.error());
  names_ = std::move(*names);
  for (const Design& design : designs_) {
    auto artist = SideArtist::create(design);
    if (!artist) return fault(artist.error());
    if (auto able = checkLetters(design, *artist, names_); !able) return able;
    artists_.emplace(design.name, std::move(*artist));
  }
  return readPortraits();
}

const std::string& Maker::groundOf(const Design& design, int number) const {
  const auto& grounds = order_.grounds.empty() ? design.grounds : order_.grounds;
  return grounds[static_cast<std::size_t>(number) / designs_.size() % grounds.size()];
}

Result<void> Maker::makeCard(int number) {
  const Design& design = designs_[static_cast<std::size_t>(number) % designs_.size()];
  Random random = stream(order_.seed, number, 0);
  const CardData card = drawHolder(design, names_, random);
  const Portrait& portrait = drawFrom(portraits_, random);
  const cv::Rect2d place = design.front.photo.value_or(cv::Rect2d(0, 0, 26, 33));
  const cv::Mat photo =
      session::passportPhoto(portrait, place.width / place.height, kPortraitPixels);
  Taken taken;
  taken.pair = number;
  taken.kind = kindNames()[static_cast<std::size_t>(order_.kind)];
  taken.coded = taken.print = card;
  if (order_.kind == Kind::altered) taken.altered = alter(taken.print, design, names_, random);
  if (auto front = photograph(taken, design, design.front, photo); !front) return front;
  if (!design.back) return {};
  taken.back = true;
  return photograph(taken, design, *design.back, photo);
}

Result<void> Maker::photograph(const Taken& what, const Design& design, const SideDesign& side,
                               const cv::Mat& photo) {
  char number[16];
  std::snprintf(number, sizeof number, "%04d", what.pair);
  Taken taken = what;
  taken.file = std::string(number) + "-" + design.name + (taken.back ? "-back.jpg" : "-front.jpg");

  Random random = stream(order_.seed, taken.pair, taken.back ? 2 : 1);
  const cv::Mat painted = artists_.at(design.name).paint(side, taken.print, taken.coded, photo);
  const Sheet sheet = copied(layOut(painted, design, side), order_.kind, order_.unseen, random);
  const Conditions conditions =
      order_.kind == Kind::scan
          ? scanConditions()
          : drawConditions(groundOf(design, taken.pair), sheet.card, sheet.contents, random);
  auto made = takePhotograph(sheet, conditions, random);
  if (!made) return fault(made.error());
  const cv::Mat& picture = made->picture;
  const std::vector<std::uint8_t> bytes(picture.datastart, picture.dataend);
  const platform::PixelBuffer pixels(picture.cols, picture.rows, platform::PixelFormat::rgb24,
                                     bytes);
  if (auto written = devices::writeJpeg(folder_ / taken.file, pixels, conditions.quality); !written)
    return fault(written.error().sentence);
  pictures_.push_back(truthOf(taken, design, side, conditions, *made));
  return {};
}

Result<void> Maker::writeTruth() const {
  const fs::path file = folder_ / "truth.json";
  std::ofstream out(file, std::ios::binary);
  out << ordered_json{{"seed", order_.seed}, {"unseen", order_.unseen}, {"pictures", pictures_}}
             .dump(1)
      << '\n';
  out.close();
  if (out) return {};
  return fault(file.string() + " cannot be written: check the folder and the disk's free space.");
}

}  // namespace

Result<void> makePhotos(const Order& order, const fs::path& folder, const Progress& progress) {
  Maker maker(order, folder);
  if (auto ready = maker.prepare(); !ready) return ready;
  for (int card = 0; card < order.count; ++card) {
    if (auto made = maker.makeCard(card); !made) return made;
    progress(card + 1, order.count);
  }
  return maker.writeTruth();
}

}  // namespace corvana::photos
