#pragma once

#include "lint/finding.h"

#include <map>
#include <string>

/// \file
/// Writes what a check found.

namespace Kestrona::Tool::Lint {

enum class ReportForm {
    Text,
    Json,
    Sarif
};

/// The names of the forms on the command line.
[[nodiscard]] const std::map<std::string, ReportForm>& ReportFormNames();

/// "FILE:LINE:COLUMN: warning: what [rule]" and below it "  hint: what to do".
[[nodiscard]] std::string FindingText(const Finding& finding);

/// The texts of all findings and a line of counts.
[[nodiscard]] std::string TextReport(const Report& report);

/// One object with the counts and an array of findings. Its member "version" is 1.
[[nodiscard]] std::string JsonReport(const Report& report);

/// A log of SARIF 2.1.0 with one run. Paths become URIs: relative ones stay relative.
[[nodiscard]] std::string SarifReport(const Report& report);

} // namespace Kestrona::Tool::Lint
