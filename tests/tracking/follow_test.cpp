// Following random paths, against a walk by hand that looks every key up by reading all records.
#include "fixtures/store_test.h"
#include "tracking/random_schema.h"

#include <kestrona/host_settings.h>
#include <kestrona/tracked_values.h>

#include <map>

namespace Kestrona::Tracking {

namespace {

using namespace Data::MemoryResident;
using namespace Fixtures;

struct Outcome {
    double value = 0.0;
    bool failed = false;
    std::int32_t record = -1; // that the last step reads

    friend bool operator==(const Outcome&, const Outcome&) = default;
};

class HandWalk {
public:
    HandWalk(IMemoryResidentData& store, const TrackingPath& path, std::int32_t record, double x, double y)
        : store_(store),
          path_(path),
          record_(record),
          x_(x),
          y_(y) {}

    Outcome Go() {
        const TrackingStep& first = path_.steps[0];
        const bool is_matrix = (store_.GetDbType(first.format, first.field) & TypeBit::kMatrix) != 0;
        if (path_.depth == 1 && is_matrix && Is(first, Classes::kList) && TableY(first) != -1) {
            const Outcome entry = Entry(first, record_, x_);
            return {entry.value, entry.failed, record_};
        }
        Outcome at{store_.GetDbValue(first.format, first.field, record_), false, -1};
        std::size_t next = 1;
        if (path_.depth == 1) {
            at.record = record_;
            at.value = is_matrix ? store_.GetDbKeyValue(first.format, record_) : at.value;
            next = is_matrix ? 0 : 1;
        }
        for (; next < Depth() && !at.failed; ++next) {
            at = Step(path_.steps[next], at.value, next + 1 == Depth());
        }
        return at;
    }

    std::string seen; // what the last step was read as

private:
    [[nodiscard]] std::size_t Depth() const { return static_cast<std::size_t>(path_.depth); }

    bool Is(const TrackingStep& step, Class c) { return store_.ClassDefined(step.format, step.field, c); }

    std::int32_t TableX(const TrackingStep& step) { return store_.GetDbTable(step.format, step.field); }

    std::int32_t TableY(const TrackingStep& step) { return store_.GetDbTableY(step.format, step.field); }

    std::int32_t Lookup(std::int32_t format, double key) {
        std::int32_t record = store_.GetCurrentDbSize(format) - 1;
        while (record >= 0 && store_.GetDbKeyValue(format, record) != key) {
            --record;
        }
        return record;
    }

    double Element(const TrackingStep& step, std::int32_t record, double index) {
        return KSDLL_GetMatrixValue(store_, step.format, step.field, record, static_cast<std::uint32_t>(index));
    }

    Outcome Entry(const TrackingStep& step, std::int32_t record, double index) {
        seen = "entry";
        const std::vector<double> elements = MatrixCells(store_, step.format, step.field, record);
        const auto at = static_cast<std::size_t>(index);
        return at < elements.size() ? Outcome{elements[at], false, record} : Outcome{-1.0, true, record};
    }

    // The position of an element as an outcome.
    Outcome Position(std::int32_t format, std::int32_t field, std::int32_t record, double element) {
        const std::vector<double> elements = MatrixCells(store_, format, field, record);
        const auto at = std::find(elements.begin(), elements.end(), element);
        return at != elements.end() ? Outcome{static_cast<double>(at - elements.begin())} : Outcome{0.0, true};
    }

    Outcome Step(const TrackingStep& step, double key, bool last) {
        const std::int32_t found = Lookup(step.format, key);
        if (found < 0) {
            seen = "lost";
            return {0.0, true, -1};
        }
        if (path_.listField >= 0) {
            seen = "reverse";
            return {key, false, -1};
        }
        Outcome at = Read(step, found, key, last);
        at.record = last ? found : -1;
        return at;
    }

    Outcome Read(const TrackingStep& step, std::int32_t found, double key, bool last) {
        double x = x_;
        double y = y_;
        if (step.xFound) {
            x = step.xColumn->GetValue(record_);
            y = step.yColumn->GetValue(GetListRowOverride() < 0 ? record_ : GetListRowOverride());
        }
        if (last && Is(step, Classes::kRelatedList)) {
            seen = "related";
            const std::int32_t owner = Lookup(step.format, x);
            return owner >= 0 ? Outcome{Element(step, owner, y)} : Outcome{0.0, true};
        }
        if (Is(step, Classes::kParallelList)) {
            seen = "parallel";
            const Outcome position = Position(step.format, store_.GetDbData(step.format, step.field, 0), found, x);
            return position.failed ? position : Outcome{Element(step, found, position.value)};
        }
        if (last && Is(step, Classes::kList) && TableY(step) != -1) {
            return Is(step, Classes::kKeepKeys) ? Entry(step, found, x) : OwnPosition(step, x, y);
        }
        if (Is(step, Classes::kAutoDimension)) {
            return TwoKeys(step, found, x, y);
        }
        seen = Is(step, Classes::kFreeFormat) ? "text" : "cell";
        return {Is(step, Classes::kFreeFormat) ? key : store_.GetDbValue(step.format, step.field, found)};
    }

