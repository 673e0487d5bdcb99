#pragma once

#include <string>
#include <vector>

#include "devices/live/CameraMode.h"
#include "devices/live/LiveSource.h"

namespace corvana::devices {

/// A camera or a microphone that is connected now, or one that this program makes itself.
struct DeviceInfo {
  /// Names the device also after it was plugged in again, as far as the system can tell it apart.
  std::string id;
  std::string name;
  bool isVirtual = false;
  bool claimsUsb = false;  ///< and is not plugged in anywhere
  /// Whether it gives what the machine plays, instead of a microphone's sound.
  bool isMonitor = false;
  bool isDefault = false;  ///< the system's own choice
  std::string element;     ///< launch line of the source
  std::string device;      ///< what the source is to open, such as /dev/video0; may be empty
  std::vector<OfferedMode> modes;  ///< what a camera offers; empty: anything
};

/// The devices in the system's order, those made by this program last. May take a second.
std::vector<DeviceInfo> connectedCameras();
std::vector<DeviceInfo> connectedMicrophones();

/// The device of that id, or that opens that path; null when there is none.
const DeviceInfo* findDevice(const std::vector<DeviceInfo>& devices, const std::string& id);
/// The device meant by someone who names none; null when there is no hardware.
const DeviceInfo* defaultDevice(const std::vector<DeviceInfo>& devices);

/// Whether a video device is made by software, as far as its driver and its bus tell: a loopback, a
/// driver's test picture, a camera plugged into a bus that is itself simulated. Who rules the
/// machine can rename all that, so `false` is a hint and no proof.
bool isVirtualCamera(const std::string& driver, const std::string& bus);

/// The camera in the mode nearest to the wanted one.
LiveSource cameraSource(const DeviceInfo& camera, const CameraMode& wanted);
LiveSource microphoneSource(const DeviceInfo& microphone);

}  // namespace corvana::devices
