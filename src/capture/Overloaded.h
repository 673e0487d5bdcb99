#pragma once

namespace corvana::capture {

/// One function object out of a handler for each kind of state.
template <class... Handlers>
struct Overloaded : Handlers... {
  using Handlers::operator()...;
};

// Some compilers of C++20 do not deduce an aggregate's arguments yet.
template <class... Handlers>
Overloaded(Handlers...) -> Overloaded<Handlers...>;

}  // namespace corvana::capture
