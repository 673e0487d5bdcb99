#include "SessionMaker.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>
#include <opencv2/imgproc.hpp>

#include "CardArtist.h"
#include "CardMotion.h"
#include "CardView.h"
#include "FilmEncoder.h"
#include "Grain.h"
#include "Mrz.h"
#include "PersonMotion.h"
#include "PersonView.h"
#include "Picture.h"
#include "Portrait.h"
#include "Presentation.h"
#include "Still.h"
#include "Voice.h"
#include "devices/pictures/ImageFile.h"
#include "platform/media/PixelBuffer.h"

namespace corvana::session {
namespace {

namespace fs = std::filesystem;

constexpr double kAfterCountdown = 6.0;  // the film outlasts the reading, so it never cuts it short
constexpr double kAfterSpeech = 4.0;
constexpr double kAfterCard = 2.0;
constexpr int kPhotoPixels = 520;

/// Every thing that moves has numbers of its own, so that a change to one leaves the others alone.
enum class Stream : std::uint64_t { person = 1, card, grain, room, stills, presentation };

Random stream(const Script& script, Stream which) {
  return Random(script.seed * 1000003ULL + static_cast<std::uint64_t>(which));
}

struct Sides {
  cv::Mat front;
  cv::Mat back;
};

struct Sound {
  std::vector<float> samples;  ///< of the whole session
  std::vector<double> mouth;   ///< of each frame
  double speechSeconds = 0.0;
};

class Maker {
 public:
  Maker(const Script& script, PortraitReader portraits, CardArtist artist)
      : script_(script), portraits_(std::move(portraits)), artist_(std::move(artist)) {}

  Result<void> make(const fs::path& folder, const Progress& progress);

 private:
  Result<Sides> sides(const CardData& front, const CardData& back);
  Result<std::unique_ptr<CardView>> filmedCard(double length, const cv::Scalar& skin);
  Result<void> writeStills(const fs::path& folder);
  Result<Sound> makeSound();
  Result<void> writeFilm(const fs::path& file, const Sound& sound, const Progress& progress);
  Result<std::unique_ptr<PersonView>> changedPerson();
  nlohmann::json account(const Sound& sound) const;
  double length(double speechSeconds) const;

