#pragma once

#include <filesystem>

#include "devices/film/Mp4Dates.h"
#include "devices/gstreamer/GstSupport.h"
#include "platform/foundation/Fault.h"

namespace corvana::devices {

/// Gives a muxer's video track (`video_0`) the usual clock of video, in which every common frame
/// rate comes out exact.
inline void setVideoTimescale(GstElement* mux) {
  const GstPtr<GstPad> track(gst_element_get_static_pad(mux, "video_0"));
  g_object_set(track.get(), "trak-timescale", 90000, nullptr);
}

/// Turns a film that was recorded to its end, in fragments, into a plain one: the index first, the
/// same encoded pictures and sound at the same times. It is made in a file beside it, put on the
/// disk and then given the film's name, so at every moment one of the two is whole; after a fault
/// the recorded one is still there. Needs room for two more such films. Blocks.
platform::Expected<void> remuxFilm(const std::filesystem::path& film, const CreationTime& created);

}  // namespace corvana::devices
