#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <tl/expected.hpp>

namespace corvana::client {

/// The arguments of a command for what a request says, or a sentence on what is wrong with it.
/// `positionals` are the keys whose values stand alone, in this order, and have to be there.
/// Nothing in a request can become another option than the one that its key names.
tl::expected<std::vector<std::string>, std::string> argumentsOf(
    std::string_view request, const std::string& command,
    const std::vector<std::string>& positionals = {});

}  // namespace corvana::client
