// What comparing two faces costs beside the bare network, and preparing a picture for it beside
// copying as many bytes.

#include <cstdint>
#include <cstring>
#include <random>
#include <span>
#include <vector>

#include <benchmark/benchmark.h>

#include "capture/FaceMatchDetector.h"
#include "devices/scripted/ScriptedSystem.h"
#include "inference/Interpreter.h"
#include "support/TestBundle.h"

namespace corvana::capture {

struct FaceMatchDetectorProbe {
  static auto preprocess(std::span<const std::uint8_t> data) {
    return FaceMatchDetector::preprocess(data);
  }
};

namespace {

constexpr int kSide = 160;
constexpr std::size_t kBytes = std::size_t{3} * kSide * kSide;

std::vector<std::uint8_t> noise(std::size_t count, unsigned seed) {
  std::mt19937 random(seed);
  std::vector<std::uint8_t> bytes(count);
  for (std::uint8_t& byte : bytes)
    byte = static_cast<std::uint8_t>(random());
  return bytes;
}

platform::UIImageRef picture(unsigned seed) {
  return std::make_shared<platform::UIImage>(std::make_shared<platform::PixelBuffer>(
      kSide, kSide, platform::PixelFormat::rgb24, noise(kBytes, seed)));
}

void faceMatch(benchmark::State& state) {
  devices::CapturingConsole console;
  FaceMatchDetector detector(
      tests::TestBundle(MODULE_RESOURCES, [](auto&, auto&) { return nullptr; }), console);
  const auto selfie = picture(1);
  const auto card = picture(2);
  for (auto _ : state) {
    const auto result = detector.faceMatch(selfie, card, 0.44F);
    if (!result) return state.SkipWithError("no comparison could be made");
    benchmark::DoNotOptimize(result);
  }
}
BENCHMARK(faceMatch)->Unit(benchmark::kMillisecond);

void twoBarePasses(benchmark::State& state) {
  auto network = inference::Interpreter::load(MODULE_RESOURCES "/facenet.tflite", 1,
                                              inference::Runtime::plain);
  if (!network || !network->allocateTensors()) return state.SkipWithError("no network");
  for (auto _ : state) {
    if (!network->invoke() || !network->invoke()) return state.SkipWithError("no pass");
  }
}
BENCHMARK(twoBarePasses)->Unit(benchmark::kMillisecond);

void preprocess(benchmark::State& state) {
  const auto bytes = noise(kBytes, 3);
  for (auto _ : state)
    benchmark::DoNotOptimize(FaceMatchDetectorProbe::preprocess(bytes));
}
BENCHMARK(preprocess)->Unit(benchmark::kMicrosecond);

void copyOfItsOutput(benchmark::State& state) {
  const std::vector<float> output(kBytes, 0.5F);
  for (auto _ : state) {
    std::vector<float> copy(output);
    benchmark::DoNotOptimize(copy.data());
    benchmark::ClobberMemory();
  }
}
BENCHMARK(copyOfItsOutput)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace corvana::capture
