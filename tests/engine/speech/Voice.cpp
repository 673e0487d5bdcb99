#include "Voice.h"

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

#include <unistd.h>

#include "platform/foundation/Require.h"

std::vector<std::int16_t> speak(const std::string& text, const std::string& voice) {
  const auto file = std::filesystem::temp_directory_path() /
                    ("corvana-voice-" + std::to_string(getpid()) + ".wav");
  const std::string command =
      std::string(FLITE_PROGRAM) + " -voice " + voice + " -t \"" + text + "\" -o " + file.string();
  platform::require(std::system(command.c_str()) == 0, "flite cannot speak: install it");
  std::ifstream stream(file, std::ios::binary);
  const std::vector<char> bytes{std::istreambuf_iterator<char>(stream), {}};
  std::filesystem::remove(file);
  constexpr std::size_t kHeader = 44;
  platform::require(bytes.size() > kHeader, "flite made no sound");
  std::vector<std::int16_t> samples((bytes.size() - kHeader) / 2);
  std::memcpy(samples.data(), bytes.data() + kHeader, samples.size() * 2);
  return samples;
}

std::vector<std::int16_t> asStereo48k(const std::vector<std::int16_t>& samples) {
  std::vector<std::int16_t> result;
  for (std::size_t i = 0; i + 1 < samples.size(); ++i) {
    for (int step = 0; step < 3; ++step) {
      const int value = (samples[i] * (3 - step) + samples[i + 1] * step) / 3;
      result.push_back(static_cast<std::int16_t>(value));
      result.push_back(static_cast<std::int16_t>(value / 2));
    }
  }
  return result;
}
