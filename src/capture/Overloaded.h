#pragma once

namespace capture {

/// One function object out of a handler for each kind of state.
template <class... Handlers>
struct Overloaded : Handlers... {
  using Handlers::operator()...;
};

}  // namespace capture
