#include "definition/field_types.h"
#include "definition/print_field.h"
#include "definition/print_tables.h"
#include "definition/print_text.h"

#include <kestrona/host/definition.h>

#include <cstdint>
#include <string_view>

namespace Kestrona::Host {

namespace {

using Data::MemoryResident::IMemoryResidentData;
using Language::PrintName;
using Language::PrintText;

class DefinitionPrinter {
public:
    explicit DefinitionPrinter(IMemoryResidentData& store) : store_(store) {}

    std::string Print() {
        text_ = Language::PrintTables(store_);
        PrintSubstitutions();
        for (std::int32_t format = 0; format < store_.GetFormatCount(); ++format) {
            if (store_.GetDbName(format) != nullptr) {
                PrintFormat(format);
            }
        }
        return std::move(text_);
    }

private:
    void PrintSubstitutions() {
        wchar_t* from = nullptr;
        wchar_t* to = nullptr;
        for (std::int32_t i = 0; i < kMaxStringSubstitutions; ++i) {
            store_.GetStringSubstitution(i, &from, &to);
            if (from == nullptr || to == nullptr) {
                break;
            }
            text_ += "substitute " + PrintText(from) + " -> " + PrintText(to) + "\n";
        }
        EndParagraph();
    }

    // A blank line, unless one is there already.
    void EndParagraph() {
        if (!text_.empty() && !text_.ends_with("\n\n")) {
            text_ += "\n";
        }
    }

    void PrintProperty(const char* word, const std::string& value) {
        text_ += "    " + std::string(word) + " " + value + "\n";
    }

    void PrintFormat(std::int32_t format) {
        EndParagraph();
        const std::wstring_view name = store_.GetDbName(format);
        text_ += "format " + PrintName(name);
        if (store_.GetDbDisplayName(format) != name) {
            text_ += " " + PrintText(store_.GetDbDisplayName(format));
        }
        text_ += " {\n";
        PrintProperties(format);
        for (std::int32_t field = 0; field < store_.GetDbFields(format); ++field) {
            text_ += Language::PrintField(store_, format, field);
        }
        text_ += "}\n";
    }

    void PrintProperties(std::int32_t format) {
        const wchar_t* parent = store_.GetAssociatedTable(format);
        const std::size_t start = text_.size();
        PrintExtension(format);
        PrintDataset(format);
        if (parent != nullptr) {
            PrintProperty("associated",
                          PrintName(parent) + (store_.IsAssociatedTableEligibleCommonDataset(format) ? " common" : ""));
        }
        if (store_.GetDbMinLength(format) != 0) {
            PrintProperty("minlength", std::to_string(store_.GetDbMinLength(format)));
        }
        const std::int32_t most = store_.GetUserMaxRecords(format);
        if (most > 0 && most < kFirstScratchRecord) {
            PrintProperty("maxrecords", std::to_string(most));
        }
        if (store_.GetDbKey(format) >= 0 && store_.GetDbKey(format) < store_.GetDbFields(format)) {
            PrintProperty("key", PrintName(store_.GetColumnName(format, store_.GetDbKey(format))));
        }
        if (text_.size() > start) {
            text_ += "\n";
        }
    }

    // A child has the extension of its parent without saying so.
    bool HasOwnExtension(std::int32_t format) {
        const wchar_t* extension = store_.GetDbExtension(format);
        const wchar_t* inherited = store_.GetDbExtension(store_.GetAssociateTableNumber(format));
        return extension != nullptr && (inherited == nullptr || std::wstring_view(extension) != inherited);
    }

    void PrintExtension(std::int32_t format) {
        if (HasOwnExtension(format)) {
            PrintProperty("extension", PrintName(store_.GetDbExtension(format)));
        }
    }

    // A format without an extension of its own has a dataset without a name.
    void PrintDataset(std::int32_t format) {
        const wchar_t* dataset = store_.GetDefaultDatasetName(format);
        if (dataset != nullptr && (*dataset != L'\0' || HasOwnExtension(format))) {
            PrintProperty("dataset", PrintText(dataset));
        }
    }

    IMemoryResidentData& store_;
    std::string text_;
};

} // namespace

std::string PrintDefinition(IMemoryResidentData& store) {
    return DefinitionPrinter(store).Print();
}

} // namespace Kestrona::Host
