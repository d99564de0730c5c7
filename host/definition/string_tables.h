#pragma once

#include <array>
#include <string_view>

// The string tables that the data module itself knows by name.

namespace Kestrona::Host::Language {

inline constexpr std::wstring_view kConstantTable = L"#define_Table";
inline constexpr std::wstring_view kHelpTable = L"#popup_help_Table";
inline constexpr std::array kReservedTables{kConstantTable, kHelpTable};

} // namespace Kestrona::Host::Language
