#pragma once

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "FilmMaterial.h"
#include "devices/gstreamer/MediaFile.h"
#include "platform/foundation/VirtualRunLoop.h"
#include "support/Scratch.h"

namespace devices::test {

using tests::bytesOf;
using tests::ScratchFolder;
using tests::writeBytes;

/// Everything a file's camera and microphone deliver when both start at once.
struct Recording {
  std::vector<platform::CMSampleBufferRef> pictures;
  std::vector<std::int16_t> samples;  ///< of all sounds, from the first picture on
  int ends = 0;
  std::vector<std::string> errors;
};

inline Recording play(const std::filesystem::path& path) {
  Recording recording;
  platform::VirtualRunLoop loop;
  const auto file = MediaFile::open(loop, path);
  if (!file) {
    recording.errors.push_back(file.error());
    return recording;
  }
  (*file)->onEnd = [&] { ++recording.ends; };
  (*file)->onError = [&](const std::string& error) { recording.errors.push_back(error); };
  (*file)->camera()->start([&](auto sample) { recording.pictures.push_back(std::move(sample)); });
  if (const auto microphone = (*file)->microphone()) {
    microphone->start([&](auto sample) {
      recording.samples.insert(recording.samples.end(), sample->samples.begin(),
                               sample->samples.end());
    });
  }
  loop.advance(std::chrono::minutes(2));
  return recording;
}

/// What became of a command of the shell, as `wait` tells it.
inline int run(const std::string& command) {
  return std::system(("exec " + command).c_str());
}

}  // namespace devices::test
