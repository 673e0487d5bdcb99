#pragma once

namespace corvana {

/// What makes a live camera's stream look as if software fed it in. A host that watches none leaves
/// it alone.
struct CameraWatch {
  struct Options {
    /// Standard deviation of the intervals between pictures, in microseconds, below which their
    /// times were computed: drivers give the time of an interrupt or of the sensor's own clock,
    /// which both stray by tens.
    double regularMicroseconds = 2;
    /// Share of the mode's interval below which one is too short for the sensor.
    double shortInterval = 0.6;
    /// Share of the intervals that may be too short.
    double mostShortIntervals = 0.05;
    /// Share of the pictures that may be the same, to the last bit, as one from half a second to a
    /// minute before.
    double mostIdentical = 0.05;
  };

  static Options options;
};

inline CameraWatch::Options CameraWatch::options;

}  // namespace corvana
