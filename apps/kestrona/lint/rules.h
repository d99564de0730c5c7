#pragma once

#include "lint/lint_source.h"

#include <span>
#include <vector>

/// \file
/// The rules of the linter. docs/lint-rules.md shows an example of each.

namespace Kestrona::Tool::Lint {

/// A rule together with the function that applies it; null for the findings of the parser and of the resolution.
struct RuleCheck {
    Rule rule;
    void (*check)(const LintSource&, FindingSink&) = nullptr;
};

/// Every rule, in the order of the documentation. The ids are pairwise different.
[[nodiscard]] std::span<const RuleCheck> AllRules();

/// Errors and warnings of the definition's parser, and the first failure of the resolution.
extern const Rule& kSyntaxRule;
extern const Rule& kDoubtfulRule;
extern const Rule& kResolutionRule;

/// Applies every rule. Linear in the size of the definition, but for logarithms.
void ApplyRules(const LintSource& source, std::vector<Finding>& findings);

// Names and references

void CheckKeyNotUnique(const LintSource& source, FindingSink& sink);
void CheckNonUniqueReference(const LintSource& source, FindingSink& sink);
void CheckIsolatedFormat(const LintSource& source, FindingSink& sink);
void CheckUnusedField(const LintSource& source, FindingSink& sink);
void CheckUnusedTable(const LintSource& source, FindingSink& sink);
void CheckUnknownTable(const LintSource& source, FindingSink& sink);
void CheckUnusedHelp(const LintSource& source, FindingSink& sink);
void CheckUnknownHelp(const LintSource& source, FindingSink& sink);
void CheckKeywordInName(const LintSource& source, FindingSink& sink);

// Words of one field

void CheckRepeatedWord(const LintSource& source, FindingSink& sink);
void CheckShadowedKeyword(const LintSource& source, FindingSink& sink);
void CheckTextWithoutLength(const LintSource& source, FindingSink& sink);
void CheckLengthWithoutEffect(const LintSource& source, FindingSink& sink);
void CheckDefaultWithoutEffect(const LintSource& source, FindingSink& sink);
void CheckFormatWithoutEffect(const LintSource& source, FindingSink& sink);
void CheckMatrixWithoutDefault(const LintSource& source, FindingSink& sink);

// Values and expressions

void CheckSubstituteTwice(const LintSource& source, FindingSink& sink);
void CheckUnknownStringDefault(const LintSource& source, FindingSink& sink);
void CheckLooseComparison(const LintSource& source, FindingSink& sink);

} // namespace Kestrona::Tool::Lint
