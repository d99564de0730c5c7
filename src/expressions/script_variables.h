#pragma once

#include <kestrona/expression_tree.h>

#include <string>

// Script variables: rows of a table of the host's, found by name in a walk over the rows at each evaluation, since the
// rows may change in between.
namespace Kestrona::Expressions {

// -1.0 without a row, and for a text that is no number.
double ReadScriptNumber(IMemoryResidentData& store, const KSEPVariable& variable);

// Empty without a row.
std::wstring ReadScriptText(IMemoryResidentData& store, const KSEPVariable& variable);

} // namespace Kestrona::Expressions
