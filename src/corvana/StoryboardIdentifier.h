#pragma once

#include <string>

namespace corvana {

/// The identifier under which a controller class is stored in a storyboard: the name of the class,
/// which each class gives as `kClassName`.
template <class Controller>
std::string storyboardIdentifier() {
  return Controller::kClassName;
}

}  // namespace corvana
