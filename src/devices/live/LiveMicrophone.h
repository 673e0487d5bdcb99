#pragma once

#include <atomic>
#include <memory>
#include <string>

#include "devices/film/FilmingDevice.h"
#include "devices/live/LiveStream.h"
#include "platform/foundation/Fault.h"

namespace corvana::devices {

/// A live microphone: 48 kHz mono, 16 bit, in buffers of 20 ms, whatever the device delivers.
class LiveMicrophone final : public FilmingMicrophone {
 public:
  LiveMicrophone(platform::RunLoop& loop, LiveSource source);
  ~LiveMicrophone() override { stream_->close(); }

  /// Opens the device as `LiveStream::open` does; called before all else, since it takes its time.
  platform::Expected<void> open(platform::Duration patience);
  const LiveStream& stream() const { return *stream_; }
  /// How long it has been delivering nothing but zeros, which no open microphone does. Any thread.
  platform::Duration silentFor() const;

  std::string localizedName() const override { return name_; }
  bool open() override { return stream_->isOpen(); }
  void start(SampleHandler handler) override { stream_->start(std::move(handler)); }
  void stop() override { stream_->stop(); }

 private:
  LiveStream::Sample convert(GstSample* sample);

  const std::string name_;
  std::atomic<std::uint64_t> silentSamples_ = 0;
  std::shared_ptr<LiveStream> stream_;  ///< last: its pipeline calls this microphone
};

}  // namespace corvana::devices
