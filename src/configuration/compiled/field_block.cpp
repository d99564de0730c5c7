#include "configuration/compiled/field_block.h"

#include <kestrona/binary_strings.h>
#include <kestrona/classes.h>

#include <string>

namespace Kestrona::Configuration::Compiled {

using Data::MemoryResident::MemoryResidentData;

namespace {

// The field that a block is read into.
class FieldReader {
public:
    FieldReader(MemoryResidentData& store, std::int32_t format, std::int32_t field, DefinitionInput& input)
        : store_(store),
          format_(format),
          field_(field),
          input_(input) {}

    bool Read() { return ReadHead() && ReadClasses() && ReadLinks() && ReadClassString() && ReadSlots(); }

private:
    bool ReadHead() {
        std::wstring name;
        double default_value = 0.0;
        std::uint32_t type = 0;
        std::uint8_t read_only = 0;
        if (!input_.ReadShownText(name) || !input_.Read(default_value) || !input_.Read(type) ||
            !input_.Read(read_only)) {
            return false;
        }
        store_.SetColumnName(format_, field_, name);
        store_.SetDbDefaultValue(format_, field_, default_value);
        store_.SetDbType(format_, field_, type);
        store_.SetDbReadOnly(format_, field_, static_cast<ReadOnlyType>(read_only));
        store_.ClearStringColumn(format_, field_);
        return true;
    }

    bool ReadClasses() {
        for (std::int32_t word = 0; word < kClassWords; ++word) {
            std::uint32_t bits = 0;
            if (!input_.Read(bits)) {
                return false;
            }
            store_.SetDbClass(format_, field_, word, bits);
        }
        return true;
    }

    bool ReadLinks() {
        std::int32_t first_slot = 0;
        std::int32_t table = 0;
        std::int16_t dialog_level = 0;
        if (!input_.Read(first_slot) || !input_.Read(table) || !input_.Read(dialog_level)) {
            return false;
        }
        store_.SetDbData(format_, field_, DataSlot::kSwitchField, -1);
        store_.SetDbData(format_, field_, DataSlot::kSwitchOn, 0);
        store_.SetDbData(format_, field_, 0, first_slot);
        PointNowhere();
        store_.SetDbTable(format_, field_, table);
        store_.SetDbDialogLevel(format_, field_, dialog_level);
        return true;
    }

    // Links that are not in the stream are made when the definition is resolved. Until then 0 would be taken for the
    // first format or field.
    void PointNowhere() {
        store_.SetDbSource(format_, field_, -1);
        store_.SetDbTableY(format_, field_, -1);
        store_.SetDbSourceY(format_, field_, -1);
        store_.SetDbSourceS(format_, field_, -1);
        store_.SetDbRelated(format_, field_, -1);
        store_.SetDbRelatedY(format_, field_, -1);
    }

    bool ReadClassString() {
        std::wstring text;
        if (!input_.ReadText(text)) {
            return false;
        }
        if (!text.empty()) {
            store_.SetDbClassString(format_, field_, text);
        }
        return true;
    }

    bool ReadSlots() {
        for (std::int32_t slot = 0; slot < kDataSlots; ++slot) {
            std::int32_t value = 0;
            if (!input_.Read(value)) {
                return false;
            }
            store_.SetDbData(format_, field_, slot, value);
        }
        return true;
    }

    MemoryResidentData& store_;
    std::int32_t format_;
    std::int32_t field_;
    DefinitionInput& input_;
};

} // namespace

void WriteField(MemoryResidentData& store, std::int32_t format, std::int32_t field, std::FILE* file) {
    KSDLL_WriteBinaryString(file, store.GetColumnName(format, field).c_str());
    WriteNumber(file, store.GetDbDefaultValue(format, field));
    WriteNumber(file, store.GetDbType(format, field));
    WriteNumber(file, static_cast<std::uint8_t>(store.GetDbReadOnly(format, field)));
    for (std::int32_t word = 0; word < kClassWords; ++word) {
        WriteNumber(file, store.GetDbClass(format, field, word));
    }
    WriteNumber(file, store.GetDbData(format, field, 0));
    WriteNumber(file, store.GetDbTable(format, field));
    WriteNumber(file, store.GetDbDialogLevel(format, field));
    KSDLL_WriteBinaryString(file, store.GetDbClassString(format, field));
    for (std::int32_t slot = 0; slot < kDataSlots; ++slot) {
        WriteNumber(file, store.GetDbData(format, field, slot));
    }
}

bool ReadField(MemoryResidentData& store, std::int32_t format, std::int32_t field, DefinitionInput& input) {
    return FieldReader(store, format, field, input).Read();
}

} // namespace Kestrona::Configuration::Compiled
