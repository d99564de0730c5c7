#pragma once

namespace Kestrona::Tool {

/// What a colour stands for.
enum class Paint {
    None,
    Error,
    Warning,
    Note,
    Added,
    Removed,
    Changed,
};

} // namespace Kestrona::Tool
