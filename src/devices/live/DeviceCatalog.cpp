#include "devices/live/DeviceCatalog.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <functional>
#include <optional>
#include <utility>

#include "devices/live/DeviceModes.h"
#include "devices/live/InjectionJudge.h"

namespace corvana::devices {
namespace {

namespace fs = std::filesystem;

/// Parts of the names that virtual drivers give themselves or their bus.
const char* const kMadeBySoftware[] = {"loopback", "vivid", "vimc",    "akvcam",  "vim2m",
                                       "vicodec",  "visl",  "virtual", "obs",     "dummy",
                                       "vhci",     "vudc",  "scrcpy",  "droidcam"};
/// How buses begin that end in a socket, a slot or a chip. Windows of the kernel into nothing have
/// no bus or one of another name.
const char* const kHardwareBuses[] = {"usb-", "PCI:", "PCIe:", "platform:", "I2C:", "ISA:"};

std::string lowerCase(std::string text) {
  std::ranges::transform(text, text.begin(), [](unsigned char c) { return std::tolower(c); });
  return text;
}

DeviceInfo madeHere(std::string id, std::string name, std::string element) {
  DeviceInfo info;
  info.id = std::move(id);
  info.name = std::move(name);
  info.isVirtual = true;
  info.element = std::move(element) + " name=source is-live=true";
  return info;
}

std::string text(const GstStructure* properties, const char* key) {
  const gchar* value = properties ? gst_structure_get_string(properties, key) : nullptr;
  return value ? value : "";
}

/// Asks one kind of system service for its devices. The services by name and not all there are:
/// one that brings the same devices a second time would hide the first.
void eachDevice(
    const char* provider,
    const std::function<void(GstDevice* device, const GstStructure* properties)>& call) {
  initGStreamer();
  const GstPtr<GstDeviceProvider> found(gst_device_provider_factory_get_by_name(provider));
  if (!found) return;
  GList* devices = gst_device_provider_get_devices(found.get());
  for (GList* node = devices; node; node = node->next) {
    const GstPtr<GstStructure> properties(gst_device_get_properties(GST_DEVICE(node->data)));
    call(GST_DEVICE(node->data), properties.get());
  }
  g_list_free_full(devices, gst_object_unref);
}

std::string displayName(GstDevice* device) {
  const GstPtr<gchar> name(gst_device_get_display_name(device));
  return name.get();
}

/// What the source element of that device would open.
std::string addressOf(GstDevice* device) {
  GstElement* element = gst_device_create_element(device, nullptr);
  if (!element) return {};
  const GstPtr<GstElement> owned(GST_ELEMENT(gst_object_ref_sink(element)));
  gchar* address = nullptr;
  g_object_get(element, "device", &address, nullptr);
  const GstPtr<gchar> ownedAddress(address);
  return address ? address : "";
}

/// The name of a link in that folder which leads to the device.
std::optional<std::string> linkTo(const fs::path& device, const fs::path& folder) {
  std::error_code error;
  for (const auto& link : fs::directory_iterator(folder, error)) {
    if (fs::equivalent(link.path(), device, error)) return link.path().filename().string();
  }
  return {};
}

/// By maker and serial number, else by the socket it is plugged into, else by its present number.
std::string stableId(const std::string& device, const std::string& bus) {
  if (const auto link = linkTo(device, "/dev/v4l/by-id")) return *link;
  if (const auto link = linkTo(device, "/dev/v4l/by-path")) return *link;
  return bus.empty() ? device : bus;
}

void addMicrophones(std::vector<DeviceInfo>& devices, const char* provider, const char* element,
                    const std::string& prefix) {
  eachDevice(provider, [&](GstDevice* device, const GstStructure* properties) {
    if (!gst_device_has_classes(device, "Audio/Source")) return;
    DeviceInfo info;
    info.device = addressOf(device);
    info.id = prefix + info.device;
    info.name = displayName(device);
    info.isMonitor = text(properties, "device.class") == "monitor";
    info.isVirtual = info.isMonitor;
    gboolean isDefault = FALSE;
    if (properties) gst_structure_get_boolean(properties, "is-default", &isDefault);
    info.isDefault = isDefault != FALSE;
    info.element = std::string(element) + " name=source provide-clock=false";
    devices.push_back(std::move(info));
  });
}

std::function<void(GstElement*)> opening(const std::string& device) {
  if (device.empty()) return nullptr;
  return [device](GstElement* source) { g_object_set(source, "device", device.c_str(), nullptr); };
}

}  // namespace

bool isVirtualCamera(const std::string& driver, const std::string& bus) {
  const std::string names = lowerCase(driver + ' ' + bus);
  const bool named = std::ranges::any_of(
      kMadeBySoftware, [&](const char* part) { return names.find(part) != std::string::npos; });
  const bool hasHardwareBus = std::ranges::any_of(
      kHardwareBuses, [&](const char* start) { return bus.starts_with(start); });
  return named || !hasHardwareBus;
}

std::vector<DeviceInfo> connectedCameras() {
  std::vector<DeviceInfo> devices;
  eachDevice("v4l2deviceprovider", [&](GstDevice* device, const GstStructure* properties) {
    if (!gst_device_has_classes(device, "Video/Source")) return;
    const std::string bus = text(properties, "v4l2.device.bus_info");
    DeviceInfo info;
    info.device = text(properties, "device.path");
    info.id = stableId(info.device, bus);
    info.name = displayName(device);
    info.claimsUsb = claimsUsb(info.device, bus);
    info.isVirtual = info.claimsUsb || isVirtualCamera(text(properties, "v4l2.device.driver"), bus);
    info.element = "v4l2src name=source";
    const GstPtr<GstCaps> caps(gst_device_get_caps(device));
    info.modes = modesOf(caps.get());
    devices.push_back(std::move(info));
  });
  devices.push_back(madeHere("virtual:pattern", "Moving test pattern",
                             "videotestsrc pattern=smpte horizontal-speed=4"));
  return devices;
}

std::vector<DeviceInfo> connectedMicrophones() {
  std::vector<DeviceInfo> devices;
  addMicrophones(devices, "pulsedeviceprovider", "pulsesrc", "pulse:");
  addMicrophones(devices, "alsadeviceprovider", "alsasrc", "alsa:");
  devices.push_back(madeHere("virtual:tone", "Test tone", "audiotestsrc freq=440 volume=0.2"));
  devices.push_back(madeHere("virtual:silence", "Silence", "audiotestsrc wave=silence"));
  return devices;
}

const DeviceInfo* findDevice(const std::vector<DeviceInfo>& devices, const std::string& id) {
  const auto found = std::ranges::find_if(devices, [&](const DeviceInfo& info) {
    return info.id == id || (!info.device.empty() && info.device == id);
  });
  return found == devices.end() ? nullptr : &*found;
}

const DeviceInfo* defaultDevice(const std::vector<DeviceInfo>& devices) {
  const DeviceInfo* first = nullptr;
  for (const DeviceInfo& info : devices) {
    if (info.isVirtual || info.isMonitor) continue;
    if (info.isDefault) return &info;
    if (!first) first = &info;
  }
  return first;
}

LiveSource cameraSource(const DeviceInfo& camera, const CameraMode& wanted) {
  const OfferedMode any{wanted, ""};
  const OfferedMode* mode = nearestMode(camera.modes, wanted);
  return {camera.name,
          camera.isVirtual,
          camera.element + " ! " + lineOf(mode ? *mode : any),
          opening(camera.device),
          nullptr,
          camera.claimsUsb};
}

LiveSource microphoneSource(const DeviceInfo& microphone) {
  return {microphone.name, microphone.isVirtual, microphone.element, opening(microphone.device),
          nullptr};
}

}  // namespace corvana::devices
