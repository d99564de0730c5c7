#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// \file
/// What a check of a definition finds.

namespace Kestrona::Tool::Lint {

enum class Severity {
    Note,    ///< Worth a look; nothing works differently for it.
    Warning, ///< Works, but hardly as meant.
    Error    ///< Keeps the definition from being loaded.
};

/// "note", "warning" or "error".
[[nodiscard]] std::string_view SeverityName(Severity severity);

/// One thing that is looked for.
struct Rule {
    std::string_view id;
    Severity severity = Severity::Warning;
    std::string_view title; ///< What is wrong where the rule finds something.
    std::string_view hint;  ///< What to do about it.
};

/// All texts are UTF-8.
struct Finding {
    const Rule* rule = nullptr;
    std::string file;
    std::int32_t line = 0; ///< From 1; 0 when no place is known.
    std::int32_t column = 0;
    std::string format; ///< Names of what the finding is about; may be empty.
    std::string field;
    std::string message;
    std::string code;    ///< What `kestrona explain` tells about; empty for that of the rule.
    std::string excerpt; ///< Lines for people that take the message's place; empty for none.
};

/// Everything that one check found, and how much it looked at.
struct Report {
    std::string definition; ///< Path as it was given.
    std::size_t formats = 0;
    std::size_t fields = 0;
    bool unreadable = false;
    std::vector<Finding> findings; ///< By file, line and column.

    [[nodiscard]] std::size_t Count(Severity severity) const;
};

} // namespace Kestrona::Tool::Lint
