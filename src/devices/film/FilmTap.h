#pragma once

#include <memory>
#include <string>

#include "devices/film/FilmWitness.h"
#include "devices/gstreamer/GstSupport.h"

namespace corvana::devices {

/// Shows the witness everything that enters the muxer's track of that name, for as long as the
/// pipeline lives.
void tapTrack(GstElement* mux, const std::string& pad, FilmTrack track,
              std::shared_ptr<FilmWitness> witness);

/// What the caps of a track tell its decoder; empty when they tell nothing.
std::string codecData(const GstCaps* caps);

}  // namespace corvana::devices
