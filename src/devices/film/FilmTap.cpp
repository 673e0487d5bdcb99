#include "devices/film/FilmTap.h"

#include <utility>

namespace corvana::devices {
namespace {

struct Tap {
  FilmTrack track;
  std::shared_ptr<FilmWitness> witness;
  bool isFirst = true;
};

std::string codecOf(GstPad* pad) {
  const GstPtr<GstCaps> caps(gst_pad_get_current_caps(pad));
  return codecData(caps.get());
}

/// Encoders shift their times to have room below zero; the segment says by how much.
platform::Duration timeOf(GstPad* pad, GstBuffer* buffer) {
  const GstPtr<GstEvent> event(gst_pad_get_sticky_event(pad, GST_EVENT_SEGMENT, 0));
  if (!event) return {};
  const GstSegment* segment = nullptr;
  gst_event_parse_segment(event.get(), &segment);
  return platform::Duration(static_cast<platform::Duration::rep>(
      gst_segment_to_running_time(segment, GST_FORMAT_TIME, GST_BUFFER_PTS(buffer))));
}

GstPadProbeReturn onBuffer(GstPad* pad, GstPadProbeInfo* info, gpointer data) {
  auto& tap = *static_cast<Tap*>(data);
  GstBuffer* buffer = GST_PAD_PROBE_INFO_BUFFER(info);
  GstMapInfo map;
  if (!gst_buffer_map(buffer, &map, GST_MAP_READ)) return GST_PAD_PROBE_OK;
  const std::string codec = std::exchange(tap.isFirst, false) ? codecOf(pad) : std::string();
  tap.witness->saw(
      {tap.track, timeOf(pad, buffer), {reinterpret_cast<const char*>(map.data), map.size}, codec});
  gst_buffer_unmap(buffer, &map);
  return GST_PAD_PROBE_OK;
}

void release(gpointer data) {
  delete static_cast<Tap*>(data);
}

}  // namespace

void tapTrack(GstElement* mux, const std::string& pad, FilmTrack track,
              std::shared_ptr<FilmWitness> witness) {
  const GstPtr<GstPad> input(gst_element_get_static_pad(mux, pad.c_str()));
  gst_pad_add_probe(input.get(), GST_PAD_PROBE_TYPE_BUFFER, onBuffer,
                    new Tap{track, std::move(witness)}, release);
}

std::string codecData(const GstCaps* caps) {
  if (!caps || gst_caps_is_empty(caps)) return {};
  const GValue* value = gst_structure_get_value(gst_caps_get_structure(caps, 0), "codec_data");
  GstBuffer* buffer = value ? gst_value_get_buffer(value) : nullptr;
  if (!buffer) return {};
  std::string bytes(gst_buffer_get_size(buffer), '\0');
  gst_buffer_extract(buffer, 0, bytes.data(), bytes.size());
  return bytes;
}

}  // namespace corvana::devices
