#include "tracking/follow.h"

#include "tracking/step_reader.h"
#include "tracking/steps.h"

#include <kestrona/classes.h>

#include <cstddef>

namespace Kestrona::Tracking {

using Data::MemoryResident::IMemoryResidentData;

namespace {

bool IsMatrix(IMemoryResidentData& store, const TrackingStep& step) {
    return (store.GetDbType(step.format, step.field) & TypeBit::kMatrix) != 0;
}

void Note(Tracker* tracker, std::int32_t step, std::int32_t record) {
    if (tracker != nullptr && tracker->step == step) {
        tracker->record = record;
    }
}

// The steps from `next` on, the first of which looks up `key`. What the calls in between cannot change is kept at hand:
// the shorter the way from one lookup to the next, the more of them the processor has under way at once.
Reading FollowReferences(const StepReader& reader, Tracker* tracker, double key, std::int32_t next) {
    const TrackingPath& path = reader.Path();
    IMemoryResidentData& store = reader.Store();
    const bool is_reverse = path.listField != kNone;
    const std::int32_t depth = path.depth;
    const TrackingStep* step = path.steps.data() + next;
    for (std::int32_t i = next; i < depth; ++i, ++step) {
        const std::int32_t found = store.LookupKeyRecord(step->format, key);
        if (found == kNone) [[unlikely]] {
            return StepReader::kLost;
        }
        if (is_reverse) {
            continue;
        }
        Note(tracker, i + 1, found);
        const Reading reading = reader.Read(*step, found, key, i + 1 == depth);
        if (reading.failed) [[unlikely]] {
            return reading;
        }
        key = reading.value;
    }
    return {reader.WantsValue() ? key : kNothing, false};
}

} // namespace

Reading Follow(IMemoryResidentData& store, const TrackingPath& path, std::int32_t record, MatrixKeys keys,
               Tracker* tracker, bool want_value) {
    if (!IsResolved(path)) {
        return {kNothing, true};
    }
    Note(tracker, 1, record);
    const TrackingStep& first = path.steps.front();
    if (path.direct) {
        return {want_value ? ReadCell(first.column, record) : kNothing, false};
    }
    const StepReader reader(store, path, record, keys, want_value);
    if (path.depth > 1) {
        return FollowReferences(reader, tracker, ReadCell(first.column, record), 1);
    }
    if ((first.flags & StepFlag::kList) != 0) {
        return reader.ReadListEntry(first, record, keys.first, true);
    }
    if (IsMatrix(store, first)) {
        return FollowReferences(reader, tracker, store.GetDbKeyValue(first.format, record), 0);
    }
    return {want_value ? ReadCell(first.column, record) : kNothing, false};
}

} // namespace Kestrona::Tracking
