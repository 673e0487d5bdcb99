#include "app/report/ReportFile.h"

#include <cstdio>
#include <string_view>

namespace corvana::app {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kPlain =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~/";

}  // namespace

std::string addressOf(const fs::path& file, const fs::path& page) {
  const fs::path from = fs::absolute(page).lexically_normal().parent_path();
  const std::string path = fs::absolute(file).lexically_normal().lexically_relative(from).string();
  std::string address;
  for (const char letter : path) {
    if (kPlain.find(letter) != std::string_view::npos) {
      address += letter;
    } else {
      char code[4];
      std::snprintf(code, sizeof code, "%%%02X", static_cast<unsigned char>(letter));
      address += code;
    }
  }
  return address;
}

}  // namespace corvana::app
