#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "devices/film/FilmingDevice.h"
#include "devices/live/InjectionJudge.h"
#include "devices/live/LiveDevices.h"
#include "devices/live/LiveStream.h"
#include "platform/foundation/Fault.h"

namespace corvana::devices {

/// A live camera: upright I420 pictures (BT.601, limited range) of the size of the first one. When
/// the device changes size or format, pictures are scaled into that size, with borders.
class LiveCamera final : public FilmingCamera {
 public:
  LiveCamera(platform::RunLoop& loop, LiveSource source, CameraTurn turn,
             VideoCodecChoice codecChoice);
  ~LiveCamera() override { stream_->close(); }

  /// Opens the device as `LiveStream::open` does; called before all else, since it takes its time.
  platform::Expected<void> open(platform::Duration patience);
  const LiveStream& stream() const { return *stream_; }
  /// Whether the device changed its size or format on its own.
  bool hasChanged() const { return changed_; }
  /// What speaks against the stream so far. Any thread.
  std::vector<CameraSign> signs() const;

  std::string localizedName() const override { return name_; }
  bool open() override { return stream_->isOpen(); }
  void start(SampleHandler handler) override { stream_->start(std::move(handler)); }
  void stop() override { stream_->stop(); }

 private:
  PictureSize pictureSize() const override { return {width_, height_}; }
  static GstPadProbeReturn onCaps(GstPad* pad, GstPadProbeInfo* info, gpointer data);
  void setUp(GstElement* pipeline);
  LiveStream::Sample convert(GstSample* sample);
  void judge(GstSample* sample, const platform::CMSampleBuffer& converted);
  void keepSize(int width, int height);

  const std::string name_;
  GstElement* sizeFilter_ = nullptr;  ///< in the pipeline
  std::optional<std::string> firstCaps_;
  std::atomic<int> width_ = 0;
  std::atomic<int> height_ = 0;
  std::atomic<bool> changed_ = false;
  InjectionJudge judge_;  ///< pipeline's thread
  mutable std::mutex signsMutex_;
  std::vector<CameraSign> signs_;       ///< guarded by signsMutex_
  std::shared_ptr<LiveStream> stream_;  ///< last: its pipeline calls this camera
};

}  // namespace corvana::devices
