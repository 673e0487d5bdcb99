#include <fstream>

#include <gtest/gtest.h>

#include "engine/vision/FaceDetector.h"
#include "engine/vision/Portraits.h"
#include "engine/vision/TfliteModel.h"

namespace engine {
namespace {

TEST(TfliteModel, SaysWhatIsWrongWithAFile) {
  const auto folder = std::filesystem::path(testing::TempDir());
  std::ofstream(folder / "text.tflite") << "This is a letter, not a network, though it is long.";
  std::ofstream(folder / "empty.tflite");
  std::ifstream whole(tests::fromSource("src/engine/resources/face_landmark.tflite"));
  std::string half(600000, '\0');
  whole.read(half.data(), 600000);
  std::ofstream(folder / "half.tflite") << half;

  const std::pair<std::filesystem::path, const char*> cases[] = {
      {folder / "absent.tflite", "is missing"},
      {folder, "is missing"},
      {folder / "empty.tflite", "is not a readable model"},
      {folder / "text.tflite", "is not a readable model"},
      {folder / "half.tflite", "is not a readable model"},
      {tests::fromSource("src/engine/resources/face_landmark.tflite"), "is another network"},
  };
  for (const auto& [file, reason] : cases) {
    const auto detector = FaceDetector::load(file);
    ASSERT_FALSE(detector.has_value()) << file;
    const std::string message = detector.error().localizedDescription();
    EXPECT_NE(message.find(reason), std::string::npos) << message;
    EXPECT_NE(message.find(file.string()), std::string::npos) << message;
  }
}

}  // namespace
}  // namespace engine
