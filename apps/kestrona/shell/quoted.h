#pragma once

#include <string>
#include <string_view>

namespace Kestrona::Tool {

/// A text in single quotes for any of the shells; none of the helps has a backslash.
[[nodiscard]] inline std::string Quoted(std::string_view text) {
    std::string quoted = "'";
    for (const char c : text) {
        quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    }
    return quoted + '\'';
}

} // namespace Kestrona::Tool
