#include "lint/finding.h"

#include <algorithm>

namespace Kestrona::Tool::Lint {

std::string_view SeverityName(Severity severity) {
    switch (severity) {
    case Severity::Note:
        return "note";
    case Severity::Warning:
        return "warning";
    case Severity::Error:
        break;
    }
    return "error";
}

std::size_t Report::Count(Severity severity) const {
    return static_cast<std::size_t>(std::count_if(
        findings.begin(), findings.end(), [&](const Finding& finding) { return finding.rule->severity == severity; }));
}

} // namespace Kestrona::Tool::Lint
