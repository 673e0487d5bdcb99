#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <random>

#include <gtest/gtest.h>
#include <tensorflow/lite/c/c_api.h>

#include "capture/FaceMatchDetector.h"
#include "devices/scripted/ScriptedSystem.h"
#include "support/TestBundle.h"
#include "support/TestImages.h"

// Calls of TensorFlow Lite, written down on their way to it: the linker leads them here.
namespace {
std::vector<const TfLiteInterpreter*> invoked;
std::vector<int> threadCounts;
}  // namespace
// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming): the linker's names
extern "C" {
TfLiteStatus __real_TfLiteInterpreterInvoke(TfLiteInterpreter* interpreter);
TfLiteStatus __wrap_TfLiteInterpreterInvoke(TfLiteInterpreter* interpreter) {
  invoked.push_back(interpreter);
  return __real_TfLiteInterpreterInvoke(interpreter);
}
void __real_TfLiteInterpreterOptionsSetNumThreads(TfLiteInterpreterOptions* options, int count);
void __wrap_TfLiteInterpreterOptionsSetNumThreads(TfLiteInterpreterOptions* options, int count) {
  threadCounts.push_back(count);
  __real_TfLiteInterpreterOptionsSetNumThreads(options, count);
}
}
// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)

namespace corvana::capture {

struct FaceMatchDetectorProbe {
  static auto preprocess(const std::vector<std::uint8_t>& data) {
    return FaceMatchDetector::preprocess(data);
  }
  static float distance(const std::vector<double>& a, const std::vector<double>& b) {
    return FaceMatchDetector::distance(a, b);
  }
  static std::optional<std::vector<double>> embedding(FaceMatchDetector& detector,
                                                      const platform::UIImageRef& image) {
    return detector.embedding(*detector.interpreter1_, *preprocess(*detector.scaled(image)));
  }
};

namespace {

using Probe = FaceMatchDetectorProbe;
namespace fs = std::filesystem;

class FaceMatching : public testing::Test {
 protected:
  static tests::TestBundle bundleOf(const fs::path& folder) {
    return tests::TestBundle(folder, [](auto&, auto&) { return nullptr; });
  }
  /// A detector whose model is the first `bytes` of the file, with `value` at `position`.
  FaceMatchDetector withModel(const fs::path& model, std::size_t bytes = SIZE_MAX,
                              std::streamoff position = 0, std::optional<char> value = {}) {
    const auto* info = testing::UnitTest::GetInstance()->current_test_info();
    const fs::path folder = fs::path(testing::TempDir()) / info->name();
    const fs::path copy = folder / "facenet.tflite";
    fs::create_directories(folder);
    fs::copy_file(model, copy, fs::copy_options::overwrite_existing);
    if (bytes < fs::file_size(model)) fs::resize_file(copy, bytes);
    if (value) std::fstream(copy, std::ios::in | std::ios::out).seekp(position).put(*value);
    return FaceMatchDetector(bundleOf(folder), console);
  }

