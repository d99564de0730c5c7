#pragma once

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <map>
#include <string>

namespace Kestrona::Tool {

/// What stands between the names in the description of a validator that `OneOf` made.
inline constexpr char kChoiceSeparator = '|';

/// Has an option take one of these names, in small or capital letters. The validator's description holds the names.
template <class Value>
[[nodiscard]] CLI::Validator OneOf(const std::map<std::string, Value>& names) {
    std::string all;
    std::string listed;
    for (const auto& [name, value] : names) {
        all += (all.empty() ? "" : std::string(1, kChoiceSeparator)) + name;
        listed += (listed.empty() ? "" : ", ") + name;
    }
    const auto choose = [names, listed](std::string& text) {
        const auto found = names.find(CLI::detail::to_lower(text));
        if (found == names.end()) {
            return fmt::format("'{}' is none of {}", text, listed);
        }
        // The option's own conversion reads an enumerator from its number.
        text = std::to_string(static_cast<int>(found->second));
        return std::string();
    };
    return CLI::Validator(choose, all, "choice");
}

} // namespace Kestrona::Tool
