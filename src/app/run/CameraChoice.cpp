#include "app/run/CameraChoice.h"

#include <filesystem>
#include <iostream>
#include <optional>
#include <utility>
#include <vector>

#include "app/machine/FilmSpeed.h"
#include "app/record/Files.h"
#include "devices/live/DeviceCatalog.h"
#include "devices/live/LiveFile.h"
#include "devices/recorded/MediaFile.h"

namespace corvana::app {
namespace {

namespace fs = std::filesystem;
using devices::DeviceInfo;
using devices::LiveDevices;
using devices::LiveSource;

constexpr const char* kDefault = "default";
constexpr const char* kNone = "none";
constexpr const char* kVirtual = "virtual:";

bool isFile(const std::string& path) {
  std::error_code error;
  return fs::is_regular_file(path, error);
}

/// Why a virtual device may not be used.
tl::unexpected<platform::Fault> refusal(const std::string& name) {
  return platform::failure(inQuotes(name) +
                           " is a virtual device, so its film proves nothing; give "
                           "--allow-virtual-camera if you only want to try.");
}

Expected<DeviceInfo> chooseCamera(const std::string& id) {
  const auto cameras = devices::connectedCameras();
  if (id == kDefault) {
    if (const DeviceInfo* first = devices::defaultDevice(cameras)) return *first;
    return platform::failure(
        "There is no camera; connect one (`videoid devices` lists them), or name a recorded video "
        "with --camera FILE.");
  }
  if (const DeviceInfo* found = devices::findDevice(cameras, id)) return *found;
  std::error_code error;
  if (fs::is_directory(id, error)) {
    return platform::failure(inQuotes(id) +
                             " is a folder, and neither a camera nor a recorded video; name a file "
                             "in it.");
  }
  return platform::failure("There is no camera and no file " + inQuotes(id) +
                           "; `videoid devices` lists the cameras.");
}

Expected<std::optional<LiveSource>> chooseMicrophone(const CameraChoice& choice) {
  if (choice.microphone == kNone) return std::nullopt;
  const auto microphones = devices::connectedMicrophones();
  const bool any = choice.microphone == kDefault;
  const DeviceInfo* found = any ? devices::defaultDevice(microphones)
                                : devices::findDevice(microphones, choice.microphone);
  if (!found && any) return std::nullopt;
  if (!found) {
    return platform::failure("There is no microphone " + inQuotes(choice.microphone) +
                             "; `videoid devices` lists them, and none makes a silent film.");
  }
  if (found->isVirtual && !choice.allowVirtual) return refusal(found->name);
  return devices::microphoneSource(*found);
}

/// Of a file that is played as a live camera; absent when the camera is another.
std::optional<std::string> playedFile(const CameraChoice& choice) {
  const std::string prefix = kVirtual;
  if (!choice.camera.starts_with(prefix)) return {};
  std::string path = choice.camera.substr(prefix.size());
  return isFile(path) ? std::optional(std::move(path)) : std::nullopt;
}

Expected<LiveDevices::Setup> chooseFile(const CameraChoice& choice, const std::string& path) {
  if (!choice.allowVirtual) return refusal(choice.camera);
  auto file = devices::openLiveFile(path);
  if (!file) return tl::unexpected(file.error());
  LiveDevices::Setup setup;
  setup.camera = std::move(file->camera);
  setup.turn = choice.turn;
  if (choice.microphone == kDefault) {
    setup.microphone = std::move(file->microphone);
    return setup;
  }
  auto microphone = chooseMicrophone(choice);
  if (!microphone) return tl::unexpected(microphone.error());
  setup.microphone = std::move(*microphone);
  return setup;
}

/// What the machine has time for at this moment; whoever names a mode gets that.
devices::CameraMode chooseMode(const CameraChoice& choice, devices::VideoCodecChoice codec) {
  if (choice.mode) return *choice.mode;
  const devices::CameraMode usual;
  const auto speed = filmSpeed(codec);
  if (!speed) return usual;
  const devices::CameraMode mode = cameraModeFor(*speed);
  const std::string name = devices::nameOf(mode);
  if (name != devices::nameOf(usual)) {
    std::cerr << "This machine is too slow or too busy for the usual film: the camera is asked for "
              << name << "; --camera-mode asks for another." << std::endl;
  }
  return mode;
}

Expected<LiveDevices::Setup> chooseDevices(const CameraChoice& choice,
                                           devices::VideoCodecChoice codec) {
  if (const auto path = playedFile(choice)) return chooseFile(choice, *path);
  const auto camera = chooseCamera(choice.camera);
  if (!camera) return tl::unexpected(camera.error());
  if (camera->isVirtual && !choice.allowVirtual) return refusal(camera->name);
  auto microphone = chooseMicrophone(choice);
  if (!microphone) return tl::unexpected(microphone.error());
  return LiveDevices::Setup{.camera = devices::cameraSource(*camera, chooseMode(choice, codec)),
                            .turn = choice.turn,
                            .microphone = std::move(*microphone)};
}

std::shared_ptr<devices::MediaSource> asSource(std::shared_ptr<devices::MediaSource> media) {
  return media;
}

Expected<MediaOpener> chooseRecording(const CameraChoice& choice, devices::VideoCodecChoice codec) {
  if (choice.microphone != kDefault) {
    return platform::failure(
        "A recorded video brings its own sound; leave --microphone out, or play the video as a "
        "live camera with --camera virtual:FILE.");
  }
  auto look = devices::MediaProbe::start(choice.camera);
  if (!look) return tl::unexpected(look.error());
  const std::shared_ptr<devices::MediaProbe> begun = std::move(*look);
  return [begun, codec](platform::RunLoop& loop) {
    return devices::MediaFile::open(loop, *begun, codec).map(asSource);
  };
}

}  // namespace

bool CameraChoice::isRecording() const {
  return isFile(camera);
}

Expected<MediaOpener> chooseMedia(const CameraChoice& choice, devices::VideoCodecChoice codec) {
  if (choice.isRecording()) return chooseRecording(choice, codec);
  auto setup = chooseDevices(choice, codec);
  if (!setup) return tl::unexpected(setup.error());
  setup->codecChoice = codec;
  return [setup = std::move(*setup)](platform::RunLoop& loop) {
    return LiveDevices::open(loop, setup).map(asSource);
  };
}

}  // namespace corvana::app
