#pragma once

#include <cstddef>
#include <set>
#include <string>

namespace Kestrona::Tool {

/// Makes names that differ from one another by more than the case of their letters.
class UniqueNames {
public:
    /// `most` is the largest number of UTF-16 units of a name; 0 for no limit.
    explicit UniqueNames(std::size_t most = 0) : most_(most) {}

    /// Returns the name itself, or one that begins like it and ends with a number. Names are UTF-8.
    [[nodiscard]] std::string Add(const std::string& name);

private:
    std::size_t most_;
    std::set<std::wstring> taken_; ///< Folded.
};

} // namespace Kestrona::Tool
