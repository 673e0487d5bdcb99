#include "devices/gstreamer/GstSupport.h"

#include "platform/foundation/Require.h"

namespace corvana::devices {

void initGStreamer() {
  static const bool kStarted = [] {
    // A helper process that scans plugins would outlive a killed program.
    gst_registry_fork_set_enabled(FALSE);
    return gst_init_check(nullptr, nullptr, nullptr) != FALSE;
  }();
  platform::require(kStarted, "GStreamer can't be started");
}

GstElement* child(const GstPtr<GstElement>& pipeline, const char* name) {
  return borrow(pipeline.get(), name);
}

GstElement* borrow(GstElement* pipeline, const char* name) {
  GstElement* element = gst_bin_get_by_name(GST_BIN(pipeline), name);
  platform::require(element != nullptr, std::string("no element of this name: ") + name);
  gst_object_unref(element);
  return element;
}

GstPtr<GstElement> launch(const std::string& line) {
  initGStreamer();
  GError* raw = nullptr;
  GstPtr<GstElement> pipeline(
      gst_parse_launch_full(line.c_str(), nullptr, GST_PARSE_FLAG_FATAL_ERRORS, &raw));
  const GstPtr<GError> error(raw);
  if (!error) return pipeline;
  platform::require(g_error_matches(raw, GST_PARSE_ERROR, GST_PARSE_ERROR_NO_SUCH_ELEMENT),
                    "launch line: " + describe(*raw));
  return nullptr;
}

std::string describe(const GError& error) {
  std::string text = error.message;
  while (!text.empty() && (text.back() == '.' || text.back() == '\n'))
    text.pop_back();
  return text;
}

}  // namespace corvana::devices