  devices::CapturingConsole console;
  const fs::path tinyModel = fs::path(TEST_RESOURCES) / "facenet.tflite";
  const platform::UIImageRef face = tests::faceImage(0);
  const platform::UIImageRef other = tests::faceImage(1);
};

TEST_F(FaceMatching, GivesTheOriginalNetworksEmbedding) {
  constexpr int kSide = 160;
  std::vector<std::uint8_t> bytes;
  for (int y = 0; y < kSide; ++y) {
    for (int x = 0; x < kSide; ++x) {
      bytes.push_back(static_cast<std::uint8_t>(x * 255 / 159));
      bytes.push_back(static_cast<std::uint8_t>(y * 255 / 159));
      bytes.push_back(static_cast<std::uint8_t>(x * y / 100 % 256));
    }
  }
  const auto picture = std::make_shared<platform::UIImage>(
      std::make_shared<platform::PixelBuffer>(kSide, kSide, platform::PixelFormat::rgb24, bytes));
  std::ifstream file(GOLDEN_EMBEDDING, std::ios::binary);
  std::array<float, 128> golden{};
  ASSERT_TRUE(file.read(reinterpret_cast<char*>(golden.data()), sizeof golden));

  FaceMatchDetector detector(bundleOf(MODULE_RESOURCES), console);
  const auto embedding = Probe::embedding(detector, picture);
  ASSERT_TRUE(embedding);
  ASSERT_EQ(embedding->size(), golden.size());
  for (std::size_t i = 0; i < golden.size(); ++i)
    EXPECT_NEAR((*embedding)[i], golden[i], 1e-3) << i;
}

TEST_F(FaceMatching, MatchesUpToTheThresholdAndNoFurther) {
  FaceMatchDetector detector(bundleOf(TEST_RESOURCES), console);
  const auto same = detector.faceMatch(face, tests::faceImage(0), 0);
  ASSERT_TRUE(same);
  EXPECT_EQ(same->distance, 0);
  EXPECT_TRUE(same->isMatched);
  const auto different = detector.faceMatch(face, other, 0.44F);
  ASSERT_TRUE(different);
  EXPECT_FALSE(different->isMatched);
  const float distance = different->distance;
  EXPECT_TRUE(detector.faceMatch(face, other, distance)->isMatched);
  EXPECT_FALSE(detector.faceMatch(face, other, std::nextafter(distance, 0.0F))->isMatched);
  EXPECT_FALSE(detector.faceMatch(face, other, std::nanf(""))->isMatched);
  EXPECT_EQ(detector.faceMatch(face, face, 0)->distance, 0) << "a call leaves nothing behind";
  EXPECT_TRUE(detector.faceMatch(tests::flatImage(9, 9, 9), face, 0)) << "flat pictures compare";
}

TEST_F(FaceMatching, RunsEachPictureOnAnInterpreterOfItsOwnOnOneThread) {
  threadCounts.clear();
  invoked.clear();
  FaceMatchDetector detector(bundleOf(TEST_RESOURCES), console);
  EXPECT_EQ(threadCounts, (std::vector{1, 1}));
  for (int i = 0; i < 2; ++i)
    EXPECT_TRUE(detector.faceMatch(face, other, 0));
  ASSERT_EQ(invoked.size(), 4u);
  EXPECT_NE(invoked[0], invoked[1]);
  EXPECT_EQ(invoked[2], invoked[0]);
  EXPECT_EQ(invoked[3], invoked[1]);
}

TEST_F(FaceMatching, IsImpossibleWithoutPixelsAndSaysNothing) {
  FaceMatchDetector detector(bundleOf(TEST_RESOURCES), console);
  const auto drawing = std::make_shared<platform::UIImage>(nullptr, "drawing");
  EXPECT_FALSE(detector.faceMatch(nullptr, face, 2));
  EXPECT_FALSE(detector.faceMatch(face, drawing, 2));
  EXPECT_TRUE(console.lines.empty());
}

TEST_F(FaceMatching, IsImpossibleWithoutAModel) {
  FaceMatchDetector missing(bundleOf(fs::path(TEST_RESOURCES) / "nowhere"), console);
  EXPECT_FALSE(missing.faceMatch(face, face, 2));
  EXPECT_TRUE(console.lines.empty()) << "a missing model is silent";

  for (const std::size_t bytes : {0U, 4U, 1000U}) {
    console.lines.clear();
    FaceMatchDetector broken = withModel(tinyModel, bytes);
    EXPECT_FALSE(broken.faceMatch(face, face, 2));
    ASSERT_EQ(console.lines.size(), 1u) << bytes;
    EXPECT_EQ(console.lines[0],
              "ERROR initializing FaceMatchDetector: "
              "The face model facenet.tflite is not a TensorFlow Lite model.");
  }
}

TEST_F(FaceMatching, ReportsAModelThatTakesAnotherPicture) {
  FaceMatchDetector detector = withModel(OTHER_MODEL);
  EXPECT_TRUE(console.lines.empty());
  EXPECT_FALSE(detector.faceMatch(face, face, 2));
  ASSERT_EQ(console.lines.size(), 1u);
  EXPECT_EQ(console.lines[0],
            "ERROR detecting face match: "
            "The face model's input takes 196608 bytes, but the picture has 307200.");
}

TEST_F(FaceMatching, NamesWhatIsWrongInsideAModel) {
  const struct {
    // In the tiny model: an operator's code, its input, how many inputs and outputs there are.
    std::streamoff position;
    char value;
    std::string line;
  } cases[] = {
      {2956, '\xff',
       "initializing FaceMatchDetector: The face model facenet.tflite needs what this "
       "TensorFlow Lite does not offer."},
      {2236, 1, "initializing FaceMatchDetector: The face model's tensors could not be allocated."},
      {2392, 0, "detecting face match: The face model has no input."},
      {2384, 0, "detecting face match: The face model's output could not be read."},
  };
  testing::internal::CaptureStderr();
  for (const auto& [position, value, line] : cases) {
    console.lines.clear();
    EXPECT_FALSE(withModel(tinyModel, SIZE_MAX, position, value).faceMatch(face, face, 2));
    EXPECT_EQ(console.lines, std::vector<std::string>{"ERROR " + line});
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "") << "the library's own words are kept back";
}

TEST_F(FaceMatching, WhitensEachPictureAsAWhole) {
  EXPECT_EQ(Probe::preprocess({0, 10}), (std::vector<float>{-1, 1}));
  EXPECT_EQ(Probe::preprocess({7, 7, 7, 7}), std::vector<float>(4, 0));
  EXPECT_EQ(Probe::preprocess({0, 0, 0, 1})->at(3), 0.75F / 0.5F) << "the floor is 1 / sqrt(n)";
  EXPECT_FALSE(Probe::preprocess({}));
  // By hand: mean and deviation in 64 bits, the last subtraction and division in 32. Either of
  // these in 64 gives other last digits.
  EXPECT_EQ(Probe::preprocess({15, 11, 13, 4, 195}),
            (std::vector<float>{-0.441774935F, -0.495980442F, -0.468877703F, -0.590840101F,
                                1.99747312F}));
}

TEST_F(FaceMatching, WhitensAPictureOfAnyLengthToTheLastDigit) {
  std::minstd_rand random(1);
  // Around the widths of vectors, and of what narrow sums hold; all but the last byte at its most.
  for (const std::size_t size : {3U, 15U, 16U, 31U, 67U, 32768U, 32769U, 76800U, 100003U}) {
    std::vector<std::uint8_t> bright(size, 255);
    bright.back() = 0;
    std::vector<std::uint8_t> noise(size);
    std::ranges::generate(noise, [&] { return static_cast<std::uint8_t>(random()); });
    for (const auto& bytes : {bright, noise}) {
      double values = 0;
      double squares = 0;
      for (const double byte : bytes) {
        values += byte;
        squares += byte * byte;
      }
      const auto count = static_cast<double>(size);
      const auto mean = static_cast<float>(values / count);
      const auto deviation = static_cast<float>(
          std::max(std::sqrt(count * squares - values * values) / count, 1 / std::sqrt(count)));
      const auto whitened = Probe::preprocess(bytes);
      ASSERT_EQ(whitened->size(), size);
      for (std::size_t i = 0; i < size; ++i)
        ASSERT_EQ((*whitened)[i], (static_cast<float>(bytes[i]) - mean) / deviation) << size;
    }
  }
}

TEST_F(FaceMatching, MeasuresUnitLengthEmbeddings) {
  EXPECT_EQ(Probe::distance({}, {}), 0);
  EXPECT_EQ(Probe::distance({0, 0}, {3, 0}), 1) << "nothing stays nothing";
  EXPECT_EQ(Probe::distance({5, 0}, {-0.5, 0}), 2);
  EXPECT_FLOAT_EQ(Probe::distance({1, 0}, {0, 7}), std::sqrt(2.0F));
  EXPECT_EQ(Probe::distance({1e-6, 0}, {0, 0}), 0.1F) << "too short to be made longer than that";
  // By hand: the lengths in 64 bits, division and distance in 32. Any step in the other width
  // gives another last digit.
  EXPECT_EQ(Probe::distance({7.6, -5.3, 6.2, 8.4}, {-8.9, 2.1, -4.2, -5.7}), 1.97272933F);
}

using Bytes = std::vector<std::uint8_t>;

/// Three bytes for each value, the second its complement.
Bytes pixels(const Bytes& values) {
  Bytes bytes;
  for (const std::uint8_t value : values)
    bytes.insert(bytes.end(), {value, static_cast<std::uint8_t>(255 - value), 7});
  return bytes;
}

TEST(Scaling, MixesTheNearestPixelsAroundTheirCentres) {
  const struct {
    int width, height;
    Bytes from;
    int newWidth, newHeight;
    Bytes to;
  } cases[] = {
      {2, 1, {0, 200}, 4, 1, {0, 50, 150, 200}},
      {4, 1, {0, 100, 40, 240}, 2, 1, {50, 140}},
      {3, 1, {0, 100, 200}, 2, 1, {25, 175}},
      {1, 2, {0, 200}, 1, 4, {0, 50, 150, 200}},
      {2, 2, {0, 80, 160, 240}, 3, 3, {0, 40, 80, 80, 120, 160, 160, 200, 240}},
      {2, 2, {0, 80, 160, 240}, 1, 1, {120}},
      {5, 1, {0, 4, 8, 12, 16}, 3, 1, {1, 8, 15}},  // 1.33, 8, 14.67
  };
  for (const auto& test : cases) {
    const platform::PixelBuffer picture(test.width, test.height, platform::PixelFormat::rgb24,
                                        pixels(test.from));
    EXPECT_EQ(corvana::MetalBilinearScaler().scale(picture, test.newWidth, test.newHeight),
              pixels(test.to))
        << test.width << "x" << test.height;
  }
}

TEST(Scaling, GivesNothingWithoutRgbPixelsOrSize) {
  const corvana::MetalBilinearScaler scaler;
  const auto bytes = [&](const platform::UIImageRef& image, const platform::CGSize& size,
                         bool quantized = true) {
    const auto scaled = corvana::scaledRGBData(image, scaler, size, quantized);
    return scaled ? static_cast<int>(scaled->size()) : -1;
  };
  const auto face = tests::faceImage(0);
  const auto planar = std::make_shared<platform::UIImage>(
      std::make_shared<platform::PixelBuffer>(2, 2, platform::PixelFormat::i420, Bytes(6)));
  EXPECT_EQ(bytes(face, {1, 2}), 6);
  EXPECT_EQ(bytes(face, {2, 1}), 6);
  EXPECT_EQ(bytes(face, {0, 2}), -1);
  EXPECT_EQ(bytes(face, {2, 0}), -1);
  EXPECT_EQ(bytes(face, {1, 2}, false), -1);
  EXPECT_EQ(bytes(planar, {1, 2}), -1);
  EXPECT_EQ(bytes(nullptr, {1, 2}), -1);
  const float values[] = {0.5F, -2};
  const std::span raw(reinterpret_cast<const std::uint8_t*>(values), sizeof values);
  EXPECT_EQ(corvana::cgFloats(raw), (std::vector<double>{0.5, -2}));
  EXPECT_FALSE(corvana::cgFloats(raw.first(7)));
}

}  // namespace
}  // namespace corvana::capture
