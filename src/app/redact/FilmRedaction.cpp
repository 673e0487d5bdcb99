#include "app/redact/FilmRedaction.h"

#include <memory>
#include <optional>
#include <vector>

#include "devices/film/FilmSettings.h"
#include "devices/film/FilmWriter.h"
#include "devices/recorded/MediaFile.h"
#include "engine/recorder/VisionFrameAnalyzer.h"
#include "engine/redaction/ShownHeads.h"
#include "platform/foundation/VirtualRunLoop.h"

namespace corvana::app {
namespace {

namespace fs = std::filesystem;
using platform::CGRect;
using platform::CGSize;
using platform::CMSampleBuffer;
using platform::CMSampleBufferRef;
using platform::Expected;
using SampleHandler = platform::AVCaptureDevice::SampleHandler;

/// Lets all pictures and, if it is asked for, all sound of a film by.
Expected<void> play(platform::VirtualRunLoop& loop, devices::MediaFile& film,
                    const SampleHandler& pictures, const SampleHandler& sound) {
  bool ended = false;
  std::optional<platform::Fault> fault;
  film.onEnd = [&ended] { ended = true; };
  film.onError = [&fault](const platform::Fault& met) { fault = met; };
  if (sound) film.microphone()->start(sound);
  film.camera()->start(pictures);
  loop.runUntil([&] { return ended || fault; }, platform::TimePoint::max());
  film.onEnd = nullptr;
  film.onError = nullptr;
  if (fault) return tl::unexpected(*fault);
  return {};
}

CGSize sizeOf(const devices::MediaInfo& info) {
  return {static_cast<double>(info.width), static_cast<double>(info.height)};
}

/// Where the live face is at the film's beginning, as far as that is known.
std::optional<CGRect> startingFace(const FilmRedaction& wishes, const CGSize& size) {
  if (!wishes.selfieFace) return std::nullopt;
  const double across = size.width / wishes.selfieSize.width;
  const double down = size.height / wishes.selfieSize.height;
  const CGRect& face = *wishes.selfieFace;
  return CGRect{face.x * across, face.y * down, face.width * across, face.height * down};
}

using Sightings = std::vector<engine::HeadSighting>;

Expected<Sightings> lookAt(const fs::path& film, engine::HeadFinder& heads,
                           const FilmRedaction& wishes) {
  platform::VirtualRunLoop loop;
  const auto media = devices::MediaFile::open(loop, film);
  if (!media) return tl::unexpected(media.error());
  const CGSize size = sizeOf((*media)->info());
  std::optional<CGRect> guide;
  if (wishes.places) {
    guide = engine::guideInPicture(wishes.places->card, wishes.places->screen, size);
  }
  heads.begin(startingFace(wishes, size), loop.now());
  Sightings sightings;
  const auto look = [&](const CMSampleBufferRef& sample) {
    sightings.push_back(heads.next(sample->image, sample->presentationTime, guide));
  };
  return play(loop, **media, look, nullptr).map([&] { return std::move(sightings); });
}

/// The picture with all covered that is not shown.
CMSampleBufferRef covered(const CMSampleBuffer& sample, const engine::ShownParts& shown) {
  auto picture = std::make_shared<CMSampleBuffer>(sample);
  picture->image = engine::coveredBut(*sample.image, shown);
  return picture;
}

Expected<RedactedPictures> write(const fs::path& from, const fs::path& to,
                                 const Sightings& sightings, const FilmRedaction& wishes) {
  platform::VirtualRunLoop loop;
  const auto media = devices::MediaFile::open(loop, from);
  if (!media) return tl::unexpected(media.error());
  const bool hasSound = (*media)->info().hasAudio && !wishes.isSilent;
  const auto settings = hasSound ? std::optional(devices::audioSettings()) : std::nullopt;
  const auto writer = devices::FilmWriterFactory(loop).make(to, std::nullopt, settings);
  if (!writer) return tl::unexpected(writer.error());
  RedactedPictures pictures;
  const auto writePicture = [&](const CMSampleBufferRef& sample) {
    // The same film has the same pictures; more would be shown without a look.
    if (pictures.all == sightings.size()) return;
    engine::ShownParts shown = engine::shownPartsAt(sightings, pictures.all);
    if (wishes.coversFace) shown.faces.clear();
    pictures.withHead += shown.faces.empty() ? 0 : 1;
    ++pictures.all;
    (*writer)->appendVideo(covered(*sample, shown));
  };
  SampleHandler writeSound;
  if (hasSound) {
    writeSound = [&](const CMSampleBufferRef& sample) { (*writer)->appendAudio(sample); };
  }
  return play(loop, **media, writePicture, writeSound)
      .and_then([&] { return (*writer)->finish(); })
      .map([&] { return pictures; });
}

}  // namespace

Expected<RedactedPictures> redactFilm(const fs::path& from, const fs::path& to,
                                      engine::HeadFinder& heads, const FilmRedaction& wishes) {
  return lookAt(from, heads, wishes).and_then([&](const Sightings& sightings) {
    return write(from, to, sightings, wishes);
  });
}

}  // namespace corvana::app