    Outcome OwnPosition(const TrackingStep& step, double x, double y) {
        seen = "position";
        const std::int32_t owner = Lookup(step.format, x);
        const TrackingStep& first = path_.steps[0];
        const bool refers = TableX(first) == step.format && store_.GetDbSource(first.format, first.field) == step.field;
        return owner >= 0 && refers ? Position(step.format, step.field, owner, y) : Outcome{0.0, true};
    }

    Outcome TwoKeys(const TrackingStep& step, std::int32_t found, double x_key, double y_key) {
        seen = Is(step, Classes::k3DMatrix) ? "grid" : "row";
        const std::int32_t x = Lookup(TableX(step), x_key);
        const std::int32_t y = Lookup(TableY(step), y_key);
        const std::int32_t start = Is(step, Classes::k3DMatrix) ? x * store_.GetCurrentDbSize(TableY(step)) : 0;
        return x >= 0 && y >= 0 ? Outcome{Element(step, found, start + y)} : Outcome{0.0, true};
    }

    IMemoryResidentData& store_;
    const TrackingPath& path_;
    std::int32_t record_;
    double x_;
    double y_;
};

class Follow : public testing::Test {
protected:
    // Every function against one walk by hand with these indexes.
    void Compare(const TrackingPath& path, std::int32_t record, std::int32_t first, std::int32_t second) {
        HandWalk walk(*store, path, record, first, second);
        const Outcome expected = walk.Go();
        seen[walk.seen] += expected.failed ? 0 : 1;
        Outcome got;
        got.value = FollowDataTrackForValueLegacy(*store, path, record, &got.failed, first, second, &got.record);
        EXPECT_EQ(got, expected) << walk.seen;
        EXPECT_EQ(TrackForMatrixValue(*store, path, record, first, second), expected.value);
        bool failed = !expected.failed;
        EXPECT_EQ(TrackForRecord(*store, path, record, first, second, &failed), expected.record);
        EXPECT_EQ(failed, expected.failed);
        EXPECT_EQ(FollowDataTrackForValueLegacy(*store, path, record, &failed, first, second), expected.value);
    }

    // The functions that take the indexes from the path.
    void CompareWithPath(const TrackingPath& path, std::int32_t record, std::int32_t other) {
        const bool has_both = path.xField >= 0 && path.yField >= 0;
        const std::int32_t second = path.xField == path.yField ? other : record;
        const auto keys = [&](std::int32_t y_record) {
            const double x = has_both ? store->GetDbValue(path.steps[0].format, path.xField, record) : 0.0;
            const double y = has_both ? store->GetDbValue(path.steps[0].format, path.yField, y_record) : 0.0;
            return HandWalk(*store, path, record, x, y).Go();
        };
        bool failed = false;
        EXPECT_EQ(FollowDataPathForValue(*store, path, record, &failed), keys(record).value);
        EXPECT_EQ(failed, keys(record).failed);
        EXPECT_EQ(FollowDataPathForValue(*store, path, record, 77.5), failed ? 77.5 : keys(record).value);
        const Outcome by_row = keys(second);
        EXPECT_EQ(FollowDataPathForValue(*store, path, record, other, 77.5), by_row.failed ? 77.5 : by_row.value);
    }

    FreshProcess process;
    IMemoryResidentData* store = nullptr;
    std::map<std::string, std::int32_t> seen;
};

TEST_F(Follow, AgreesWithAWalkByHand) {
    for (unsigned seed = 0; seed < 4000 && !HasFailure(); ++seed) {
        SCOPED_TRACE(seed);
        RandomSchema schema(seed + 100000);
        store = &schema.Store();
        FieldsCondition condition = schema.PickTargets();
        SetListRowOverride(schema.Pick(2) - 1);
        for (std::int32_t start = 0; start < store->GetFormatCount(); ++start) {
            TrackingPath additional;
            KSDLL_LocateDataTrack(*store, additional, start, true, &condition);
            TrackingPath path;
            setDataPath(*store, path, start, &condition);
            for (std::int32_t record = 0; path.field >= 0 && record < store->GetCurrentDbSize(start); ++record) {
                Compare(path, record, schema.Pick(6), schema.Pick(6));
                Compare(additional, record, schema.Pick(6), schema.Pick(6));
                CompareWithPath(path, record, schema.Pick(store->GetCurrentDbSize(start)));
            }
        }
    }
    for (const char* const what : {"entry", "reverse", "related", "parallel", "row", "grid", "text", "cell"}) {
        EXPECT_GT(seen[what], 5) << what;
    }
}

} // namespace

} // namespace Kestrona::Tracking
