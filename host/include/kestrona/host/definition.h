#pragma once

#include <kestrona/memory_resident_data.h>
#include <kestrona/types.h>

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// \file
/// The definition language of the default host: source text of a table definition, read into a tree, filled into a
/// store, and printed back. docs/definition-language.md tells the language.

namespace Kestrona::Host {

/// A place in a source file. Lines and columns count from 1, columns in characters.
struct Place {
    std::int32_t file = 0; ///< Index into `Definition::files`.
    std::int32_t line = 1;
    std::int32_t column = 1;
};

enum class Severity : std::uint8_t {
    Warning,
    Error,
};

/// One finding in a source text.
struct Diagnostic {
    Severity severity = Severity::Error;
    std::string file;
    std::int32_t line = 1;
    std::int32_t column = 1;
    std::string text; ///< "what; found X; expected Y", one line of UTF-8.

    /// Returns "FILE:LINE:COL: error: what; found X; expected Y", or the same with "warning".
    [[nodiscard]] std::string ToString() const;
};

/// One word of a classification, as it stands in the classification string.
struct ClassificationWord {
    std::wstring text;
    Place place;
};

/// A field, as its source defines it.
struct FieldDefinition {
    std::wstring name;
    double default_value = 0.0;
    bool has_default = false; ///< The source gives a default. Without one, `default_value` follows from the field.
    std::int16_t dialog_level = 0;
    ReadOnlyType read_only = ReadOnlyType::No;
    std::int32_t max_text_length = 0; ///< UTF-16 units; 0 means no limit.
    std::int32_t dialog = -1;         ///< Number of the dialog of CALL DIALOG, -1 for none.
    std::uint32_t type = 0;           ///< See `TypeBit`.
    std::array<std::uint32_t, kClassWords> classes{};
    std::wstring classification;           ///< The classification string, all words of it.
    std::vector<ClassificationWord> words; ///< Empty where the source gives an exact text.
    Place place;
};

/// A format with its fields, likewise.
struct FormatDefinition {
    std::wstring name;
    std::wstring display_name;
    std::optional<std::wstring> extension;
    std::optional<std::wstring> dataset; ///< Default dataset name.
    std::wstring associated_table;       ///< Name of the parent format; empty for a root format.
    bool eligible_for_common_dataset = false;
    std::int32_t minimum_length = 0;
    std::int32_t maximum_records = 0; ///< 0 means that none is given.
    std::int32_t key = -1;            ///< Index of the key field, -1 when none is given.
    std::wstring key_name;
    std::vector<FieldDefinition> fields;
    Place place;
    Place key_place;
    Place associated_place;
    Place extension_place;
};

/// A named constant.
struct ConstantDefinition {
    std::wstring name;
    double value = 0.0;
    Place place;
};

/// A popup help text.
struct HelpDefinition {
    std::int32_t id = 0;
    std::wstring text;
    Place place;
};

/// A string table.
struct StringTableDefinition {
    /// A text and the number that fields hold for it.
    struct Entry {
        std::wstring text;
        double value = 0.0;
    };

    std::wstring name;
    std::vector<Entry> entries;
    Place place;
};

/// A text and what stands in for it.
struct SubstitutionDefinition {
    std::wstring from;
    std::wstring to;
    Place place;
};

/// A whole definition: its main file and everything that it includes, in reading order.
struct Definition {
    std::vector<std::string> files; ///< Names as they stand in diagnostics; the main file first.
    std::vector<ConstantDefinition> constants;
    std::vector<HelpDefinition> help;
    std::vector<StringTableDefinition> tables;
    std::vector<SubstitutionDefinition> substitutions;
    std::vector<FormatDefinition> formats;
};

/// Gives the bytes of a file, nothing when it cannot be read. Paths are UTF-8 with '/'.
using FileReader = std::function<std::optional<std::string>(const std::string& path)>;

/// Reads a file of the file system; nothing for what is not there, not readable, or no regular file.
[[nodiscard]] std::optional<std::string> ReadDefinitionFile(const std::string& path);

/// How a source is read.
struct ParseOptions {
    /// Look up the formats and fields that classifications name. Without it a wrong name is left to the load, which
    /// stops at the first one.
    bool check_references = true;
};

/// What a source holds, and what is wrong with it. With errors the definition is what could be understood.
struct ParseResult {
    Definition definition;
    /// By file, line and column; at most 100 errors and 100 warnings, each then followed by one that says so.
    std::vector<Diagnostic> diagnostics;
    bool unreadable = false; ///< The main file or an included one could not be read.

    [[nodiscard]] bool HasErrors() const;
};

/// Parses the source text of a definition.
///
/// `file_name` is its name in diagnostics, and names of included files are taken relative to its folder. Never throws
/// for the text's sake: all findings are in the result, and with errors the tree holds what could be understood. Linear
/// in the length of the text.
[[nodiscard]] ParseResult ParseDefinition(std::string_view text, const std::string& file_name,
                                          const FileReader& reader = ReadDefinitionFile,
                                          const ParseOptions& options = {});

/// Parses a definition file. A file that cannot be read is an error at its place 1:1 and sets `unreadable`.
[[nodiscard]] ParseResult ParseDefinitionFile(const std::string& path, const FileReader& reader = ReadDefinitionFile,
                                              const ParseOptions& options = {});

/// Empties the formats of the store and fills it from the definition, ready for `check_database_access`: formats,
/// fields, classes, classification strings, children of associated tables, string tables, help, constants and
/// substitutions. String tables of other names that stand in the store already stay.
///
/// Returns false when the store has no room for all string tables; everything else is filled all the same.
/// Requires: the definition was parsed without errors.
bool FillStore(const Definition& definition, Data::MemoryResident::IMemoryResidentData& store);

/// Prints the definition in a store as source text (UTF-8) that fills a store alike, whether or not the store has been
/// resolved: what resolution adds is left out. Comments and the division into files are gone, constants in defaults are
/// numbers. Requires: names of formats and fields as the language allows them.
[[nodiscard]] std::string PrintDefinition(Data::MemoryResident::IMemoryResidentData& store);

} // namespace Kestrona::Host
