#pragma once

#include <kestrona/export.h>

/// \file
/// How this process runs.

namespace Kestrona {

/// Process-wide switches that the host sets before the definition load.
class KS_API ExecutionState {
public:
    /// Returns the one object; made at the first call.
    static ExecutionState& Instance();

    /// True when no user is there to see a message and the module must not end the process.
    [[nodiscard]] bool get_IsRunningHeadless() const { return is_running_headless_; }

    void set_IsRunningHeadless(bool value) { is_running_headless_ = value; }

    /// True when the load writes the translation lists.
    [[nodiscard]] bool get_ExtractTranslations() const { return extract_translations_; }

    void set_ExtractTranslations(bool value) { extract_translations_ = value; }

private:
    bool extract_translations_ = false;
    bool is_running_headless_ = false;
};

} // namespace Kestrona
