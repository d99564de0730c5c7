#include "configuration/compiled/format_block.h"

#include "configuration/compiled/field_block.h"
#include "platform/format_text.h"

#include <kestrona/binary_strings.h>
#include <kestrona/matrices.h>
#include <kestrona/process.h>
#include <kestrona/services.h>

#include <string>

namespace Kestrona::Configuration::Compiled {

using Data::MemoryResident::MemoryResidentData;

namespace {

constexpr const wchar_t* kFormatLine = L"Configure Format %li";
constexpr std::int32_t kNoUserMaximum = kFirstScratchRecord;
constexpr std::uint32_t kEligible = 1;

// Null for an empty text, which stands for none.
wchar_t* CopyUnlessEmpty(const std::wstring& text) {
    return text.empty() ? nullptr : KSDLL_AddText(text.c_str());
}

// The format that a block is read into.
class FormatReader {
public:
    FormatReader(MemoryResidentData& store, std::int32_t format, DefinitionInput& input)
        : store_(store),
          format_(format),
          input_(input) {}

    bool Read(bool has_common_dataset_flag) {
        return ReadNames() && ReadDataset() && ReadAssociatedTable(has_common_dataset_flag) && ReadLimits() &&
               ReadFields();
    }

private:
    // The first format without a name would end every walk through the formats.
    bool ReadNames() {
        std::wstring name;
        std::wstring display_name;
        if (!input_.ReadText(name)) {
            return false;
        }
        if (name.empty()) {
            return input_.ReportCorrupt();
        }
        store_.SetDbName(format_, KSDLL_AddText(name.c_str()));
        if (!input_.ReadShownText(display_name)) {
            return false;
        }
        store_.SetDbDisplayName(format_, display_name);
        return true;
    }

    // A format that is no file of its own has a dataset without a name.
    bool ReadDataset() {
        std::wstring extension;
        std::wstring dataset;
        if (!input_.ReadText(extension) || !input_.ReadText(dataset)) {
            return false;
        }
        store_.SetDbExtension(format_, CopyUnlessEmpty(extension));
        const bool has_dataset = !dataset.empty() || extension.empty();
        store_.SetDefaultDatasetName(format_, has_dataset ? KSDLL_AddText(dataset.c_str()) : nullptr);
        return true;
    }

    bool ReadAssociatedTable(bool has_common_dataset_flag) {
        std::wstring name;
        std::uint32_t eligible = 0;
        if (!input_.ReadText(name) || (has_common_dataset_flag && !input_.Read(eligible))) {
            return false;
        }
        store_.SetAssociatedTable(format_, CopyUnlessEmpty(name), eligible == kEligible);
        return true;
    }

    bool ReadLimits() {
        std::int32_t minimum_length = 0;
        std::int32_t maximum_records = 0;
        std::int32_t key = -1;
        if (!input_.Read(minimum_length) || !input_.Read(maximum_records) || !input_.Read(key)) {
            return false;
        }
        store_.SetDbMinLength(format_, minimum_length);
        if (maximum_records != kNoUserMaximum) {
            store_.SetUserMaxRecords(format_, maximum_records);
        }
        store_.SetDbKey(format_, key);
        return true;
    }

    bool ReadFields() {
        store_.SetCurrentDbSize(format_, 0);
        KSDLL_FreeMatrices(store_, format_);
        store_.CreateDbUpdate(format_);
        std::int32_t count = 0;
        if (!input_.ReadCount(count, kSmallestFieldBlock)) {
            return false;
        }
        store_.SetDbFields(format_, count);
        store_.CreateDbFieldInfo(format_, count);
        for (std::int32_t field = 0; field < count; ++field) {
            if (!ReadField(store_, format_, field, input_)) {
                return false;
            }
        }
        return true;
    }

    MemoryResidentData& store_;
    std::int32_t format_;
    DefinitionInput& input_;
};

} // namespace

void WriteFormat(MemoryResidentData& store, std::int32_t format, std::FILE* file) {
    KSDLL_WriteBinaryString(file, store.GetDbName(format));
    KSDLL_WriteBinaryString(file, store.GetDbDisplayName(format).c_str());
    KSDLL_WriteBinaryString(file, store.GetDbExtension(format));
    KSDLL_WriteBinaryString(file, store.GetDefaultDatasetName(format));
    KSDLL_WriteBinaryString(file, store.GetAssociatedTable(format));
    WriteNumber(file, store.IsAssociatedTableEligibleCommonDataset(format) ? kEligible : 0U);
    WriteNumber(file, store.GetDbMinLength(format));
    WriteNumber(file, store.GetUserMaxRecords(format));
    WriteNumber(file, store.GetDbKey(format));
    const std::int32_t fields = store.GetDbFields(format);
    WriteNumber(file, fields);
    for (std::int32_t field = 0; field < fields; ++field) {
        WriteField(store, format, field, file);
    }
}

bool ReadFormat(MemoryResidentData& store, std::int32_t format, bool has_common_dataset_flag, DefinitionInput& input) {
    KSDLL_WriteDebug(Platform::FormatText(kFormatLine, format));
    return FormatReader(store, format, input).Read(has_common_dataset_flag);
}

} // namespace Kestrona::Configuration::Compiled
