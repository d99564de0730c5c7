#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

/// \file
/// The codes of the tool's errors and warnings. A number, once given, never stands for something else.

namespace Kestrona::Tool {

/// One kind of failure that a user would look up, in the order of the numbers.
enum class Code : std::uint8_t {
    // The command line
    UnknownOption,
    MissingArgument,
    BadArgument,
    UnknownFormat,
    UnknownField,
    UnknownDataset,
    RecordsTwice,
    NoRecords,
    SameFile,
    BadNamedValue,
    BadCondition,
    BadOrder,
    BadTarget,
    NoWay,
    WrongForStdout,
    NoTableList,
    UnknownCode,
    // Files
    CannotOpen,
    CannotRead,
    CannotWrite,
    WrongKind,
    WrongVersion,
    Truncated,
    Damaged,
    TooLarge,
    OutputFailed,
    FileInTheWay,
    NeedsDefinition,
    BadAuditLine,
    // Definitions and their translations
    BadDefinition,
    BadTranslation,
    UnusedTranslation,
    // Data
    NoFileForFormat,
    UnknownColumn,
    RepeatedColumn,
    BadCell,
    BadRow,
    BadKey,
    TextTooLong,
    WrongEncoding,
    UnknownReference,
    BadMatrix,
    DanglingReferences,
    NothingWritten,
    OpenQuote,
    RepeatedKeys,
    TooManyRecords,
    // Expressions
    BadExpression,
    // Encryption
    NoKey,
    UnusableKey,
    WrongKey,
    DamagedSecret,
    EncryptedNumber,
    NoPlainText,
    // Export
    NoFileName,
    SheetTooSmall,
    FormNotBuilt,
    NoPrimaryKey,
    TextsCut,
    // Everything else
    Unexpected,
    OutOfMemory,
    Count
};

/// What there is to say of a code. Full sentences of UTF-8; no text is empty.
struct CodeEntry {
    Code code = Code::Unexpected;
    std::int32_t number = 0;
    std::string_view title;
    std::string_view meaning;
    std::string_view cause; ///< The usual one.
    std::string_view hint;  ///< What to do about it.
};

[[nodiscard]] const CodeEntry& EntryOf(Code code);

/// "KES-0104".
[[nodiscard]] std::string CodeName(std::int32_t number);
[[nodiscard]] std::string CodeName(Code code);

/// Returns the number in a name of that form, in small or capital letters; nothing for any other text.
[[nodiscard]] std::optional<std::int32_t> CodeNumber(std::string_view name);

/// A group of codes, whose numbers follow each other.
struct CodeArea {
    std::string_view title;
    std::span<const CodeEntry> entries;
};

[[nodiscard]] std::span<const CodeArea> CodeAreas();

/// A message of the data module that refuses a definition. Its code is its number.
struct MessageEntry {
    std::int32_t number = 0;
    std::string_view hint;
};

/// In the order of their numbers.
[[nodiscard]] std::span<const MessageEntry> MessageEntries();

} // namespace Kestrona::Tool
