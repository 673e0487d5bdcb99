#include "devices/live/LiveStream.h"

#include <utility>

#include "platform/foundation/Fault.h"

namespace corvana::devices {
namespace {

enum class Trouble { busy, forbidden, missing, other };

Trouble troubleOf(const GError& error, const std::string& details) {
  const auto tells = [&](const char* words) { return details.find(words) != std::string::npos; };
  if (error.domain != GST_RESOURCE_ERROR) return Trouble::other;
  if (error.code == GST_RESOURCE_ERROR_BUSY || tells("resource busy")) return Trouble::busy;
  if (error.code == GST_RESOURCE_ERROR_NOT_AUTHORIZED || tells("Permission denied") ||
      tells("Access denied")) {
    return Trouble::forbidden;
  }
  const bool missing = error.code == GST_RESOURCE_ERROR_NOT_FOUND || tells("No such file") ||
                       tells("No such device") || tells("No such entity");
  return missing ? Trouble::missing : Trouble::other;
}

/// Takes samples off the device at once, whatever follows: it drops the oldest when that is slow.
const char* const kIntake =
    " ! queue name=intake leaky=downstream max-size-buffers=%n max-size-bytes=0 max-size-time=0 ! ";
const char* const kSink = " ! appsink name=sink sync=false max-buffers=1";

std::string lineOf(const LiveStream::Setup& setup) {
  std::string intake = kIntake;
  intake.replace(intake.find("%n"), 2, std::to_string(setup.mostWaiting));
  return setup.source.line + intake + setup.line + kSink;
}

}  // namespace

LiveStream::LiveStream(platform::RunLoop& loop, Setup setup)
    : loop_(loop), setup_(std::move(setup)) {}

LiveStream::~LiveStream() {
  close();
}

void LiveStream::close() {
  if (!pipeline_) return;
  gst_element_set_state(pipeline_.get(), GST_STATE_NULL);
  const GstPtr<GstBus> bus(gst_element_get_bus(pipeline_.get()));
  gst_bus_set_sync_handler(bus.get(), nullptr, nullptr, nullptr);
  pipeline_.reset();
}

platform::Expected<void> LiveStream::open(platform::Duration patience) {
  if (pipeline_) return {};
  pipeline_ = launch(lineOf(setup_));
  const std::string device = "The " + setup_.kind + " \"" + setup_.source.name + "\" ";
  if (!pipeline_) {
    return platform::failure(device +
                             "can't be used: elements of GStreamer are missing; `videoid doctor` "
                             "names the packages.");
  }
  if (setup_.source.setUp) setup_.source.setUp(child(pipeline_, "source"));
  if (setup_.setUp) setup_.setUp(pipeline_.get());
  listen();
  useMonotonicClock();
  const auto state = gst_element_set_state(pipeline_.get(), GST_STATE_PLAYING);
  if (state == GST_STATE_CHANGE_FAILURE) {
    fail(device + "could not be started: connect it again, or choose another " + setup_.kind + ".");
  }
  std::unique_lock lock(mutex_);
  changed_.wait_for(lock, patience, [this] { return fault_ || taken_ > 0; });
  if (!fault_ && taken_ > 0) return {};
  const platform::Fault fault = fault_.value_or(platform::Fault{
      device + "delivers nothing: connect it again, or choose another " + setup_.kind + "."});
  lock.unlock();
  close();
  return tl::unexpected(fault);
}

bool LiveStream::isOpen() const {
  return pipeline_ && !fault();
}

void LiveStream::listen() {
  GstAppSinkCallbacks callbacks{};
  callbacks.new_sample = onSample;
  callbacks.eos = onEnd;
  gst_app_sink_set_callbacks(GST_APP_SINK(child(pipeline_, "sink")), &callbacks, this, nullptr);
  g_signal_connect(child(pipeline_, "intake"), "overrun", G_CALLBACK(onOverrun), this);
  const GstPtr<GstBus> bus(gst_element_get_bus(pipeline_.get()));
  gst_bus_set_sync_handler(bus.get(), onMessage, this, nullptr);
}

void LiveStream::useMonotonicClock() {
  // Both devices count on it, and so does the run loop: they stay in step.
  const GstPtr<GstClock> clock(gst_system_clock_obtain());
  gst_pipeline_use_clock(GST_PIPELINE(pipeline_.get()), clock.get());
  const auto clockNow = static_cast<platform::Duration::rep>(gst_clock_get_time(clock.get()));
  clockOffset_ = loop_.now().time_since_epoch() - platform::Duration(clockNow);
}

void LiveStream::fail(std::string sentence) {
  {
    const std::lock_guard lock(mutex_);
    if (!fault_) fault_ = platform::Fault{std::move(sentence)};
  }
  changed_.notify_all();
}

GstBusSyncReply LiveStream::onMessage(GstBus*, GstMessage* message, gpointer data) {
  auto& self = *static_cast<LiveStream*>(data);
  if (GST_MESSAGE_TYPE(message) == GST_MESSAGE_ERROR) {
    GError* rawError = nullptr;
    gchar* rawDetails = nullptr;
    gst_message_parse_error(message, &rawError, &rawDetails);
    const GstPtr<GError> error(rawError);
    const GstPtr<gchar> details(rawDetails);
    self.fail(
        liveFault(self.setup_.kind, self.setup_.source.name, *error, details ? details.get() : ""));
  }
  // Nobody reads the bus: it would grow.
  gst_message_unref(message);
  return GST_BUS_DROP;
}

void LiveStream::onEnd(GstAppSink*, gpointer data) {
  auto& self = *static_cast<LiveStream*>(data);
  self.fail("The " + self.setup_.kind + " \"" + self.setup_.source.name +
            "\" has stopped: connect it again.");
}

void LiveStream::onOverrun(GstElement*, gpointer data) {
  auto& self = *static_cast<LiveStream*>(data);
  const std::lock_guard lock(self.mutex_);
  if (self.wanted_) ++self.dropped_;
}

GstFlowReturn LiveStream::onSample(GstAppSink* sink, gpointer data) {
  const GstPtr<GstSample> sample(gst_app_sink_pull_sample(sink));
  if (sample) static_cast<LiveStream*>(data)->take(sample.get());
  return GST_FLOW_OK;
}

std::optional<platform::TimePoint> LiveStream::captureTime(GstSample* sample) const {
  const GstClockTime running =
      gst_segment_to_running_time(gst_sample_get_segment(sample), GST_FORMAT_TIME,
                                  GST_BUFFER_PTS(gst_sample_get_buffer(sample)));
  if (!GST_CLOCK_TIME_IS_VALID(running)) return {};
  const GstClockTime instant = gst_element_get_base_time(pipeline_.get()) + running;
  return platform::TimePoint(platform::Duration(static_cast<platform::Duration::rep>(instant)) +
                             clockOffset_);
}

void LiveStream::take(GstSample* sample) {
  const auto placed = times_.place(captureTime(sample), loop_.now());
  if (placed.jumped) clockJumped_ = true;
  if (Sample converted = setup_.convert(sample)) {
    converted->presentationTime = placed.time;
    enqueue(std::move(converted));
  }
}

void LiveStream::enqueue(platform::CMSampleBufferRef sample) {
  {
    const std::lock_guard lock(mutex_);
    ++taken_;
    if (wanted_) {
      waiting_.push_back(std::move(sample));
      if (waiting_.size() > setup_.mostWaiting) {
        waiting_.pop_front();
        ++dropped_;
      }
      if (!std::exchange(deliveryRequested_, true)) requestDelivery();
    }
  }
  changed_.notify_all();
}

void LiveStream::requestDelivery() {
  loop_.scheduleDevice(loop_.now(), platform::EventClass::frame, [weak = weak_from_this()] {
    if (const auto self = weak.lock()) self->deliverOne();
  });
}

void LiveStream::deliverOne() {
  const std::lock_guard handlerLock(handlerMutex_);
  platform::CMSampleBufferRef sample;
  {
    const std::lock_guard lock(mutex_);
    if (!waiting_.empty()) {
      sample = std::move(waiting_.front());
      waiting_.pop_front();
    }
    // One at a time: the devices share their thread.
    deliveryRequested_ = !waiting_.empty();
    if (deliveryRequested_) requestDelivery();
  }
  // A copy, since the handler may stop or restart this device.
  const auto handler = handler_;
  if (sample && handler) handler(std::move(sample));
}

void LiveStream::start(platform::AVCaptureDevice::SampleHandler handler) {
  const std::lock_guard handlerLock(handlerMutex_);
  if (handler_) return;
  handler_ = std::move(handler);
  const std::lock_guard lock(mutex_);
  wanted_ = true;
  if (!std::exchange(begun_, true) && setup_.source.begin) setup_.source.begin();
}

void LiveStream::stop() {
  const std::lock_guard handlerLock(handlerMutex_);
  handler_ = nullptr;
  const std::lock_guard lock(mutex_);
  wanted_ = false;
  waiting_.clear();
}

std::optional<platform::Fault> LiveStream::fault() const {
  const std::lock_guard lock(mutex_);
  return fault_;
}

std::string liveFault(const std::string& kind, const std::string& name, const GError& error,
                      const std::string& details) {
  const std::string device = "The " + kind + " \"" + name + "\" ";
  switch (troubleOf(error, details)) {
    case Trouble::busy:
      return device + "is used by another program: close that program, or choose another " + kind +
             ".";
    case Trouble::forbidden:
      return device + "may not be opened by this user: add the user to the group " +
             (kind == "camera" ? "video" : "audio") + " and log in again.";
    case Trouble::missing:
      return device + "is not there any more: connect it, or choose another " + kind + ".";
    case Trouble::other:
      break;
  }
  return device + "failed (" + describe(error) + "): connect it again, or choose another " + kind +
         ".";
}

}  // namespace corvana::devices
