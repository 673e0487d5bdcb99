#pragma once

#include <chrono>
#include <memory>
#include <string>

#include <gst/gst.h>

/// Ownership and start-up of GStreamer; private to this folder.
namespace corvana::devices {

namespace detail {

struct GstRelease {
  void operator()(GstBuffer* buffer) const { gst_buffer_unref(buffer); }
  void operator()(GstBus* bus) const { gst_object_unref(bus); }
  void operator()(GstCaps* caps) const { gst_caps_unref(caps); }
  void operator()(GstClock* clock) const { gst_object_unref(clock); }
  void operator()(GstDevice* device) const { gst_object_unref(device); }
  void operator()(GstDeviceProvider* provider) const { gst_object_unref(provider); }
  void operator()(GstElementFactory* factory) const { gst_object_unref(factory); }
  void operator()(GstEvent* event) const { gst_event_unref(event); }
  void operator()(GstMessage* message) const { gst_message_unref(message); }
  void operator()(GstPad* pad) const { gst_object_unref(pad); }
  void operator()(GstSample* sample) const { gst_sample_unref(sample); }
  void operator()(GstStructure* structure) const { gst_structure_free(structure); }
  void operator()(GstTagList* tags) const { gst_tag_list_unref(tags); }
  void operator()(GError* error) const { g_error_free(error); }
  void operator()(gchar* text) const { g_free(text); }
  void operator()(GstElement* element) const {
    gst_element_set_state(element, GST_STATE_NULL);
    gst_object_unref(element);
  }
};

}  // namespace detail

/// An owned reference. An element is stopped before it is let go: made for whole pipelines and for
/// references to elements outside one; elements inside a pipeline are borrowed (`child`).
template <class T>
using GstPtr = std::unique_ptr<T, detail::GstRelease>;

/// Starts GStreamer once; harmless when repeated, any thread.
void initGStreamer();

/// The element of that name inside a pipeline, which keeps owning it.
GstElement* child(const GstPtr<GstElement>& pipeline, const char* name);

/// The element of that name inside a pipeline that somebody else owns.
GstElement* borrow(GstElement* pipeline, const char* name);

/// The pipeline of a launch line; the program stops when the line itself is wrong, null is returned
/// when an element is not installed.
GstPtr<GstElement> launch(const std::string& line);

/// The text of an error, without the source line where the library noticed it.
std::string describe(const GError& error);

inline GstClockTime clockTime(std::chrono::nanoseconds time) {
  return static_cast<GstClockTime>(time.count());
}

}  // namespace corvana::devices
