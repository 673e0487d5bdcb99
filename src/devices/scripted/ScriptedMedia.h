#pragma once

#include <atomic>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/foundation/RunLoop.h"
#include "platform/media/CaptureDevice.h"
#include "platform/media/Speech.h"

namespace corvana::devices {

/// A camera or microphone whose samples, codecs and faults a script decides. Samples may be pushed
/// on any thread; the script's settings belong to the main queue.
class ScriptedCaptureDevice : public platform::AVCaptureDevice {
 public:
  explicit ScriptedCaptureDevice(platform::AVMediaType type) : type_(type) {}

  bool canOpen = true;
  std::vector<platform::AVVideoCodecType> codecs = {platform::kAVVideoCodecTypeHEVC,
                                                    platform::kAVVideoCodecTypeH264};
  /// What recommended settings hold beside the codec that was asked for; absent: none are
  /// recommended.
  std::optional<platform::WriterSettings> recommendedVideo = platform::WriterSettings{};
  std::optional<platform::WriterSettings> recommendedAudio = platform::WriterSettings{};

  bool isRunning() const;
  int starts() const { return starts_; }
  int stops() const { return stops_; }
  /// File types that were asked about, in order.
  const std::vector<platform::AVFileType>& fileTypesAsked() const { return fileTypes_; }
  /// Hands a sample to whoever started the device; dropped while it does not run.
  void push(platform::CMSampleBufferRef sample) const;

  std::string localizedName() const override { return "scripted"; }
  platform::AVMediaType mediaType() const override { return type_; }
  bool open() override { return canOpen; }
  void start(SampleHandler handler) override;
  void stop() override;
  std::vector<platform::AVVideoCodecType> availableVideoCodecTypes(
      const platform::AVFileType& fileType) const override;
  bool recommendedVideoSettings(const platform::AVVideoCodecType& codec,
                                const platform::AVFileType& fileType,
                                platform::WriterSettings& settings) const override;
  bool recommendedAudioSettings(const platform::AVFileType& fileType,
                                platform::WriterSettings& settings) const override;

 private:
  platform::AVMediaType type_;
  mutable std::mutex mutex_;
  SampleHandler handler_;  // guarded by mutex_
  std::atomic<int> starts_ = 0;
  std::atomic<int> stops_ = 0;
  mutable std::vector<platform::AVFileType> fileTypes_;
};

/// The machine's camera and microphone and the user's leave to use them, as a script says.
class ScriptedMediaDevices final : public platform::MediaDevices {
 public:
  explicit ScriptedMediaDevices(platform::RunLoop& loop) : loop_(loop) {}

  /// The machine's devices; null where it has none.
  std::shared_ptr<ScriptedCaptureDevice> microphone =
      std::make_shared<ScriptedCaptureDevice>(platform::AVMediaType::audio);
  std::shared_ptr<ScriptedCaptureDevice> camera =
      std::make_shared<ScriptedCaptureDevice>(platform::AVMediaType::video);
  platform::AVAuthorizationStatus microphoneStatus = platform::AVAuthorizationStatus::authorized;
  /// The user's answer when they are asked; it takes `answerDelay`.
  bool grantsWhenAsked = true;
  platform::Duration answerDelay{};

  int requests() const { return requests_; }

  platform::AVCaptureDeviceRef defaultDevice(platform::AVMediaType type) override;
  platform::AVAuthorizationStatus authorizationStatus(platform::AVMediaType type) override;
  void requestAccess(platform::AVMediaType type, std::function<void(bool)> answer) override;

 private:
  platform::RunLoop& loop_;
  int requests_ = 0;
};

/// The user's leave to recognise speech, as a script says.
class ScriptedSpeechAuthorization final : public platform::SpeechAuthorization {
 public:
  explicit ScriptedSpeechAuthorization(platform::RunLoop& loop) : loop_(loop) {}

  platform::SFSpeechRecognizerAuthorizationStatus status =
      platform::SFSpeechRecognizerAuthorizationStatus::authorized;
  platform::Duration answerDelay{};

  int requests() const { return requests_; }

  void request(
      std::function<void(platform::SFSpeechRecognizerAuthorizationStatus)> answer) override;

 private:
  platform::RunLoop& loop_;
  int requests_ = 0;
};

/// Microphone samples of silence, `length` long from `start`: 16 kHz, one channel.
platform::CMSampleBufferRef silentSample(platform::TimePoint start, platform::Duration length);

}  // namespace corvana::devices
