#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "FilmMaterial.h"
#include "devices/gstreamer/FilmSettings.h"
#include "devices/gstreamer/FilmWriterFactory.h"
#include "devices/gstreamer/MediaFile.h"
#include "platform/foundation/VirtualRunLoop.h"

namespace devices::test {

/// A folder that goes with its test.
class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "film-XXXXXX").string();
    path_ = ::mkdtemp(name.data());
  }
  ~TemporaryFolder() { std::filesystem::remove_all(path_); }
  std::filesystem::path operator/(const char* name) const { return path_ / name; }

 private:
  std::filesystem::path path_;
};

inline std::string bytesOf(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

inline void writeBytes(const std::filesystem::path& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary) << bytes;
}

inline std::shared_ptr<platform::AssetWriter> makeFilm(platform::RunLoop& loop,
                                                       const std::filesystem::path& path,
                                                       bool withSound = true) {
  FilmWriterFactory factory(loop);
  std::optional<platform::WriterSettings> sound;
  if (withSound) sound = audioSettings();
  auto film = factory.make(path, videoSettings(platform::kAVVideoCodecTypeH264, 320, 240), sound);
  EXPECT_TRUE(film) << film.error();
  return film ? *film : nullptr;
}

/// Everything a file's camera and microphone deliver when both start at once.
struct Recording {
  std::vector<platform::CMSampleBufferRef> pictures;
  std::vector<platform::CMSampleBufferRef> sounds;
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
      recording.sounds.push_back(std::move(sample));
    });
  }
  loop.advance(std::chrono::minutes(2));
  return recording;
}

/// The exit status of a program, or minus the signal that ended it.
inline int run(const std::vector<std::string>& command) {
  std::vector<char*> arguments;
  for (const std::string& word : command)
    arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);
  const pid_t child = ::fork();
  if (child == 0) {
    ::execv(arguments[0], arguments.data());
    ::_exit(127);
  }
  int status = 0;
  ::waitpid(child, &status, 0);
  return WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
}

}  // namespace devices::test
