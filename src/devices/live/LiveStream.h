#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include <gst/app/gstappsink.h>

#include "devices/gstreamer/GstSupport.h"
#include "devices/live/CaptureTimes.h"
#include "devices/live/LiveSource.h"
#include "platform/foundation/Fault.h"
#include "platform/foundation/RunLoop.h"
#include "platform/media/CaptureDevice.h"

namespace corvana::devices {

/// The samples of one live device, from its pipeline to the handler. A device that was opened stays
/// open until this is destroyed: what comes while there is no handler is thrown away, so that a
/// start costs nothing and no other program can snatch the device between two runs.
///
/// Samples are converted on the pipeline's thread and handed over on the run loop's device thread;
/// between the two wait `mostWaiting` at most, the oldest goes first.
class LiveStream final : public std::enable_shared_from_this<LiveStream> {
 public:
  using Sample = std::shared_ptr<platform::CMSampleBuffer>;

  struct Setup {
    std::string kind;  ///< what errors call the device: "camera" or "microphone"
    LiveSource source;
    std::string line;  ///< launch line between the source and the sink
    std::size_t mostWaiting = 1;
    /// Called before the pipeline starts.
    std::function<void(GstElement* pipeline)> setUp;
    /// Makes a sample of GStreamer's, without its presentation time; null when that is unusable.
    /// Called on the pipeline's thread.
    std::function<Sample(GstSample* sample)> convert;
  };

  LiveStream(platform::RunLoop& loop, Setup setup);
  ~LiveStream();

  /// Opens the device and waits for its first sample; the error is one sentence. Harmless when it
  /// is open.
  platform::Expected<void> open(platform::Duration patience);
  bool isOpen() const;
  /// Closes the device; nothing of `Setup` is called afterwards. Not for the pipeline's thread.
  void close();
  /// Starts and stops the delivery, as an `AVCaptureDevice` does.
  void start(platform::AVCaptureDevice::SampleHandler handler);
  void stop();

  /// Why nothing will come any more: one sentence. Any thread, as all below.
  std::optional<platform::Fault> fault() const;
  std::uint64_t samplesTaken() const { return taken_; }
  std::uint64_t samplesDropped() const { return dropped_; }
  bool clockJumped() const { return clockJumped_; }

 private:
  static GstFlowReturn onSample(GstAppSink* sink, gpointer data);
  static void onEnd(GstAppSink* sink, gpointer data);
  static GstBusSyncReply onMessage(GstBus* bus, GstMessage* message, gpointer data);
  static void onOverrun(GstElement* queue, gpointer data);

  void listen();
  void useMonotonicClock();
  void fail(std::string sentence);
  void take(GstSample* sample);
  std::optional<platform::TimePoint> captureTime(GstSample* sample) const;
  void enqueue(platform::CMSampleBufferRef sample);
  void requestDelivery();
  void deliverOne();

  platform::RunLoop& loop_;
  const Setup setup_;
  GstPtr<GstElement> pipeline_;
  platform::Duration clockOffset_{};  ///< from GStreamer's clock to the run loop's
  CaptureTimes times_;                ///< pipeline's thread

  /// Held while the handler runs. Recursive, since it may stop the device that calls it.
  std::recursive_mutex handlerMutex_;
  platform::AVCaptureDevice::SampleHandler handler_;

  mutable std::mutex mutex_;  ///< guards what follows
  std::condition_variable changed_;
  std::optional<platform::Fault> fault_;
  std::deque<platform::CMSampleBufferRef> waiting_;
  bool wanted_ = false;  ///< there is a handler
  bool begun_ = false;
  bool deliveryRequested_ = false;

  std::atomic<std::uint64_t> taken_ = 0;
  std::atomic<std::uint64_t> dropped_ = 0;
  std::atomic<bool> clockJumped_ = false;
};

/// What a device's error says to a person: one sentence that names the device and the cure. `kind`
/// is "camera" or "microphone", `details` GStreamer's debugging text. Any thread.
std::string liveFault(const std::string& kind, const std::string& name, const GError& error,
                      const std::string& details);

}  // namespace corvana::devices
