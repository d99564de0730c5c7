#include "schema/dictionary.h"

#include "data/field_names.h"
#include "schema/field_description.h"
#include "schema/field_links.h"

#include <kestrona/built_in_tables.h>
#include <kestrona/classes.h>
#include <kestrona/classification_readers.h>
#include <kestrona/unicode.h>

#include <fmt/format.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <set>
#include <string_view>
#include <vector>

namespace Kestrona::Tool {
namespace {

using Data::MemoryResident::IMemoryResidentData;

constexpr std::wstring_view kDefineTable = L"#define_Table";
constexpr std::wstring_view kHelpTable = L"#popup_help_Table";

std::string Utf8(const wchar_t* text) {
    return text == nullptr ? std::string() : ToUtf8(text);
}

// A text in a cell or a line: nothing in it is taken for markup, and it stays on its line.
std::string Escaped(std::string_view text) {
    std::string escaped;
    for (const char c : text) {
        if (std::string_view("\\`*_[]<>|#").find(c) != std::string_view::npos) {
            escaped += '\\';
        }
        escaped += static_cast<unsigned char>(c) < 0x20 ? ' ' : c;
    }
    return escaped;
}

// The anchor that common Markdown renderers give a heading: small letters, digits, and hyphens for blanks.
std::string Anchor(std::string_view heading) {
    std::string anchor;
    for (const char c : heading) {
        if ((c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_' || c == '-' || (c & 0x80) != 0) {
            anchor += c;
        } else if (c >= 'A' && c <= 'Z') {
            anchor += static_cast<char>(c - 'A' + 'a');
        } else if (c == ' ') {
            anchor += '-';
        }
    }
    return anchor;
}

class DictionaryWriter {
public:
    explicit DictionaryWriter(IMemoryResidentData& store) : store_(store) {}

    std::string Write(const std::string& source) {
        text_ = fmt::format("# Data dictionary of {}\n\n", Escaped(std::filesystem::path(source).filename().string()));
        WriteContents();
        FindReferrers();
        for (std::int32_t format = 0; format < store_.GetFormatCount(); ++format) {
            WriteFormat(format);
        }
        WriteTables();
        return std::move(text_);
    }

private:
    [[nodiscard]] std::string Name(std::int32_t format) const { return FormatName(store_, format); }

    [[nodiscard]] std::string FieldName(std::int32_t format, std::int32_t field) const {
        return field < 0 ? std::string() : ToUtf8(store_.GetColumnName(format, field));
    }

    // A link to a format's section.
    [[nodiscard]] std::string Linked(std::int32_t format) const {
        return fmt::format("[{}](#{})", Escaped(Name(format)), Anchor(Name(format)));
    }

    template <typename Formats>
    [[nodiscard]] std::string LinkedAll(const Formats& formats) const {
        std::string text;
        for (const std::int32_t format : formats) {
            text += (text.empty() ? "" : ", ") + Linked(format);
        }
        return text;
    }

    void WriteContents() {
        text_ += "| Format | Name | Fields | Key |\n| --- | --- | ---: | --- |\n";
        for (std::int32_t format = 0; format < store_.GetFormatCount(); ++format) {
            text_ +=
                fmt::format("| {} | {} | {} | {} |\n", Linked(format), Escaped(ToUtf8(store_.GetDbDisplayName(format))),
                            store_.GetDbFields(format), Escaped(FieldName(format, store_.GetDbKey(format))));
        }
    }

    void FindReferrers() {
        referrers_.resize(static_cast<std::size_t>(store_.GetFormatCount()));
        for (std::int32_t format = 0; format < store_.GetFormatCount(); ++format) {
            for (std::int32_t field = 0; field < store_.GetDbFields(format); ++field) {
                for (const FieldLink& link : FieldLinks(store_, format, field)) {
                    if (link.format != format) {
                        referrers_[static_cast<std::size_t>(link.format)].insert(format);
                    }
                }
            }
        }
    }

    void WriteFact(std::string_view what, const std::string& value) {
        if (!value.empty()) {
            text_ += fmt::format("- {}: {}\n", what, value);
        }
    }

    void WriteFormat(std::int32_t format) {
        text_ += fmt::format("\n## {}\n\n", Escaped(Name(format)));
        WriteFact("Name", Escaped(ToUtf8(store_.GetDbDisplayName(format))));
        WriteFact("Key", Escaped(FieldName(format, store_.GetDbKey(format))));
        WriteFact("File extension", Escaped(Utf8(store_.GetDbExtension(format))));
        WriteFact("Part of", Escaped(Utf8(store_.GetAssociatedTable(format))));
        if (store_.GetUserMaxRecords(format) > 0) {
            WriteFact("Most records", std::to_string(store_.GetUserMaxRecords(format)));
        }
        WriteFact("Used by", LinkedAll(referrers_[static_cast<std::size_t>(format)]));
        text_ += "\n| Field | Type | Default | Refers to | Remarks |\n| --- | --- | --- | --- | --- |\n";
        for (std::int32_t field = 0; field < store_.GetDbFields(format); ++field) {
            WriteField(format, field);
        }
    }

    void WriteField(std::int32_t format, std::int32_t field) {
        std::string type = TypeName(store_, format, field);
        if (const std::string length = LengthText(store_, format, field); !length.empty()) {
            type += ", up to " + length + " characters";
        }
        std::string target = ReferenceText(store_, format, field);
        if (const std::string dimensions = DimensionText(store_, format, field); !dimensions.empty()) {
            target += (target.empty() ? "" : "; ") + dimensions;
        }
        text_ +=
            fmt::format("| {} | {} | {} | {} | {} |\n", Escaped(FieldName(format, field)), type,
                        Escaped(DefaultText(store_, format, field)), Escaped(target), Escaped(Remarks(format, field)));
    }

    [[nodiscard]] std::string Remarks(std::int32_t format, std::int32_t field) const {
        const std::wstring text = store_.GetDbClassString(format, field);
        std::string remarks;
        const auto add = [&](const std::string& remark) {
            remarks += (remarks.empty() || remark.empty() ? "" : "; ") + remark;
        };
        add(HelpText(text));
        const std::string shown = ToUtf8(GetDialogFieldName(store_, format, field));
        add(shown == FieldName(format, field) ? "" : "shown as " + shown);
        add(store_.GetDbKey(format) == field ? "key" : "");
        add(store_.ClassDefined(format, field, Classes::kUnique) ? "unique" : "");
        add(store_.ClassDefined(format, field, Classes::kHidden) ? "hidden" : "");
        add(store_.ClassDefined(format, field, Classes::kReadOnly) ? "read-only" : "");
        add(Expression("calculated: ", Parse_EVALUATE(text.c_str())));
        add(Expression("hidden if ", Parse_HIDDEN_IF(text.c_str())));
        add(Values(text));
        add(LinksText(store_, format, field));
        return remarks;
    }

    [[nodiscard]] std::string HelpText(const std::wstring& text) const {
        std::wstring help;
        std::int32_t id = 0;
        if (!ParseHELPTEXT(text.c_str(), &help) && ParseHELPPOPUPID(text.c_str(), &id)) {
            Configuration::HelpPopupTableManager::GetHelpText(store_, id, &help);
        }
        return ToUtf8(help);
    }

    static std::string Expression(const char* prefix, wchar_t* expression) {
        const std::unique_ptr<wchar_t, decltype(&std::free)> owned(expression, &std::free);
        return expression == nullptr ? std::string() : prefix + ToUtf8(expression);
    }

    static std::string Values(const std::wstring& text) {
        std::string values;
        for (const SubstPair& pair : Parse_SUBSTITUTE(text)) {
            values += fmt::format("{}{} = {}", values.empty() ? "" : ", ", pair.Value, ToUtf8(pair.Text));
        }
        return values;
    }

    void WriteTables() {
        for (std::int32_t table = 0; table < kMaxStringTables && store_.GetTableName(table) != nullptr; ++table) {
            const std::wstring_view name = store_.GetTableName(table);
            if (name != kHelpTable && store_.GetTableFields(table) > 0) { // help stands with the fields that show it
                text_ += name == kDefineTable ? std::string("\n## Constants\n\n")
                                              : fmt::format("\n## Table {}\n\n", Escaped(ToUtf8(name)));
                WriteEntries(table);
            }
        }
    }

    void WriteEntries(std::int32_t table) {
        text_ += "| Text | Value |\n| --- | ---: |\n";
        for (std::int32_t i = 0; i < store_.GetTableFields(table); ++i) {
            text_ += fmt::format("| {} | {} |\n", Escaped(Utf8(store_.GetTableText(table, i))),
                                 store_.GetTableValue(table, i));
        }
    }

    IMemoryResidentData& store_;
    std::vector<std::set<std::int32_t>> referrers_; // by format, those whose fields point at it
    std::string text_;
};

} // namespace

std::string DataDictionary(IMemoryResidentData& store, const std::string& source) {
    return DictionaryWriter(store).Write(source);
}

} // namespace Kestrona::Tool