  const Script& script_;
  PortraitReader portraits_;
  CardArtist artist_;
  std::vector<double> blinks_;
};

Result<void> writeText(const fs::path& file, const std::string& text) {
  std::ofstream out(file, std::ios::binary);
  out << text;
  out.close();
  if (out) return {};
  return fault(file.string() + " cannot be written: check the folder and the disk's free space.");
}

Result<void> writePicture(const fs::path& file, const cv::Mat& picture) {
  const std::vector<std::uint8_t> bytes(picture.datastart, picture.dataend);
  const auto written = devices::writePng(
      file, platform::PixelBuffer(picture.cols, picture.rows, platform::PixelFormat::rgb24, bytes));
  if (!written) return fault(written.error().sentence);
  return {};
}

Result<Sides> Maker::sides(const CardData& front, const CardData& back) {
  auto holder = portraits_.read(front.photo);
  if (!holder) return fault(holder.error());
  return Sides{artist_.front(front, passportPhoto(*holder, CardArtist::kPhotoAspect, kPhotoPixels)),
               artist_.back(back)};
}

/// Null when the film ends before the card comes.
Result<std::unique_ptr<CardView>> Maker::filmedCard(double length, const cv::Scalar& skin) {
  if (script_.time.frontAt >= length) return nullptr;
  const CardData& front = script_.faults.wrongCard ? *script_.faults.wrongCard : script_.card;
  auto drawn = sides(front, script_.faults.wrongBack ? *script_.faults.wrongBack : front);
  if (!drawn) return fault(drawn.error());
  return std::make_unique<CardView>(drawn->front, drawn->back, script_.cardPlace.width, skin);
}

Result<void> Maker::writeStills(const fs::path& folder) {
  auto drawn = sides(script_.card, script_.card);
  if (!drawn) return fault(drawn.error());
  Random random = stream(script_, Stream::stills);
  if (auto front = writePicture(folder / "front.png", photographed(drawn->front, random)); !front)
    return front;
  return writePicture(folder / "back.png", photographed(drawn->back, random));
}

double Maker::length(double speechSeconds) const {
  const TimeScript& time = script_.time;
  if (time.length > 0) return time.length;
  return std::max({time.handOverAt + time.countdownSeconds + kAfterCountdown,
                   time.speechAt + speechSeconds + kAfterSpeech, time.leaveAt + kAfterCard});
}

Result<Sound> Maker::makeSound() {
  Sound sound;
  std::vector<float> speech;
  if (!script_.faults.silence) {
    const std::string& words =
        script_.faults.wrongWords.empty() ? script_.text : script_.faults.wrongWords;
    auto spoken = speak(words, script_.voice);
    if (!spoken) return fault(spoken.error());
    speech = std::move(*spoken);
  }
  sound.speechSeconds = static_cast<double>(speech.size()) / kSoundRate;
  Random random = stream(script_, Stream::room);
  const double seconds = length(sound.speechSeconds);
  std::vector<float> alone(static_cast<std::size_t>(std::lround(seconds * kSoundRate)), 0.0F);
  const auto start = std::min(
      alone.size(), static_cast<std::size_t>(std::lround(script_.time.speechAt * kSoundRate)));
  std::copy_n(speech.begin(), std::min(speech.size(), alone.size() - start),
              alone.begin() + static_cast<std::ptrdiff_t>(start));
  const auto frames = static_cast<std::size_t>(std::lround(seconds * kFramesPerSecond));
  sound.mouth = mouthOpening(alone, frames);
  if (script_.faults.dubbed) sound.mouth.assign(frames, 0.0);
  sound.samples = roomTone(seconds, script_.voice.roomTone, random);
  for (std::size_t i = 0; i < alone.size(); ++i)
    sound.samples[i] += alone[i];
  return sound;
}

Result<void> Maker::writeFilm(const fs::path& file, const Sound& sound, const Progress& progress) {
  const bool stranger = !script_.faults.wrongPerson.empty();
  auto person = portraits_.read(stranger ? script_.faults.wrongPerson : script_.person.portrait);
  if (!person) return fault(person.error());
  auto encoder = FilmEncoder::create(file, sound.samples);
  if (!encoder) return fault(encoder.error());

  Random personNumbers = stream(script_, Stream::person);
  Random cardNumbers = stream(script_, Stream::card);
  Random grainNumbers = stream(script_, Stream::grain);
  const double whole = length(sound.speechSeconds);
  const PersonMotion personMotion(script_, whole, personNumbers);
  const CardMotion cardMotion(script_, cardNumbers);
  PersonView personView(*person, script_.person);
  auto changed = changedPerson();
  if (!changed) return fault(changed.error());
  Random presentationNumbers = stream(script_, Stream::presentation);
  Presentation presentation(script_.presentation, presentationNumbers);
  auto card = filmedCard(whole, personView.skinColour());
  if (!card) return fault(card.error());
  Grain grain(script_.person.light, grainNumbers);
  blinks_ = personMotion.blinks();

  cv::Mat picture;
  cv::Mat planes;
  for (std::size_t frame = 0; frame < sound.mouth.size(); ++frame) {
    const double seconds = static_cast<double>(frame) / kFramesPerSecond;
    const bool isChanged = *changed && seconds >= script_.faults.changesAt;
    PersonView& view = isChanged ? **changed : personView;
    const double moment = presentation.momentShown(seconds);
    view.draw(presentation.shown(personMotion.at(moment, sound.mouth[frame])), picture);
    presentation.show(seconds, picture);
    if (*card) (*card)->draw(cardMotion.at(seconds), picture);
    cv::cvtColor(picture, planes, cv::COLOR_RGB2YUV_I420);
    grain.add(planes.rowRange(0, kPictureHeight), seconds);
    encoder->add(planes);
    progress(frame + 1, sound.mouth.size());
  }
  return encoder->finish();
}

/// Null when the person stays the same.
Result<std::unique_ptr<PersonView>> Maker::changedPerson() {
  if (script_.faults.changedPerson.empty()) return nullptr;
  auto person = portraits_.read(script_.faults.changedPerson);
  if (!person) return fault(person.error());
  return std::make_unique<PersonView>(*person, script_.person);
}

nlohmann::json Maker::account(const Sound& sound) const {
  const TimeScript& time = script_.time;
  const FaultScript& faults = script_.faults;
  nlohmann::json events = {{"frontEnters", time.frontAt},
                           {"flipStarts", time.flipAt},
                           {"flipEnds", time.flipAt + time.flipSeconds},
                           {"cardLeaves", time.leaveAt},
                           {"expectedHandOver", time.handOverAt},
                           {"blinks", blinks_}};
  if (!faults.silence) {
    events["speechStarts"] = time.speechAt;
    events["speechEnds"] = time.speechAt + sound.speechSeconds;
  }
  if (faults.faceLeavesAt) events["faceLeaves"] = *faults.faceLeavesAt;
  nlohmann::json faultNames = nlohmann::json::array();
  if (!faults.wrongPerson.empty()) faultNames.push_back("wrongPerson");
  if (faults.wrongCard) faultNames.push_back("wrongCard");
  if (faults.wrongBack) faultNames.push_back("wrongBack");
  if (faults.faceLeavesAt) faultNames.push_back("faceLeaves");
  if (faults.silence) faultNames.push_back("silence");
  if (faults.dubbed) faultNames.push_back("dubbed");
  if (!faults.wrongWords.empty()) faultNames.push_back("wrongWords");
  if (!faults.changedPerson.empty()) {
    faultNames.push_back("change");
    events["personChanges"] = faults.changesAt;
  }
  return {{"seed", script_.seed},
          {"width", kPictureWidth},
          {"height", kPictureHeight},
          {"framesPerSecond", kFramesPerSecond},
          {"frames", sound.mouth.size()},
          {"seconds", static_cast<double>(sound.mouth.size()) / kFramesPerSecond},
          {"presentation", script_.presentation.kind},
          {"events", events},
          {"faults", faultNames},
          {"mrz", mrzLines(script_.card)}};
}

Result<void> Maker::make(const fs::path& folder, const Progress& progress) {
  auto sound = makeSound();
  if (!sound) return fault(sound.error());
  if (script_.stills)
    if (auto stills = writeStills(folder); !stills) return stills;
  if (auto film = writeFilm(folder / "session.mp4", *sound, progress); !film) return film;
  if (auto text = writeText(folder / "text.txt", script_.text + "\n"); !text) return text;
  return writeText(folder / "session.json", account(*sound).dump(2) + "\n");
}

}  // namespace

Result<void> makeSession(const Script& script, const fs::path& models, const fs::path& folder,
                         const Progress& progress) {
  auto portraits = PortraitReader::create(models);
  if (!portraits) return fault(portraits.error());
  auto artist = CardArtist::create();
  if (!artist) return fault(artist.error());
  return Maker(script, std::move(*portraits), std::move(*artist)).make(folder, progress);
}

}  // namespace corvana::session
