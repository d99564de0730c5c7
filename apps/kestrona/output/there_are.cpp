#include "output/there_are.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cstddef>
#include <span>

namespace Kestrona::Tool {
namespace {

/// Names that are listed; the others are counted.
constexpr std::size_t kMostListed = 50;

} // namespace

Hint ThereAre(const std::vector<std::string>& names) {
    const std::size_t listed = std::min(names.size(), kMostListed);
    std::string text = fmt::format("There are {}", fmt::join(std::span(names).first(listed), ", "));
    if (listed < names.size()) {
        text += fmt::format(" and {} more", names.size() - listed);
    }
    return {names.empty() ? std::string() : text + '.'};
}

} // namespace Kestrona::Tool
