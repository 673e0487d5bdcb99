#include <gst/gst.h>
#include <gtest/gtest.h>

#include "devices/gstreamer/GstSupport.h"
#include "devices/loudspeaker/EspeakSynthesizer.h"

namespace corvana::devices {
namespace {

/// From now on an element of this name is one of another kind.
void replaceElement(const char* name, const char* byKind) {
  GstElementFactory* found = gst_element_factory_find(byKind);
  ASSERT_NE(found, nullptr);
  const GstPtr<GstElementFactory> kind(GST_ELEMENT_FACTORY(
      gst_plugin_feature_load(GST_PLUGIN_FEATURE(GstPtr<GstElementFactory>(found).get()))));
  gst_element_register(nullptr, name, GST_RANK_NONE,
                       gst_element_factory_get_element_type(kind.get()));
}

// The queue of the voice would stand still, and the program not end.
TEST(EspeakSynthesizer, IsSilentWhereItsVoiceDoesNotStart) {
  initGStreamer();
  replaceElement("espeak", "filesrc");  // which is told of no file
  EXPECT_TRUE(EspeakSynthesizer::samples("Turn the card over", "en").empty());
}

}  // namespace
}  // namespace corvana::devices
