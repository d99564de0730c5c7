#pragma once

#include <string>
#include <string_view>

/// \file
/// What the data module and the host say, in the form of the tool's own messages.

namespace Kestrona::Tool {

/// The code of a message and what to do about it.
struct MessageCode {
    std::string name;
    std::string_view hint;
};

/// Finds the numbered message that the text (UTF-8, with its caption and ": " before it, if it has one) was made from,
/// or the failure that it tells of.
[[nodiscard]] MessageCode CodeOfMessage(std::string_view text);

/// Prints lines of the default host's messages; gives errors and warnings their codes and hints.
void TellHostLines(std::string_view lines);

/// The text of a numbered message in one line, "..." in place of what is filled in.
[[nodiscard]] std::string MessageTitle(std::int32_t number);

} // namespace Kestrona::Tool
