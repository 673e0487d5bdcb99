#pragma once

#include <tuple>

#include "corvana/CameraWatch.h"
#include "corvana/IDCapture.h"
#include "corvana/SelfieCapture.h"
#include "corvana/VideoCapture.h"

namespace corvana {

/// References to every table of the host: what resets them, and what gives them back as they were,
/// goes over all.
inline auto hostTables() {
  return std::tie(SelfieCapture::options, SelfieCapture::strings, SelfieCapture::colors,
                  SelfieCapture::fonts, SelfieCapture::images, SelfieCapture::layout,
                  IDCapture::options, IDCapture::strings, IDCapture::colors, IDCapture::fonts,
                  IDCapture::images, IDCapture::layout, VideoCapture::options,
                  VideoCapture::strings, CameraWatch::options);
}

/// What the tables hold, by value.
template <class... Table>
std::tuple<Table...> valuesOf(const std::tuple<Table&...>& tables) {
  return tables;
}

/// What the tables hold before anything is set.
template <class... Table>
std::tuple<Table...> defaultsOf(const std::tuple<Table&...>&) {
  return {};
}

}  // namespace corvana
