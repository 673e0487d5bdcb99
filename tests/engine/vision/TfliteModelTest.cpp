#include <gtest/gtest.h>

#include "engine/vision/FaceDetector.h"
#include "engine/vision/Portraits.h"
#include "support/Scratch.h"

namespace corvana::tests {
namespace {

// The library says that it made a delegate once in a process: ctest gives each test one of its own.
TEST(TfliteModel, IsLoadedWithoutAWordFromTheLibrary) {
  testing::internal::CaptureStderr();
  const auto detector = engine::FaceDetector::load(
      fromSource("src/engine/resources/face_detection_short_range.tflite"));
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_TRUE(detector);
}

TEST(TfliteModel, SaysWhatIsWrongWithAFile) {
  const ScratchFolder folder;
  const auto model = fromSource("src/engine/resources/face_landmark.tflite");
  writeBytes(folder / "text.tflite", "This is a letter, not a network, though it is long.");
  writeBytes(folder / "empty.tflite", "");
  writeBytes(folder / "half.tflite", bytesOf(model).substr(0, 600000));

  const std::pair<std::filesystem::path, const char*> cases[] = {
      {folder / "absent.tflite", "is missing"},
      {folder.path(), "is missing"},
      {folder / "empty.tflite", "is not a readable model"},
      {folder / "text.tflite", "is not a readable model"},
      {folder / "half.tflite", "is not a readable model"},
      {model, "is another network"},
  };
  for (const auto& [file, reason] : cases) {
    const auto detector = engine::FaceDetector::load(file);
    ASSERT_FALSE(detector.has_value()) << file;
    const std::string message = detector.error().sentence;
    EXPECT_NE(message.find(reason), std::string::npos) << message;
    EXPECT_NE(message.find(file.string()), std::string::npos) << message;
  }
}

}  // namespace
}  // namespace corvana::tests
