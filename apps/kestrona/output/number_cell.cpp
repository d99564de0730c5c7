#include "output/number_cell.h"

#include <charconv>
#include <cmath>

namespace Kestrona::Tool {

std::optional<double> NumberOfCell(std::string_view text) {
    double value = 0.0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    const bool is_number = error == std::errc{} && end == text.data() + text.size() && std::isfinite(value);
    return is_number ? std::optional(value) : std::nullopt;
}

} // namespace Kestrona::Tool
