#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "engine/document/text/NetworkTextReader.h"

namespace corvana::app {

/// Where the program's resources lie.
struct Resources {
  std::filesystem::path module;  ///< of the capture module: facenet.tflite, drawings
  std::filesystem::path engine;  ///< of the reference host: models, kinds of documents

  std::filesystem::path storyboards;  ///< QML modules of the window
  std::filesystem::path report;       ///< page, style, script and words of `videoid report`

  std::filesystem::path faceModel() const { return module / "facenet.tflite"; }
  std::filesystem::path faceDetector() const {
    return engine / "face_detection_short_range.tflite";
  }
  std::filesystem::path faceLandmarks() const { return engine / "face_landmark.tflite"; }
  engine::NetworkTextReader::Models textReader() const {
    return engine::NetworkTextReader::Models::inFolder(engine);
  }
  std::filesystem::path documents() const { return engine / "documents"; }
  std::vector<std::filesystem::path> models() const {
    std::vector<std::filesystem::path> files{faceModel(), faceDetector(), faceLandmarks()};
    const auto text = textReader().files();
    files.insert(files.end(), text.begin(), text.end());
    return files;
  }
};

/// The folder named by the environment variable CORVANA_RESOURCES if it is set, else the installed
/// one beside the program, else the source tree that the program was built from.
Resources findResources();

}  // namespace corvana::app
