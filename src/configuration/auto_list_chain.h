#pragma once

#include "configuration/reference_lookup.h"

#include <kestrona/memory_resident_data.h>
#include <kestrona/types.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

namespace Kestrona::Configuration {

// The line that says which AUTO LIST is being resolved; also the text that refuses it on a field that is no matrix.
std::wstring AutoListContext(Data::MemoryResident::IMemoryResidentData& store, TableColumn place);

// Follows AUTO LIST classifications from field to field, for one pass over the definition. Each link is looked up, and
// its context written to the debug log, the first time that it is followed; the ends that are found are kept, so that
// long chains cost no more than short ones.
class AutoListChain {
public:
    AutoListChain(Data::MemoryResident::IMemoryResidentData& store, ReferenceLookup& lookup)
        : store_(store),
          lookup_(lookup) {}

    // Gives the field without AUTO LIST that the chain from `place` leads to, which may be `place` itself. A ring ends
    // at the last field before the first repeat. False when a link could not be resolved and that was reported.
    bool FindEnd(TableColumn place, TableColumn& end);

    // The classification string of `place` has changed.
    void Changed(TableColumn place);

private:
    struct Link {
        std::wstring written; // the keyword as it is matched; empty for a field without AUTO LIST
        TableColumn next;
        TableColumn end;              // unset while `end.format` is -1
        std::ptrdiff_t position = -1; // in the walk under way
    };

    struct Step {
        TableColumn place;
        Link* link = nullptr;
    };

    Link* LinkAt(TableColumn place);
    bool Follow(TableColumn place, Link& link);
    bool Walk(TableColumn place, std::vector<Step>& steps, Link*& last);
    static void Finish(const std::vector<Step>& steps, const Link& last);

    Data::MemoryResident::IMemoryResidentData& store_;
    ReferenceLookup& lookup_;
    std::unordered_map<std::uint64_t, Link> links_; // by place
};

} // namespace Kestrona::Configuration
