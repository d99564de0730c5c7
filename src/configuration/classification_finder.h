#pragma once

#include <kestrona/memory_resident_data.h>
#include <kestrona/types.h>

#include <string>
#include <vector>

namespace Kestrona::Configuration {

// Finds the first field whose classification string holds a text, as `KSDLL_FindClassificationInstance` does, for one
// pass over the definition.
//
// The same few texts are asked for by many fields. For each, the place is kept before which no field holds it, so that
// a search does not begin at the first format again; whoever changes a classification string must say so.
class ClassificationFinder {
public:
    explicit ClassificationFinder(Data::MemoryResident::IMemoryResidentData& store) : store_(store) {}

    // The first field other than `skip` that holds `text`; -1 and -1 for none.
    TableColumn Find(const std::wstring& text, TableColumn skip);

    // The classification string of `place` has become `text`.
    void Changed(TableColumn place, const std::wstring& text);

private:
    struct Known {
        std::wstring text;
        TableColumn first{0, 0}; // no field before this one holds the text
    };

    Known& Remember(const std::wstring& text);
    bool Next(TableColumn& place, const std::wstring& text);

    Data::MemoryResident::IMemoryResidentData& store_;
    std::vector<Known> known_;
};

} // namespace Kestrona::Configuration
