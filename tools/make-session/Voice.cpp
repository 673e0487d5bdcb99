#include "Voice.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <filesystem>
#include <iterator>
#include <memory>
#include <sstream>
#include <system_error>

#include <glib.h>

#include "Picture.h"
#include "SoundReader.h"

namespace corvana::session {
namespace {

constexpr float kQuiet = 0.004F;  // below this a synthetic voice is silent

/// A folder that is gone when the work in it is done.
class ScratchFolder {
 public:
  ScratchFolder() : path_(take(g_dir_make_tmp("session-voice-XXXXXX", nullptr))) {}
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;
  ~ScratchFolder() {
    std::error_code ignored;
    if (!path_.empty()) std::filesystem::remove_all(path_, ignored);
  }
  const std::filesystem::path& path() const { return path_; }

 private:
  static std::filesystem::path take(gchar* name) {
    const std::unique_ptr<gchar, decltype(&g_free)> owned(name, g_free);
    return name == nullptr ? std::filesystem::path() : std::filesystem::path(name);
  }
  std::filesystem::path path_;
};

/// What the program says on its standard output.
Result<std::string> run(const std::vector<std::string>& command) {
  std::vector<gchar*> arguments;
  arguments.reserve(command.size() + 1);
  for (const std::string& word : command)
    arguments.push_back(const_cast<gchar*>(word.c_str()));
  arguments.push_back(nullptr);
  gint status = 0;
  gchar* said = nullptr;
  const auto flags = static_cast<GSpawnFlags>(G_SPAWN_SEARCH_PATH | G_SPAWN_STDERR_TO_DEV_NULL);
  if (!g_spawn_sync(nullptr, arguments.data(), nullptr, flags, nullptr, nullptr, &said, nullptr,
                    &status, nullptr))
    return fault("The voice cannot be made: install " + command.front() + ".");
  const std::unique_ptr<gchar, decltype(&g_free)> output(said, g_free);
  if (!g_spawn_check_wait_status(status, nullptr))
    return fault(command.front() + " refused to speak: check the script's voice and text.");
  return std::string(output ? output.get() : "");
}

/// flite speaks with a voice of its own choice when it lacks the one asked for.
Result<void> checkVoice(const VoiceScript& voice) {
  if (voice.engine != "flite") return {};
  const auto listed = run({"flite", "-lv"});
  if (!listed) return fault(listed.error());
  std::istringstream words(*listed);
  const std::istream_iterator<std::string> end;
  if (std::find(std::istream_iterator<std::string>(words), end, voice.name) != end) return {};
  return fault("flite has no voice " + voice.name + ": choose one that flite -lv lists.");
}

std::vector<std::string> command(const std::string& text, const VoiceScript& voice,
                                 const std::string& file) {
  if (voice.engine == "flite") return {"flite", "-voice", voice.name, "-t", text, "-o", file};
  return {"espeak-ng", "-v", voice.name, "-s", "150", "-w", file, "--", text};
}

void trimSilence(std::vector<float>& sound) {
  const auto loud = [](float value) { return std::abs(value) > kQuiet; };
  const auto first = std::find_if(sound.begin(), sound.end(), loud);
  const auto last = std::find_if(sound.rbegin(), sound.rend(), loud).base();
  if (first >= last) return;
  sound = std::vector<float>(first, last);
}

void setLevel(std::vector<float>& sound, double decibel) {
  double energy = 0.0;
  float peak = 0.0F;
  for (const float value : sound) {
    energy += static_cast<double>(value) * value;
    peak = std::max(peak, std::abs(value));
  }
  if (peak <= 0.0F) return;
  const double present = std::sqrt(energy / static_cast<double>(sound.size()));
  const double gain = std::min(std::pow(10.0, decibel / 20.0) / present, 0.95 / peak);
  for (float& value : sound)
    value *= static_cast<float>(gain);
}

}  // namespace

Result<std::vector<float>> speak(const std::string& text, const VoiceScript& voice) {
  if (auto known = checkVoice(voice); !known) return fault(known.error());
  const ScratchFolder folder;
  if (folder.path().empty()) return fault("No temporary folder can be made: free some disk space.");
  const std::filesystem::path file = folder.path() / "voice.wav";
  if (auto spoken = run(command(text, voice, file.string())); !spoken) return fault(spoken.error());
  auto sound = readSound(file, kSoundRate);
  if (!sound) return sound;
  trimSilence(*sound);
  setLevel(*sound, voice.level);
  return sound;
}

std::vector<float> roomTone(double seconds, double level, Random& random) {
  std::vector<float> tone(static_cast<std::size_t>(std::lround(seconds * kSoundRate)));
  double low = 0.0;
  for (float& value : tone) {
    low += 0.06 * (random.normal() - low);  // a room swallows the high tones
    value = static_cast<float>(low);
  }
  setLevel(tone, level);
  return tone;
}

std::vector<double> mouthOpening(const std::vector<float>& sound, std::size_t frames) {
  constexpr std::size_t kWindow = kSoundRate / kFramesPerSecond;
  std::vector<double> opening(frames, 0.0);
  double loudest = 1e-9;
  for (std::size_t frame = 0; frame < frames; ++frame) {
    double energy = 0.0;
    const std::size_t end = std::min(sound.size(), (frame + 1) * kWindow);
    for (std::size_t i = frame * kWindow; i < end; ++i)
      energy += static_cast<double>(sound[i]) * sound[i];
    opening[frame] = std::sqrt(energy / kWindow);
    loudest = std::max(loudest, opening[frame]);
  }
  double jaw = 0.0;
  for (double& value : opening) {
    jaw += 0.55 * (std::min(1.0, 1.15 * value / loudest) - jaw);
    value = jaw;
  }
  return opening;
}

}  // namespace corvana::session
