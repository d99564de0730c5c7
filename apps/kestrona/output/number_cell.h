#pragma once

#include <optional>
#include <string_view>

namespace Kestrona::Tool {

/// Returns the number that is the whole of the text; nothing for other texts and for numbers that are not finite.
[[nodiscard]] std::optional<double> NumberOfCell(std::string_view text);

} // namespace Kestrona::Tool
