#pragma once

#include "corvana/IDCapture.h"
#include "corvana/SelfieCapture.h"
#include "corvana/VideoCapture.h"

namespace corvana::tests {

/// Gives the host's static tables back as they were, whatever a test wrote into them.
class HostTablesGuard {
 public:
  HostTablesGuard() = default;
  HostTablesGuard(const HostTablesGuard&) = delete;
  HostTablesGuard& operator=(const HostTablesGuard&) = delete;

 private:
  template <class Table>
  struct Restore {
    Table& table;
    Table before = table;
    ~Restore() { table = before; }
  };

  template <class Capture>
  struct RestoreCapture {
    Restore<decltype(Capture::options)> options{Capture::options};
    Restore<decltype(Capture::strings)> strings{Capture::strings};
    Restore<decltype(Capture::colors)> colors{Capture::colors};
    Restore<decltype(Capture::fonts)> fonts{Capture::fonts};
    Restore<decltype(Capture::images)> images{Capture::images};
    Restore<decltype(Capture::layout)> layout{Capture::layout};
  };

  RestoreCapture<corvana::SelfieCapture> selfie_;
  RestoreCapture<corvana::IDCapture> id_;
  Restore<corvana::VideoCapture::Options> options_{corvana::VideoCapture::options};
  Restore<corvana::VideoCapture::Strings> strings_{corvana::VideoCapture::strings};
};

}  // namespace corvana::tests
