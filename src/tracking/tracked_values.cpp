// Implements: values and records at the end of a path, and the fields of local assignments.
#include "tracking/follow.h"
#include "tracking/step_reader.h"
#include "tracking/steps.h"

#include <kestrona/classes.h>
#include <kestrona/matrices.h>
#include <kestrona/tracked_values.h>

namespace Kestrona::Tracking {

using Data::MemoryResident::IMemoryResidentData;

namespace {

// `second_record` is the record that the second key comes from.
MatrixKeys KeysFromPath(const TrackingPath& path, std::int32_t record, std::int32_t second_record) {
    if (path.xField < 0 || path.yField < 0) {
        return {};
    }
    return {ReadCell(path.xColumn, record), ReadCell(path.yColumn, second_record)};
}

Reading FollowWithKeysOfPath(IMemoryResidentData& store, const TrackingPath& path, std::int32_t record) {
    return Follow(store, path, record, KeysFromPath(path, record, record), nullptr, true);
}

double Report(const Reading& reading, bool* failed) {
    if (failed != nullptr) {
        *failed = reading.failed;
    }
    return reading.value;
}

MatrixKeys ToKeys(std::int32_t first, std::int32_t second) {
    return {static_cast<double>(first), static_cast<double>(second)};
}

} // namespace

double FollowDataPathForValue(IMemoryResidentData& store, const TrackingPath& path, std::int32_t record, bool* failed) {
    return Report(FollowWithKeysOfPath(store, path, record), failed);
}

double FollowDataPathForValue(IMemoryResidentData& store, const TrackingPath& path, std::int32_t record) {
    return FollowWithKeysOfPath(store, path, record).value;
}

double FollowDataPathForValue(IMemoryResidentData& store, const TrackingPath& path, std::int32_t record,
                              double default_value, bool* failed) {
    Reading reading{default_value, true};
    if (IsResolved(path)) {
        reading = FollowWithKeysOfPath(store, path, record);
    }
    Report(reading, failed);
    return reading.failed ? default_value : reading.value;
}

double FollowDataPathForValue(IMemoryResidentData& store, const TrackingPath& path, std::int32_t record,
                              double default_value) {
    return FollowDataPathForValue(store, path, record, default_value, nullptr);
}

double FollowDataPathForValue(IMemoryResidentData& store, const TrackingPath& path, std::int32_t record,
                              std::int32_t index_record, double default_value) {
    if (!IsResolved(path)) {
        return default_value;
    }
    const std::int32_t second_record = path.xField == path.yField ? index_record : record;
    const Reading reading = Follow(store, path, record, KeysFromPath(path, record, second_record), nullptr, true);
    return reading.failed ? default_value : reading.value;
}

double TrackForValue(IMemoryResidentData& store, const TrackingPath& path, std::int32_t record) {
    return FollowDataPathForValue(store, path, record);
}

double TrackForListValue(IMemoryResidentData& store, const TrackingPath& path, std::int32_t record,
                         std::int32_t index) {
    return TrackForMatrixValue(store, path, record, index, 0);
}

double TrackForMatrixValue(IMemoryResidentData& store, const TrackingPath& path, std::int32_t record,
                           std::int32_t first, std::int32_t second) {
    return FollowDataTrackForValueLegacy(store, path, record, nullptr, first, second);
}

double FollowDataTrackForValueLegacy(IMemoryResidentData& store, const TrackingPath& path, std::int32_t record,
                                     bool* failed, std::int32_t first, std::int32_t second) {
    return Report(Follow(store, path, record, ToKeys(first, second), nullptr, true), failed);
}

double FollowDataTrackForValueLegacy(IMemoryResidentData& store, const TrackingPath& path, std::int32_t record,
                                     bool* failed, std::int32_t first, std::int32_t second, std::int32_t* tracked) {
    Tracker tracker{kNone, path.depth};
    const Reading reading = Follow(store, path, record, ToKeys(first, second), &tracker, true);
    if (tracked != nullptr) {
        *tracked = tracker.record;
    }
    return Report(reading, failed);
}

std::int32_t TrackForRecord(IMemoryResidentData& store, const TrackingPath& path, std::int32_t record,
                            std::int32_t first, std::int32_t second) {
    return TrackForRecord(store, path, record, first, second, nullptr);
}

std::int32_t TrackForRecord(IMemoryResidentData& store, const TrackingPath& path, std::int32_t record,
                            std::int32_t first, std::int32_t second, bool* failed) {
    Tracker tracker{kNone, path.depth};
    Report(Follow(store, path, record, ToKeys(first, second), &tracker, false), failed);
    return tracker.record;
}

void SetValue(IMemoryResidentData& store, const TrackingPath& path, std::int32_t record, double value) {
    const TrackingStep& target = GetTargetStep(path);
    const std::int32_t found = TrackForRecord(store, path, record, 0, 0);
    if (found >= 0) {
        store.SetDbValue(target.format, target.field, found, value);
    }
}

std::int32_t KSDLL_IsItemInList(IMemoryResidentData& store, const TrackingPath& path, std::int32_t record,
                                double value) {
    if (path.listField == kNone) {
        return kNone;
    }
    const TableColumn list{GetTargetStep(path).format, path.listField};
    if (KSDLL_GetDbMatrix(store, list.format, list.field, record) < 0) {
        return store.GetDbValue(list.format, list.field, record) == value ? 1 : 0;
    }
    return FindElement(store, list, record, value) + 1;
}

} // namespace Kestrona::Tracking
