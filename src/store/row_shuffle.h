#pragma once

namespace Kestrona::Data::MemoryResident {

// Stands while the rows of a format move to other positions. Rows are only passing through then, so copies of matrices
// must not look up, or make, what their cells refer to. For the whole process; may be nested.
class RowShuffle {
public:
    RowShuffle();
    RowShuffle(const RowShuffle&) = delete;
    RowShuffle& operator=(const RowShuffle&) = delete;
    ~RowShuffle();

    static bool IsRunning();
};

} // namespace Kestrona::Data::MemoryResident
