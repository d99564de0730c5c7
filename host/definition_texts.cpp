// Implements: ListDefinitionTexts.
#include <kestrona/host/translation_list.h>
#include <kestrona/translation_writer.h>

#include <unordered_set>

namespace Kestrona::Host {

namespace {

using Data::MemoryResident::IMemoryResidentData;

// Begins a section and lists each text once.
class SectionTexts {
public:
    explicit SectionTexts(const wchar_t* section) { TranslationWriter_NewSection(section); }

    void Add(const std::wstring& text) {
        if (listed_.insert(text).second) {
            TranslationWriter_AddEntry(text);
        }
    }

private:
    std::unordered_set<std::wstring> listed_;
};

void ListFormats(IMemoryResidentData& store) {
    SectionTexts texts(kFormatNames);
    for (std::int32_t format = 0; format < store.GetFormatCount(); ++format) {
        texts.Add(store.GetDbDisplayName(format));
    }
}

void ListFields(IMemoryResidentData& store) {
    SectionTexts texts(kFieldNames);
    for (std::int32_t format = 0; format < store.GetFormatCount(); ++format) {
        for (std::int32_t field = 0; field < store.GetDbFields(format); ++field) {
            texts.Add(store.GetColumnName(format, field));
        }
    }
}

// Tables whose names begin with '#' hold named constants and help texts, which are not shown by their names.
void ListStringTables(IMemoryResidentData& store) {
    constexpr wchar_t kInternal = L'#';
    SectionTexts texts(kStringTableTexts);
    for (std::int32_t table = 0; table < kMaxStringTables; ++table) {
        const wchar_t* const name = store.GetTableName(table);
        for (std::int32_t index = 0; name != nullptr && *name != kInternal && index < store.GetTableFields(table);
             ++index) {
            texts.Add(store.GetTableText(table, index));
        }
    }
}

} // namespace

void ListDefinitionTexts(IMemoryResidentData& store) {
    ListFormats(store);
    ListFields(store);
    ListStringTables(store);
    TranslationWriter_NewSection(kDimensionLabels);
}

} // namespace Kestrona::Host
