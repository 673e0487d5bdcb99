#pragma once

#include <optional>
#include <string>

#include <gst/app/gstappsrc.h>

#include "devices/live/LiveSource.h"

namespace corvana::devices::test {

/// Stands at the head of a live pipeline as a device does, and misbehaves on order. It delivers one
/// sample by itself when it is opened.
class LivePeer {
 public:
  enum class Opening { delivers, deliversNothing, isBusy };

  static LivePeer camera(int width, int height, int rate = 30) {
    LivePeer peer;
    peer.changeTo(width, height, rate);
    return peer;
  }
  /// Stereo at another rate than films have, 100 ms a buffer.
  static LivePeer microphone() {
    LivePeer peer;
    peer.caps_ = "audio/x-raw,format=S16LE,layout=interleaved,rate=44100,channels=2";
    peer.bytes_ = 4410 * 4;
    return peer;
  }
  LivePeer(LivePeer&& other) = default;
  ~LivePeer() {
    if (source_) gst_object_unref(source_);
  }

  LiveSource source(Opening opening = Opening::delivers) {
    return {"Peer", false, "appsrc name=source is-live=true format=time",
            [this, opening](GstElement* source) {
              gst_object_replace(reinterpret_cast<GstObject**>(&source_), GST_OBJECT(source));
              if (opening != Opening::deliversNothing) push(0);
              if (opening == Opening::isBusy) failAtFirst();
            },
            nullptr};
  }

  /// A sample full of `value`, captured so many milliseconds after the start.
  void push(int milliseconds, int value = 128) {
    GstBuffer* buffer = gst_buffer_new_allocate(nullptr, bytes_, nullptr);
    gst_buffer_memset(buffer, 0, static_cast<guint8>(value), bytes_);
    GST_BUFFER_PTS(buffer) = static_cast<GstClockTime>(milliseconds) * GST_MSECOND;
    GstCaps* caps = gst_caps_from_string(caps_.c_str());
    GstSample* sample = gst_sample_new(buffer, caps, nullptr, nullptr);
    gst_app_src_push_sample(GST_APP_SRC(source_), sample);
    gst_sample_unref(sample);
    gst_caps_unref(caps);
    gst_buffer_unref(buffer);
  }
  void changeTo(int width, int height, int rate = 30) {
    caps_ = "video/x-raw,format=GRAY8,width=" + std::to_string(width) +
            ",height=" + std::to_string(height) + ",framerate=" + std::to_string(rate) + "/1";
    bytes_ = static_cast<gsize>((width + 3) / 4 * 4 * height);
  }
  void end() { gst_app_src_end_of_stream(GST_APP_SRC(source_)); }
  void fail(int code) {
    gst_element_message_full(source_, GST_MESSAGE_ERROR, GST_RESOURCE_ERROR, code,
                             g_strdup("Out of order."), nullptr, __FILE__, __func__, __LINE__);
  }

 private:
  LivePeer() = default;
  void failAtFirst() {
    GstPad* pad = gst_element_get_static_pad(source_, "src");
    const auto busy = [](GstPad*, GstPadProbeInfo*, gpointer peer) {
      static_cast<LivePeer*>(peer)->fail(GST_RESOURCE_ERROR_BUSY);
      return GST_PAD_PROBE_DROP;
    };
    gst_pad_add_probe(pad, GST_PAD_PROBE_TYPE_BUFFER, busy, this, nullptr);
    gst_object_unref(pad);
  }

  std::string caps_;
  gsize bytes_ = 0;
  GstElement* source_ = nullptr;
};

}  // namespace corvana::devices::test
