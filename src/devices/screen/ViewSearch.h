#pragma once

#include <string>

#include "platform/uikit/UIView.h"

namespace corvana::devices {

/// The view of that name in the tree below `root`, or null.
platform::UIView* findView(platform::UIView& root, const std::string& name);

/// The view of that name and kind in the tree below `root`, or null.
template <class View>
View* findView(platform::UIView& root, const std::string& name) {
  return dynamic_cast<View*>(findView(root, name));
}

/// Whether the view and all its ancestors are shown, at an alpha that can be seen.
bool isInSight(const platform::UIView& view);

}  // namespace corvana::devices
