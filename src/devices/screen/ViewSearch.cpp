#include "devices/screen/ViewSearch.h"

namespace corvana::devices {
namespace {

constexpr double kLowestVisibleAlpha = 0.01;

}  // namespace

platform::UIView* findView(platform::UIView& root, const std::string& name) {
  if (root.name() == name) return &root;
  for (const auto& view : root.subviews()) {
    if (platform::UIView* found = findView(*view, name)) return found;
  }
  return nullptr;
}

bool isInSight(const platform::UIView& view) {
  for (const platform::UIView* v = &view; v; v = v->superview()) {
    if (v->isHidden() || v->alpha() < kLowestVisibleAlpha) return false;
  }
  return true;
}

}  // namespace corvana::devices
