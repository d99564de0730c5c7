#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// \file
/// Shows where an expression fails.

namespace Kestrona::Host {

/// Tells of a failed parse: the message, and where the place is known the expression in one line and a caret below it.
/// Of a long expression only the surroundings of the place are shown; control characters are shown as escapes. Lines
/// after the first begin with `indent`; no line end follows. `message` and `position` are those of an
/// `ExpressionErrorInfo`.
[[nodiscard]] std::string ExplainFailure(std::wstring_view message, std::wstring_view expression, std::int64_t position,
                                         std::string_view indent);

/// Returns the text of a box about a failed parse with a caret under the place that it names, likewise; the lines of a
/// text without a place stay as they are.
[[nodiscard]] std::string ExplainParseBox(std::wstring_view text, std::string_view indent);

} // namespace Kestrona::Host
