#include <algorithm>
#include <cmath>
#include <iostream>
#include <map>
#include <set>
#include <sstream>
#include <utility>

#include <nlohmann/json.hpp>

#include "app/commands/Commands.h"
#include "devices/live/DeviceCatalog.h"
#include "engine/json/JsonText.h"

namespace corvana::app {
namespace {

using devices::DeviceInfo;
using nlohmann::ordered_json;

/// One size of a camera with the fastest rate and all formats.
struct SizeOffer {
  double fastest = 0;
  std::set<std::string> formats;
};

/// From large to small.
using SizeOffers = std::map<std::pair<int, int>, SizeOffer, std::greater<>>;

SizeOffers condensed(const std::vector<devices::OfferedMode>& modes) {
  SizeOffers sizes;
  for (const auto& [mode, format] : modes) {
    SizeOffer& offer = sizes[{mode.width, mode.height}];
    offer.fastest = std::max(offer.fastest, mode.framesPerSecond);
    offer.formats.insert(format);
  }
  return sizes;
}

void printModes(const DeviceInfo& camera) {
  for (const auto& [size, offer] : condensed(camera.modes)) {
    std::ostringstream line;
    line << "      " << size.first << 'x' << size.second << " to "
         << std::round(offer.fastest * 100) / 100 << " a second (";
    const char* comma = "";
    for (const std::string& format : offer.formats)
      line << std::exchange(comma, ", ") << format;
    std::cout << line.str() << ")\n";
  }
}

std::string remarks(const DeviceInfo& device, const DeviceInfo* chosen) {
  std::string text;
  if (&device == chosen) text += ", default";
  if (device.isMonitor) text += ", what the machine plays";
  if (device.isVirtual) text += ", virtual";
  return text;
}

void print(const char* title, const std::vector<DeviceInfo>& devices, const char* without) {
  const DeviceInfo* chosen = devices::defaultDevice(devices);
  std::cout << title << '\n';
  if (!chosen) std::cout << "  " << without << '\n';
  for (const DeviceInfo& device : devices) {
    std::cout << "  " << device.id << "  (" << device.name << remarks(device, chosen) << ")\n";
    printModes(device);
  }
}

ordered_json modesToJson(const DeviceInfo& camera) {
  ordered_json modes = ordered_json::array();
  for (const auto& [mode, format] : camera.modes) {
    modes.push_back({{"width", mode.width},
                     {"height", mode.height},
                     {"framesPerSecond", mode.framesPerSecond},
                     {"format", format}});
  }
  return modes;
}

ordered_json toJson(const std::vector<DeviceInfo>& devices, bool cameras) {
  const DeviceInfo* chosen = devices::defaultDevice(devices);
  ordered_json list = ordered_json::array();
  for (const DeviceInfo& device : devices) {
    ordered_json object{{"id", device.id},
                        {"name", device.name},
                        {"default", &device == chosen},
                        {"virtual", device.isVirtual}};
    if (cameras) {
      object["modes"] = modesToJson(device);
    } else {
      object["monitor"] = device.isMonitor;
    }
    list.push_back(std::move(object));
  }
  return list;
}

void printDevices(bool asJson) {
  const auto cameras = devices::connectedCameras();
  const auto microphones = devices::connectedMicrophones();
  if (asJson) {
    const ordered_json all{{"cameras", toJson(cameras, true)},
                           {"microphones", toJson(microphones, false)}};
    std::cout << engine::indentedJson(all) << std::endl;
    return;
  }
  print("Cameras", cameras,
        "No camera is connected. --camera FILE takes a recorded video in its place.");
  print("Microphones", microphones,
        "No microphone is connected. A live camera's film is then silent, and no word is heard.");
  std::cout << "virtual:FILE plays a recorded video as a live camera. Virtual cameras need "
               "--allow-virtual-camera.\n";
}

}  // namespace

void addDevicesCommand(CLI::App& app, ExitCode& exitCode) {
  CLI::App& command = *app.add_subcommand("devices", "List cameras and microphones for `capture`");
  auto asJson = std::make_shared<bool>(false);
  command.add_flag("--json", *asJson, "as JSON, with every mode");
  command.callback([asJson, &exitCode] {
    printDevices(*asJson);
    exitCode = ExitCode::result;
  });
}

}  // namespace corvana::app
