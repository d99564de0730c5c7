#pragma once

#include <kestrona/export.h>
#include <kestrona/memory_resident_data.h>

#include <cstdint>
#include <string>

/// \file
/// String tables that the module keeps itself: named constants and popup help texts.

namespace Kestrona::Configuration {

/// Finds and makes string tables by name. Tables fill their slots from 0 upward; the first slot without a name ends
/// them. Names compare exactly.
///
/// The first use in a process empties the tables of a store that has none by then. Tables live as long as their store.
class KS_API BuiltInTableManager {
public:
    /// Returns the number of the table with this name, made when there is none; -1 when all slots are taken.
    static std::int32_t FindOrCreateStringTable(Data::MemoryResident::IMemoryResidentData& store, const wchar_t* name);

    /// Enters a named constant into the table "#define_Table". A text that the table holds already, without regard to
    /// case, keeps its value. A full table stays as it is. Linear in the number of constants.
    static void AddDefineItem(Data::MemoryResident::IMemoryResidentData& store, const wchar_t* text, double value);

    /// Looks for a table without making one. Returns false, and leaves `number` unchanged, when there is none.
    static bool FindBuiltInTable(Data::MemoryResident::IMemoryResidentData& store, const wchar_t* name,
                                 std::int32_t* number);

private:
    static void Initialise(Data::MemoryResident::IMemoryResidentData& store);
};

/// The table of popup help texts, "#popup_help_Table": an entry's value is its help number.
class KS_API HelpPopupTableManager {
public:
    /// Returns the number of the table, made when there is none; -1 when no slot is free.
    static std::int32_t FindOrCreate(Data::MemoryResident::IMemoryResidentData& store);

    /// Gives the first text with this number. Returns false, and leaves `text` unchanged, when there is none; makes no
    /// table.
    static bool GetHelpText(Data::MemoryResident::IMemoryResidentData& store, std::int32_t id, std::wstring* text);
};

} // namespace Kestrona::Configuration

/// Returns the default text of a free format field, the one in quotes behind FF_STRING_DEF in its classification
/// string; "" for none.
[[nodiscard]] KS_API std::wstring
KSDLL_GetDefaultFreeFormatStringValue(Kestrona::Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                                      std::int32_t field);
