#include "devices/gstreamer/LiveFault.h"

#include "devices/gstreamer/GstSupport.h"

namespace devices {
namespace {

enum class Trouble { busy, forbidden, missing, other };

Trouble troubleOf(const GError& error, const std::string& details) {
  const auto tells = [&](const char* words) { return details.find(words) != std::string::npos; };
  if (error.domain != GST_RESOURCE_ERROR) return Trouble::other;
  if (error.code == GST_RESOURCE_ERROR_BUSY || tells("resource busy")) return Trouble::busy;
  if (error.code == GST_RESOURCE_ERROR_NOT_AUTHORIZED || tells("Permission denied") ||
      tells("Access denied")) {
    return Trouble::forbidden;
  }
  const bool missing = error.code == GST_RESOURCE_ERROR_NOT_FOUND || tells("No such file") ||
                       tells("No such device") || tells("No such entity");
  return missing ? Trouble::missing : Trouble::other;
}

}  // namespace

std::string liveFault(const std::string& kind, const std::string& name, const GError& error,
                      const std::string& details) {
  const std::string device = "The " + kind + " \"" + name + "\" ";
  switch (troubleOf(error, details)) {
    case Trouble::busy:
      return device + "is used by another program: close that program, or choose another " + kind +
             ".";
    case Trouble::forbidden:
      return device + "may not be opened by this user: add the user to the group " +
             (kind == "camera" ? "video" : "audio") + " and log in again.";
    case Trouble::missing:
      return device + "is not there any more: connect it, or choose another " + kind + ".";
    case Trouble::other:
      break;
  }
  return device + "failed (" + describe(error) + "): connect it again, or choose another " + kind +
         ".";
}

}  // namespace devices
