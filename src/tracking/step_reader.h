#pragma once

#include "tracking/follow.h"

#include <kestrona/column.h>
#include <kestrona/memory_resident_data.h>
#include <kestrona/tracking.h>
#include <kestrona/types.h>

#include <cstdint>

namespace Kestrona::Tracking {

inline double ReadCell(const Data::MemoryResident::IColumn<double>* column, std::int32_t record) {
    return column != nullptr ? column->GetValue(record) : 0.0;
}

// The first element of a record's matrix with this value, -1 for none. Linear in the size of the matrix.
std::int32_t FindElement(Data::MemoryResident::IMemoryResidentData& store, TableColumn place, std::int32_t record,
                         double value);

// Reads one step of a walk: a cell of its column, or an element of a matrix that the keys of the walk, or of the step
// itself, name.
class StepReader {
public:
    static constexpr Reading kLost{0.0, true};           // a key without a record or an entry
    static constexpr Reading kBeyondEnd{kNothing, true}; // an index behind the end of a list

    // `record` is the one that the walk starts from. The path must outlive the reader.
    StepReader(Data::MemoryResident::IMemoryResidentData& store, const TrackingPath& path, std::int32_t record,
               MatrixKeys keys, bool want_value)
        : store_(store),
          path_(path),
          record_(record),
          keys_(keys),
          wantValue_(want_value) {}

    [[nodiscard]] Data::MemoryResident::IMemoryResidentData& Store() const { return store_; }

    [[nodiscard]] const TrackingPath& Path() const { return path_; }

    [[nodiscard]] bool WantsValue() const { return wantValue_; }

    // The value of a step in its record, which `key` has led to.
    [[nodiscard]] Reading Read(const TrackingStep& step, std::int32_t found, double key, bool is_last) const {
        if ((step.flags & kSpecialFlags) != 0 || step.xFound) [[unlikely]] {
            return ReadSpecial(step, found, key, is_last);
        }
        return ReadColumn(step, found, is_last);
    }

    [[nodiscard]] Reading ReadListEntry(const TrackingStep& step, std::int32_t found, double index, bool is_last) const;

private:
    static constexpr std::uint32_t kSpecialFlags =
        StepFlag::kList | StepFlag::kRelatedList | StepFlag::kTwoKeys | StepFlag::kText | StepFlag::kParallelList;

    [[nodiscard]] Reading ReadColumn(const TrackingStep& step, std::int32_t found, bool is_last) const {
        return {IsRead(is_last) ? ReadCell(step.column, found) : kNothing, false};
    }

    // Only the last read can be left out: the others lead on.
    [[nodiscard]] bool IsRead(bool is_last) const { return wantValue_ || !is_last; }

    [[nodiscard]] Reading ReadSpecial(const TrackingStep& step, std::int32_t found, double key, bool is_last) const;
    [[nodiscard]] Reading ReadRelatedList(const TrackingStep& step, const MatrixKeys& keys, bool is_last) const;
    [[nodiscard]] Reading ReadParallelList(const TrackingStep& step, std::int32_t found, double entry,
                                           bool is_last) const;
    [[nodiscard]] Reading FindPosition(const TrackingStep& step, const MatrixKeys& keys) const;
    [[nodiscard]] Reading ReadTwoKeys(const TrackingStep& step, std::int32_t found, const MatrixKeys& keys,
                                      bool is_last) const;
    [[nodiscard]] Reading ReadElement(const TrackingStep& step, std::int32_t found, std::uint32_t index,
                                      bool is_last) const;
    [[nodiscard]] MatrixKeys KeysOf(const TrackingStep& step) const;

    Data::MemoryResident::IMemoryResidentData& store_;
    const TrackingPath& path_;
    std::int32_t record_;
    MatrixKeys keys_;
    bool wantValue_;
};

} // namespace Kestrona::Tracking
