// Making the columns of every field.
#include "configuration/data_arrays.h"

#include "configuration/field_count.h"

#include <kestrona/classes.h>
#include <kestrona/definition_load.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace Kestrona::Configuration {

using Data::MemoryResident::MemoryResidentData;

namespace {

// Makes the columns of one format: first those that stand alone, then those that lean on another one, each after the
// column it leans on, whatever their order in the definition. Where OVERRIDE fields lean on themselves by way of
// others, one of them writes its own cells only.
class ColumnMaker {
public:
    ColumnMaker(MemoryResidentData& store, std::int32_t format)
        : store_(store),
          format_(format),
          states_(static_cast<std::size_t>(FieldCount(store, format))) {}

    void MakeAll() {
        for (std::int32_t field = 0; field < Count(); ++field) {
            MakeAlone(field);
        }
        for (std::int32_t field = 0; field < Count(); ++field) {
            MakeLeaning(field);
        }
    }

private:
    enum class State : std::uint8_t {
        Untouched,
        Begun,
        Settled, // its column is the final one
    };

    [[nodiscard]] std::int32_t Count() const { return static_cast<std::int32_t>(states_.size()); }

    State& StateOf(std::int32_t field) { return states_[static_cast<std::size_t>(field)]; }

    [[nodiscard]] bool Is(std::int32_t field, Class c) const { return store_.ClassDefined(format_, field, c); }

    [[nodiscard]] bool Leans(std::int32_t field) const {
        const bool counted = field < Count(); // the store may hold fields beyond the format's count
        return counted && (Is(field, Classes::kAdditionalReference) || Is(field, Classes::kOverride));
    }

    [[nodiscard]] std::int32_t TargetOf(std::int32_t field) const { return store_.GetDbTableY(format_, field); }

    bool IsSettled(std::int32_t field) { return !Leans(field) || StateOf(field) == State::Settled; }

    void MakeAlone(std::int32_t field) {
        if (!Leans(field)) {
            store_.CreateDbValues(format_, field);
            MakeMatrix(field);
        }
        if (Is(field, Classes::kFreeFormat)) {
            store_.CreateDbStrings(format_, field);
        }
    }

    void MakeMatrix(std::int32_t field) {
        if ((store_.GetDbType(format_, field) & TypeBit::kMatrix) != 0) {
            store_.CreateDbMatrix(format_, field);
        }
    }

    void MakeLeaning(std::int32_t field) {
        std::vector<std::int32_t> path;
        for (; Leans(field) && StateOf(field) == State::Untouched; field = TargetOf(field)) {
            StateOf(field) = State::Begun;
            path.push_back(field);
        }
        std::reverse(path.begin(), path.end());
        for (const std::int32_t next : path) {
            Lean(next);
        }
        for (const std::int32_t next : path) { // what waited for an OVERRIDE further up the path
            if (!IsSettled(next)) {
                Lean(next);
            }
        }
    }

    void Lean(std::int32_t field) {
        const bool has_target = IsSettled(TargetOf(field));
        if (Is(field, Classes::kAdditionalReference) && has_target) {
            store_.SetDbColumn(format_, field, store_.GetDbColumn(format_, TargetOf(field)));
            MakeMatrix(field);
            StateOf(field) = State::Settled;
        }
        if (Is(field, Classes::kOverride)) {
            MakeOverride(field, has_target);
            StateOf(field) = State::Settled;
        }
    }

    void MakeOverride(std::int32_t field, bool has_target) {
        const std::int32_t target = TargetOf(field);
        if (!has_target) {
            store_.SetDbTableY(format_, field, -1);
        }
        store_.CreateDbValues(format_, field);
        store_.SetDbTableY(format_, field, target);
    }

    MemoryResidentData& store_;
    std::int32_t format_;
    std::vector<State> states_;
};

} // namespace

void MakeColumns(MemoryResidentData& store, std::int32_t format) {
    ColumnMaker(store, format).MakeAll();
}

} // namespace Kestrona::Configuration

void KSDLL_CreateDataArrays(Kestrona::Data::MemoryResident::MemoryResidentData& store) {
    for (std::int32_t format = 0; format < store.GetFormatCount(); ++format) {
        Kestrona::Configuration::MakeColumns(store, format);
    }
}
