#pragma once

#include <kestrona/export.h>

#include <compare>
#include <cstdint>
#include <utility>

/// \file
/// The small value types that every other header speaks of.
///
/// Formats (tables), fields (columns) and records (rows) are plain `std::int32_t` numbers; -1 means none. Every cell
/// crosses the interface as a `double`.

namespace Kestrona {

/// Number of `formats_info` entries of a store.
inline constexpr std::int32_t kMaxFormats = 1000;
/// Class words of a field.
inline constexpr std::int32_t kClassWords = 12;
/// Data slots of a field.
inline constexpr std::int32_t kDataSlots = 20;
/// String substitutions that a store holds at most.
inline constexpr std::int32_t kMaxStringSubstitutions = 10000;
/// String tables of a store.
inline constexpr std::int32_t kMaxStringTables = 1000;
/// Entries that a string table holds at most.
inline constexpr std::int32_t kMaxStringTableEntries = 10000;
/// Characters of a current dataset name, without the terminator.
inline constexpr std::int32_t kMaxDatasetName = 511;

/// First of the four scratch records. Numbers from here up are no rows of a format.
inline constexpr std::int32_t kFirstScratchRecord = 999900000;
/// Last of the four scratch records.
inline constexpr std::int32_t kLastScratchRecord = 999900003;
/// Number of scratch cells of each column.
inline constexpr std::int32_t kScratchRecords = 4;

/// Dialog level that hides a field's dialog (0x8000 as a signed 16-bit number).
inline constexpr std::int16_t kHiddenDialogLevel = -32768;

/// One class: bits of one of a field's class words. A class is defined on a field when all bits of `mask` are set in
/// the field's class word `word`.
struct Class {
    std::int16_t word = 0;  ///< Index of the class word, 0 to 11.
    std::uint32_t mask = 0; ///< The bits.

    friend constexpr bool operator==(const Class&, const Class&) = default;
};

/// A field of a format; -1 and -1 mean not found.
struct TableColumn {
    std::int32_t format = -1;
    std::int32_t field = -1;

    friend constexpr bool operator==(const TableColumn&, const TableColumn&) = default;
};

/// A field's read-only byte. The module stores it and gives it back; beyond `No` its values are the host's.
enum class ReadOnlyType : std::uint8_t {
    No = 0
};

/// The host program that loaded the module. Only `Sequencer` has a meaning here; other values are the host's.
enum class KestronaModule : std::int32_t {
    None = 0,
    Sequencer = 2
};

/// Cached result of a field's hidden test, kept for the host's dialogs.
struct FieldHiddenInfo {
    bool known = false;
    bool hidden = false;
};

/// A version of two numbers, ordered by `major` first.
struct Version {
    std::int32_t major = 0;
    std::int32_t minor = 0;

    friend constexpr auto operator<=>(const Version&, const Version&) = default; // NOLINT(*-use-nullptr): misread
};

/// A value that may be absent.
template <typename T>
class NullValue {
public:
    NullValue() = default;

    NullValue(T value) : value_(std::move(value)), has_value_(true) {}

    [[nodiscard]] bool HasValue() const { return has_value_; }

    /// Returns the value. Throws the wide text "No value present" (`const wchar_t*`) when there is none.
    [[nodiscard]] const T& get_Value() const {
        if (!has_value_) {
            throw static_cast<const wchar_t*>(L"No value present");
        }
        return value_;
    }

    void Reset() {
        value_ = T{};
        has_value_ = false;
    }

private:
    T value_{};
    bool has_value_ = false;
};

} // namespace Kestrona

/// The scratch record that row shuffling uses and that list and search routines work in: 999900000.
KS_API std::int32_t KSDLL_GetScratchRecord();
/// The scratch record for the module's own temporary values: 999900002.
KS_API std::int32_t KSDLL_GetInternalTempRecord();
/// The scratch record for the host's temporary values: 999900003.
KS_API std::int32_t KSDLL_GetUserTempRecord();
