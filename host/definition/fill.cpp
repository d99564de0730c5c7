#include "definition/fill_tables.h"
#include "definition/schema_index.h"

#include <kestrona/classes.h>
#include <kestrona/host/definition.h>
#include <kestrona/process.h>

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

namespace Kestrona::Host {

namespace {

using Data::MemoryResident::IMemoryResidentData;

wchar_t* Copy(const std::wstring& text) {
    return KSDLL_AddText(text.c_str());
}

class StoreFiller {
public:
    StoreFiller(const Definition& definition, IMemoryResidentData& store) : definition_(definition), store_(store) {}

    void FillFormats() {
        const auto count = static_cast<std::int32_t>(definition_.formats.size());
        KSDLL_CreateDbInfo(store_);
        KSDLL_InitializeFormats(store_);
        store_.SetFormatCount(count);
        for (std::int32_t format = 0; format < count; ++format) {
            FillFormat(format, definition_.formats[static_cast<std::size_t>(format)]);
        }
        JoinAssociatedTables();
    }

private:
    void FillFormat(std::int32_t format, const FormatDefinition& source) {
        store_.SetDbName(format, Copy(source.name));
        store_.SetDbDisplayName(format, source.display_name);
        if (source.extension) {
            store_.SetDbExtension(format, Copy(*source.extension));
        }
        FillDataset(format, source);
        if (!source.associated_table.empty()) {
            store_.SetAssociatedTable(format, Copy(source.associated_table), source.eligible_for_common_dataset);
        }
        store_.SetDbMinLength(format, source.minimum_length);
        if (source.maximum_records > 0) {
            store_.SetUserMaxRecords(format, source.maximum_records);
        }
        store_.SetCurrentDbSize(format, 0);
        const auto fields = static_cast<std::int32_t>(source.fields.size());
        store_.CreateDbFieldInfo(format, fields);
        store_.SetDbFields(format, fields);
        store_.SetDbKey(format, source.key);
        store_.CreateDbUpdate(format);
        for (std::int32_t field = 0; field < fields; ++field) {
            FillField(format, field, source.fields[static_cast<std::size_t>(field)]);
        }
    }

    // A format that is no file of its own has a dataset without a name.
    void FillDataset(std::int32_t format, const FormatDefinition& source) {
        if (source.dataset) {
            store_.SetDefaultDatasetName(format, Copy(*source.dataset));
        } else if (!source.extension) {
            store_.SetDefaultDatasetName(format, Copy(L""));
        }
    }

    void FillField(std::int32_t format, std::int32_t field, const FieldDefinition& source) {
        store_.SetColumnName(format, field, source.name);
        store_.SetDbType(format, field, source.type);
        for (std::int32_t word = 0; word < kClassWords; ++word) {
            store_.SetDbClass(format, field, word, source.classes[static_cast<std::size_t>(word)]);
        }
        store_.SetDbDefaultValue(format, field, source.default_value);
        store_.SetDbReadOnly(format, field, source.read_only);
        store_.SetDbDialogLevel(format, field, source.dialog_level);
        store_.SetDbData(format, field, DataSlot::kSwitchField, -1);
        store_.SetDbData(format, field, DataSlot::kSwitchOn, 0);
        store_.SetDbData(format, field, DataSlot::kLookupFormat, -1);
        store_.SetDbData(format, field, DataSlot::kLookupField, -1);
        store_.SetDbData(format, field, DataSlot::kMaxTextLength, source.max_text_length);
        PointNowhere(format, field);
        if ((source.classes[static_cast<std::size_t>(Classes::kCallDialog.word)] & Classes::kCallDialog.mask) != 0) {
            store_.SetDbTable(format, field, source.dialog);
        }
        if (!source.classification.empty()) {
            store_.SetDbClassString(format, field, source.classification);
        }
    }

    // Format 0 and field 0 are taken for targets otherwise.
    void PointNowhere(std::int32_t format, std::int32_t field) {
        store_.SetDbTable(format, field, -1);
        store_.SetDbSource(format, field, -1);
        store_.SetDbTableY(format, field, -1);
        store_.SetDbSourceY(format, field, -1);
        store_.SetDbSourceS(format, field, -1);
        store_.SetDbRelated(format, field, -1);
        store_.SetDbRelatedY(format, field, -1);
    }

    void JoinAssociatedTables() {
        const std::vector<std::int32_t> parents = FindParents();
        for (std::size_t f = 0; f < parents.size(); ++f) {
            const auto format = static_cast<std::int32_t>(f);
            if (definition_.formats[f].associated_table.empty()) {
                continue;
            }
            if (parents[f] < 0) {
                KeepOutOfDatabase(format);
            } else {
                Join(format, parents[f]);
            }
        }
    }

    [[nodiscard]] std::vector<std::int32_t> FindParents() const {
        return Language::FindParents(definition_, Language::SchemaIndex(definition_));
    }

    void Join(std::int32_t format, std::int32_t parent) {
        const FormatDefinition& source = definition_.formats[static_cast<std::size_t>(format)];
        const FormatDefinition& root = definition_.formats[static_cast<std::size_t>(parent)];
        store_.SetAssociatedTable(format, Copy(root.name), source.eligible_for_common_dataset);
        store_.AddChildTable(parent, format);
        if (root.extension) {
            store_.SetDbExtension(format, Copy(*root.extension));
        }
    }

    // A child whose optional parent is absent keeps no data.
    void KeepOutOfDatabase(std::int32_t format) {
        store_.SetAssociatedTable(format, nullptr, false);
        const std::int32_t key = store_.GetDbKey(format);
        if (key < 0 || store_.ClassDefined(format, key, Classes::kExcludeFromDb)) {
            return;
        }
        store_.AddDbClass(format, key, Classes::kExcludeFromDb);
        store_.SetDbClassString(format, key,
                                std::wstring(store_.GetDbClassString(format, key)) + L" | EXCLUDE FROM DB");
    }

    const Definition& definition_;
    IMemoryResidentData& store_;
};

void FillSubstitutions(const Definition& definition, IMemoryResidentData& store) {
    store.ResetStringSubstitutions();
    for (const SubstitutionDefinition& substitution : definition.substitutions) {
        std::unique_ptr<wchar_t, decltype(&std::free)> from(Copy(substitution.from), &std::free);
        wchar_t* const to = Copy(substitution.to); // there may be no memory for it
        store.SetStringSubstitution(from.release(), to);
    }
}

} // namespace

bool FillStore(const Definition& definition, IMemoryResidentData& store) {
    StoreFiller(definition, store).FillFormats();
    FillSubstitutions(definition, store);
    return Language::FillTables(definition, store);
}

} // namespace Kestrona::Host
