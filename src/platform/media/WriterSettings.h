#pragma once

#include <any>
#include <map>
#include <string>

namespace corvana::platform {

using AVFileType = std::string;
using AVVideoCodecType = std::string;

inline constexpr const char* kAVFileTypeMP4 = "public.mpeg-4";
inline constexpr const char* kAVVideoCodecTypeHEVC = "hvc1";
inline constexpr const char* kAVVideoCodecTypeH264 = "avc1";

/// Output settings of a writer's track: the keys below, any values.
using WriterSettings = std::map<std::string, std::any>;

inline constexpr const char* kAVVideoCodecKey = "AVVideoCodecKey";  ///< std::string
/// int, pixels, even. Pictures of another size are scaled into the film's, with black borders.
inline constexpr const char* kAVVideoWidthKey = "AVVideoWidthKey";
inline constexpr const char* kAVVideoHeightKey = "AVVideoHeightKey";
/// WriterSettings with the next three keys.
inline constexpr const char* kAVVideoCompressionPropertiesKey = "AVVideoCompressionPropertiesKey";
inline constexpr const char* kAVVideoAverageBitRateKey = "AverageBitRate";  ///< int, bit/s
inline constexpr const char* kAVVideoMaxKeyFrameIntervalKey = "MaxKeyFrameInterval";  ///< int
inline constexpr const char* kAVVideoProfileLevelKey = "ProfileLevel";  ///< std::string, below
inline constexpr const char* kAVVideoProfileLevelH264BaselineAutoLevel = "H264_Baseline_AutoLevel";
inline constexpr const char* kAVVideoProfileLevelH264MainAutoLevel = "H264_Main_AutoLevel";
inline constexpr const char* kAVVideoProfileLevelH264HighAutoLevel = "H264_High_AutoLevel";
inline constexpr const char* kAVVideoProfileLevelHEVCMainAutoLevel = "HEVC_Main_AutoLevel";

inline constexpr const char* kAVFormatIDKey = "AVFormatIDKey";      ///< std::string, "aac "
inline constexpr const char* kAVSampleRateKey = "AVSampleRateKey";  ///< int, Hz
inline constexpr const char* kAVNumberOfChannelsKey = "AVNumberOfChannelsKey";  ///< int
inline constexpr const char* kAVEncoderBitRateKey = "AVEncoderBitRateKey";      ///< int, bit/s

}  // namespace corvana::platform
