#pragma once

#include "configuration/auto_list_chain.h"
#include "configuration/classification_finder.h"
#include "configuration/column_sharing.h"
#include "configuration/record_choosers.h"
#include "configuration/reference_lookup.h"

#include <kestrona/store.h>

namespace Kestrona::Configuration {

// What one pass over the definition carries along.
struct Resolution {
    explicit Resolution(Data::MemoryResident::MemoryResidentData& store_to_resolve)
        : store(store_to_resolve),
          lookup(store),
          finder(store),
          chain(store, lookup),
          choosers(store) {}

    Data::MemoryResident::MemoryResidentData& store;
    ReferenceLookup lookup;
    ClassificationFinder finder;
    AutoListChain chain;
    RecordChoosers choosers;
    ColumnSharing sharing;
};

} // namespace Kestrona::Configuration
