#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

// The records that hold one value.
namespace Kestrona::Data::MemoryResident {

// A set of record numbers that can be handed out as one ascending array.
//
// An index builds all its sets in one array; a set that is changed takes a copy of its own.
//
// Moving a record in or out of a long array shifts half of it. A long set therefore only notes the numbers that came
// or went and works them in together: when somebody asks for the array, or when the notes are no longer few beside it.
// A set is settled while it has no notes.
class RecordSet {
public:
    RecordSet() = default;

    // Borrows the rows. Requires: ascending, without repeats, there as long as the set.
    explicit RecordSet(std::span<const std::int32_t> built) : built_(built) {}

    [[nodiscard]] std::size_t Size() const;
    [[nodiscard]] bool IsSettled() const;
    // Requires: settled.
    [[nodiscard]] std::span<const std::int32_t> Rows() const;

    // Enters the records `first` to `last` - 1. Requires: greater than every record of the set.
    void AddRange(std::int32_t first, std::int32_t last);
    // Requires: not in the set.
    void Add(std::int32_t record);
    // Requires: in the set.
    void Remove(std::int32_t record);
    void Settle();

private:
    // rows is ascending and without repeats. The set is rows with every number toggled that occurs in notes an odd
    // number of times.
    struct Own {
        std::vector<std::int32_t> rows;
        std::vector<std::int32_t> notes;
        std::ptrdiff_t added = 0; // what the notes add less what they take away

        [[nodiscard]] bool IsLong() const;
        [[nodiscard]] std::size_t Size() const;
        void Note(std::int32_t record);
        void Settle();
        bool SettleByBits();
        std::size_t WorkInRemovals();
        void WorkInAdditions(std::size_t count);
    };

    Own& NeedOwn();

    std::span<const std::int32_t> built_;
    std::unique_ptr<Own> own_; // stands for built_ once it is there
};

} // namespace Kestrona::Data::MemoryResident
