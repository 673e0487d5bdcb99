#pragma once

/// Notifications of the host, posted on the main queue while `VideoCapture::options.isDebugMode`;
/// `idCaptureMode` at any time.
namespace corvana {

/// "faceRect" CGRect and "fullSize" CGSize in pixels of the camera picture; "faceLivenessScore",
/// "leftEyeOpenProbability", "rightEyeOpenProbability", "faceMaskProbability" float;
/// "sign.NAME" float, the figure of each sign of life or fraud by its name.
inline constexpr const char* kSelfieCaptureDebugData = "selfieCaptureDebugData";
/// "debugData" DebugData.
inline constexpr const char* kIDCaptureDebugData = "idCaptureDebugData";
/// "captureMode" CaptureMode: the host asks for another picture.
inline constexpr const char* kIDCaptureMode = "idCaptureMode";

}  // namespace corvana
