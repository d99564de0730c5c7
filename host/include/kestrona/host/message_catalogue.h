#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// \file
/// The English texts of the numbered messages.
///
/// A text is a format string: its placeholders are either all plain ("%s", in the order of the arguments) or all
/// numbered ("%1%"). Some texts are pieces that the data module joins to one format string; pieces of one join never
/// mix the two kinds. docs/default-host.md lists the arguments of every number.

namespace Kestrona::Host {

/// Number of the signed-in user's name.
inline constexpr std::int32_t kUserNameMessage = 19047;

/// Returns the text of a number, "" for a number without one. `kUserNameMessage` gives the user that the process runs
/// for.
[[nodiscard]] std::wstring MessageText(std::int32_t number);

/// Returns the numbers that have a text, table by table.
[[nodiscard]] std::vector<std::int32_t> MessageNumbers();

} // namespace Kestrona::Host
