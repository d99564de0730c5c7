#include "tracking/step_reader.h"

#include "platform/numbers.h"
#include "tracking/steps.h"

#include <kestrona/classes.h>
#include <kestrona/host_settings.h>
#include <kestrona/matrices.h>
#include <kestrona/matrix_index.h>
#include <kestrona/tracked_values.h>

namespace Kestrona::Tracking {

using Data::MemoryResident::IMemoryResidentData;

namespace {

// What is negative or no number becomes an index that no matrix has.
std::uint32_t ToIndex(double value) {
    return static_cast<std::uint32_t>(Platform::TruncateToInt32(value));
}

// A matrix over its own format has one element for each row of the Y format: the X key only names the record that holds
// it. Any other has one for each pair of rows.
std::uint32_t ElementOf(IMemoryResidentData& store, const TrackingStep& step, std::int32_t x, std::int32_t y) {
    const std::int32_t x_format = store.GetDbTable(step.format, step.field);
    if ((step.flags & StepFlag::k3DMatrix) == 0 && x_format == step.format) {
        return static_cast<std::uint32_t>(y);
    }
    return MatrixIndex(x, y, store.GetCurrentDbSize(store.GetDbTableY(step.format, step.field)));
}

} // namespace

std::int32_t FindElement(IMemoryResidentData& store, TableColumn place, std::int32_t record, double value) {
    const std::int32_t id = KSDLL_GetDbMatrix(store, place.format, place.field, record);
    const std::int32_t size = KSDLL_GetMatrixSize(id);
    for (std::int32_t i = 0; i < size; ++i) {
        if (KSDLL_GetMatrixValueFromId(id, record, static_cast<std::uint32_t>(i)) == value) {
            return i;
        }
    }
    return kNone;
}

MatrixKeys StepReader::KeysOf(const TrackingStep& step) const {
    if (!step.xFound) {
        return keys_;
    }
    const std::int32_t row = GetListRowOverride();
    return {ReadCell(step.xColumn, record_), ReadCell(step.yColumn, row < 0 ? record_ : row)};
}

Reading StepReader::ReadElement(const TrackingStep& step, std::int32_t found, std::uint32_t index, bool is_last) const {
    return {IsRead(is_last) ? KSDLL_GetMatrixValue(store_, step.format, step.field, found, index) : kNothing, false};
}

Reading StepReader::ReadSpecial(const TrackingStep& step, std::int32_t found, double key, bool is_last) const {
    const auto is = [&step](std::uint32_t flag) {
        return (step.flags & flag) != 0;
    };
    const MatrixKeys keys = KeysOf(step);
    if (is_last && is(StepFlag::kRelatedList)) {
        return ReadRelatedList(step, keys, is_last);
    }
    if (is(StepFlag::kParallelList)) {
        return ReadParallelList(step, found, keys.first, is_last);
    }
    if (is_last && is(StepFlag::kList)) {
        return is(StepFlag::kKeepKeys) ? ReadListEntry(step, found, keys.first, is_last) : FindPosition(step, keys);
    }
    if (is(StepFlag::kTwoKeys)) {
        return ReadTwoKeys(step, found, keys, is_last);
    }
    if (is(StepFlag::kText) || step.xFound) {
        return {key, false};
    }
    return ReadColumn(step, found, is_last);
}

Reading StepReader::ReadListEntry(const TrackingStep& step, std::int32_t found, double index, bool is_last) const {
    const std::int32_t size = KSDLL_GetMatrixSize(KSDLL_GetDbMatrix(store_, step.format, step.field, found));
    const std::uint32_t entry = ToIndex(index);
    return entry < static_cast<std::uint32_t>(size) ? ReadElement(step, found, entry, is_last) : kBeyondEnd;
}

// The list belongs to the record that the first key names, not to the one at hand.
Reading StepReader::ReadRelatedList(const TrackingStep& step, const MatrixKeys& keys, bool is_last) const {
    const std::int32_t owner = store_.LookupKeyRecord(step.format, keys.first);
    return owner != kNone ? ReadElement(step, owner, ToIndex(keys.second), is_last) : kLost;
}

// The entry stands at the place where the list beside it has the first key.
Reading StepReader::ReadParallelList(const TrackingStep& step, std::int32_t found, double entry, bool is_last) const {
    const TableColumn list{step.format, store_.GetDbData(step.format, step.field, DataSlot::kAssociateField)};
    const std::int32_t position = FindElement(store_, list, found, entry);
    return position != kNone ? ReadElement(step, found, static_cast<std::uint32_t>(position), is_last) : kLost;
}

// The position of the second key in the list of the record that the first key names, for a path that begins with a
// reference to that very list.
Reading StepReader::FindPosition(const TrackingStep& step, const MatrixKeys& keys) const {
    const std::int32_t owner = store_.LookupKeyRecord(step.format, keys.first);
    if (owner == kNone) {
        return kLost;
    }
    const std::int32_t position = FindElement(store_, {step.format, step.field}, owner, keys.second);
    const std::int32_t start = path_.steps.front().format;
    const bool refers_here =
        store_.GetDbTable(start, path_.field) == step.format && store_.GetDbSource(start, path_.field) == step.field;
    return position != kNone && refers_here ? Reading{static_cast<double>(position), false} : kLost;
}

Reading StepReader::ReadTwoKeys(const TrackingStep& step, std::int32_t found, const MatrixKeys& keys,
                                bool is_last) const {
    const std::int32_t x = store_.LookupKeyRecord(store_.GetDbTable(step.format, step.field), keys.first);
    const std::int32_t y = store_.LookupKeyRecord(store_.GetDbTableY(step.format, step.field), keys.second);
    if (x == kNone || y == kNone) {
        return kLost;
    }
    const Reading reading = ReadElement(step, found, ElementOf(store_, step, x, y), is_last);
    if (wantValue_) {
        SetLocalAssignment(store_, path_.steps.front().format, step.format, step.field, reading.value, record_);
    }
    return reading;
}

} // namespace Kestrona::Tracking
