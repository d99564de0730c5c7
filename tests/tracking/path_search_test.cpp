// The search for a path, against a twin that keeps whole paths by value and asks the schema for everything again.
#include "fixtures/store_test.h"
#include "tracking/random_schema.h"

#include <kestrona/tracking.h>

#include <optional>
#include <set>

namespace Kestrona::Tracking {

namespace {

using namespace Data::MemoryResident;
using namespace Fixtures;
using Places = std::vector<TableColumn>;

struct TwinPath {
    Places steps;
    std::int32_t list = -1;
};

class Twin {
public:
    Twin(IMemoryResidentData& store, bool additional, Conditions::ITrackingCondition& condition)
        : store_(store),
          additional_(additional),
          condition_(condition) {}

    std::optional<TwinPath> Find(std::int32_t start) {
        if (const std::optional<Places> steps = Forward(start, 0)) {
            return TwinPath{*steps, -1};
        }
        return Reverse(start);
    }

    std::int32_t Target(std::int32_t format) {
        std::int32_t field = 0;
        while (field < store_.GetDbFields(format) && !condition_.Test(store_, format, field)) {
            ++field;
        }
        return field < store_.GetDbFields(format) ? field : -1;
    }

private:
    bool Is(TableColumn place, Class c) { return store_.ClassDefined(place.format, place.field, c); }

    std::optional<Places> Forward(std::int32_t format, std::int32_t references) {
        if (format < 0 || format >= store_.GetFormatCount() || !entered_.insert(format).second) {
            return std::nullopt;
        }
        if (Target(format) >= 0) {
            return Places{{format, Target(format)}};
        }
        for (std::int32_t field = 0; references < 10 && field < store_.GetDbFields(format); ++field) {
            if (!Leads({format, field})) {
                continue;
            }
            if (std::optional<Places> rest = Forward(Next({format, field}), references + 1)) {
                rest->insert(rest->begin(), {format, field});
                return rest;
            }
        }
        return std::nullopt;
    }

    bool Leads(TableColumn place) {
        const TableColumn to{store_.GetDbTable(place.format, place.field),
                             store_.GetDbSource(place.format, place.field)};
        if (Is(place, Classes::kDatabase)) {
            return !Is(to, Classes::kFamilyTarget) && !Is(place, Classes::kUnchecked);
        }
        const bool is_list = Is(place, Classes::kList) && !Is(place, Classes::kDataList);
        return additional_ && (is_list || Is(place, Classes::kAutoDimension)) && Target(to.format) >= 0;
    }

    std::int32_t Next(TableColumn place) {
        if (Is(place, Classes::kAutoDimension)) {
            return Is(place, Classes::kMatrixDefault) ? -1 : store_.GetDbData(place.format, place.field, 1);
        }
        return store_.GetDbTable(place.format, place.field);
    }

    std::optional<TwinPath> Reverse(std::int32_t start) {
        for (std::int32_t p = 0; p < store_.GetFormatCount(); ++p) {
            for (std::int32_t i = 0; store_.GetDbExtension(p) == nullptr && i < store_.GetDbFields(p); ++i) {
                const bool is_matrix = (store_.GetDbType(p, i) & 0x20) != 0 && !Is({p, i}, Classes::kUnchecked);
                if (Target(p) < 0 || (!is_matrix && !Is({p, i}, Classes::kReverseSearch))) {
                    continue;
                }
                const std::int32_t fields = store_.GetDbFields(start);
                if (store_.GetDbTable(p, i) == start && store_.GetDbSource(p, i) < fields) {
                    return TwinPath{{{start, store_.GetDbSource(p, i)}, {p, i}}, i};
                }
                if (store_.GetDbTableY(p, i) == start && !Is({p, i}, Classes::k3DMatrix) &&
                    store_.GetDbSourceY(p, i) < fields) {
                    return TwinPath{{{start, store_.GetDbSourceY(p, i)}, {p, i}}, i};
                }
            }
        }
        return std::nullopt;
    }

    IMemoryResidentData& store_;
    bool additional_;
    Conditions::ITrackingCondition& condition_;
    std::set<std::int32_t> entered_;
};

bool GivesKeys(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    const auto is = [&](Class c) {
        return store.ClassDefined(format, field, c);
    };
    return (!is({1, 0x800000}) || is({0, 0x20})) && !is({0, 0x2000000}) && !is({3, 0x20});
}

// The first field of the format that may give keys and has this number in `GetDbTable` or `GetDbTableY`.
template <typename Table>
std::int32_t FirstWith(IMemoryResidentData& store, std::int32_t format, std::int32_t wanted, Table table) {
    for (std::int32_t field = 0; field < store.GetDbFields(format); ++field) {
        if (GivesKeys(store, format, field) && (store.*table)(format, field) == wanted) {
            return field;
        }
    }
    return -1;
}

std::int32_t KeyField(IMemoryResidentData& store, std::int32_t start, std::int32_t wanted) {
    for (std::int32_t f = 0; f < store.GetDbFields(start); ++f) {
        const std::int32_t to = store.GetDbTable(start, f);
        const std::int32_t source = store.GetDbSource(start, f);
        const bool is_indirect = store.ClassDefined(start, f, Classes::kDatabase) && source >= 0 &&
                                 source < store.GetDbFields(to) && GivesKeys(store, to, source) &&
                                 store.GetDbTable(to, source) == wanted;
        if (wanted >= 0 && GivesKeys(store, start, f) && (to == wanted || is_indirect)) {
            return f;
        }
    }
    return -1;
}

// What the flags of a step say, following it tells.
void ExpectStep(IMemoryResidentData& store, const TrackingStep& step, TableColumn at, bool leads_on) {
    EXPECT_EQ((TableColumn{step.format, step.field}), at);
    EXPECT_EQ(step.column, store.GetDbColumn(at.format, at.field));
    const std::int32_t to = store.GetDbTable(at.format, at.field);
    const std::int32_t x = FirstWith(store, to, to, &IMemoryResidentData::GetDbTable);
    const std::int32_t y = FirstWith(store, to, to, &IMemoryResidentData::GetDbTableY);
    const bool has_keys = leads_on && x >= 0 && y >= 0 && store.ClassDefined(at.format, at.field, Classes::kDatabase) &&
                          store.ClassDefined(at.format, at.field, Classes::kAutoDimension) &&
                          store.ClassDefined(at.format, at.field, Classes::kTwoKeyTarget);
    EXPECT_EQ(step.xFound, has_keys);
    EXPECT_EQ(step.yFound, has_keys);
    EXPECT_EQ(step.xColumn, has_keys ? store.GetDbColumn(to, x) : nullptr);
    EXPECT_EQ(step.yColumn, has_keys ? store.GetDbColumn(to, y) : nullptr);
}

void ExpectPath(IMemoryResidentData& store, const TrackingPath& path, const std::optional<TwinPath>& twin) {
    ASSERT_EQ(path.field, twin ? twin->steps[0].field : -1);
    ASSERT_EQ(path.depth, twin ? static_cast<std::int16_t>(twin->steps.size()) : 0);
    EXPECT_EQ(path.listField, twin ? twin->list : -1);
    for (std::size_t i = 0; twin && i < twin->steps.size(); ++i) {
        ExpectStep(store, path.steps[i], twin->steps[i], path.listField == -1 && i + 1 < twin->steps.size());
    }
    const TableColumn first = twin ? twin->steps[0] : TableColumn{};
    EXPECT_EQ(path.direct, path.depth == 1 && (path.steps[0].flags & 0x01) == 0 &&
                               (store.GetDbType(first.format, first.field) & 0x20) == 0);
}

void ExpectKeyFields(IMemoryResidentData& store, const TrackingPath& path, std::int32_t start) {
    const TrackingStep target = path.field >= 0 ? GetTargetStep(path) : TrackingStep{};
    const bool is_dimensioned = store.ClassDefined(target.format, target.field, {1, 2}) ||
                                store.ClassDefined(target.format, target.field, {1, 4});
    const auto expected = [&](std::int32_t format) {
        return is_dimensioned ? KeyField(store, start, format) : -1;
    };
    EXPECT_EQ(path.xField, expected(store.GetDbTable(target.format, target.field)));
    EXPECT_EQ(path.yField, expected(store.GetDbTableY(target.format, target.field)));
    EXPECT_EQ(path.xColumn, store.GetDbColumn(start, path.xField));
    EXPECT_EQ(path.yColumn, store.GetDbColumn(start, path.yField));
}

TEST(PathSearch, FindsWhatATwinFinds) {
    FreshProcess process;
    std::set<std::int32_t> depths;
    std::int32_t reverse = 0;
    std::int32_t two_keys = 0;
    TrackingPath path; // used again, so that nothing of an earlier path may stay
    for (unsigned seed = 0; seed < 1500 && !testing::Test::HasFailure(); ++seed) {
        SCOPED_TRACE(seed);
        RandomSchema schema(seed);
        IMemoryResidentData& store = schema.Store();
        FieldsCondition condition = schema.PickTargets();
        for (std::int32_t start = 0; start < store.GetFormatCount(); ++start) {
            KSDLL_LocateDataTrack(store, path, start, true, &condition);
            ExpectPath(store, path, Twin(store, true, condition).Find(start));
            setDataPath(store, path, start, &condition);
            ExpectPath(store, path, Twin(store, false, condition).Find(start));
            ExpectKeyFields(store, path, start);
            depths.insert(path.depth);
            reverse += path.listField >= 0 ? 1 : 0;
            two_keys += path.steps[0].xFound ? 1 : 0;
            KSDLL_LocateLocalReferenceAsDataPath(store, path, start, &condition);
            EXPECT_EQ(path.field, Twin(store, false, condition).Target(start));
            EXPECT_EQ(path.direct, path.field >= 0);
        }
    }
    EXPECT_GE(depths.size(), 5U);
    EXPECT_GT(reverse, 20);
    EXPECT_GT(two_keys, 5);
}

using PathEnds = StoreTest;

TEST_F(PathEnds, TenReferencesAreTakenAndNoMore) {
    for (std::int32_t format = 0; format < 13; ++format) { // a ring
        AddTable(*store, L"Format", {Integer(L"Key"), Reference(L"Next", (format + 1) % 13, 0), Number(L"Own")});
    }
    TrackingPath path;
    path.steps.clear();
    FieldsCondition near{{10, 2}};
    EXPECT_EQ(KSDLL_LocateDataTrack(*store, path, 0, false, &near), 1);
    EXPECT_EQ(path.depth, 11);
    EXPECT_EQ(GetTargetStep(path).format, 10);
    FieldsCondition far{{11, 2}};
    EXPECT_EQ(KSDLL_LocateDataTrack(*store, path, 0, false, &far), -1);
    EXPECT_EQ(KSDLL_LocateDataTrack(*store, path, 1, false, &far), 1);
    FieldsCondition nothing{};
    EXPECT_EQ(KSDLL_LocateDataTrack(*store, path, 3, true, &nothing), -1);
}

TEST_F(PathEnds, FormatsOutOfRangeHaveNone) {
    AddTable(*store, L"Format",
             {Integer(L"Key"), Matrix(L"List", {Classes::kList, Classes::kDataList}), Reference(L"Lost", 77, 5)});
    FieldsCondition condition{{0, 1}};
    TrackingPath path;
    for (const std::int32_t format : {-1, 1, 5000}) {
        setDataPath(*store, path, format, &condition);
        EXPECT_EQ(path.field, -1);
        try {
            static_cast<void>(GetTargetStep(path));
            ADD_FAILURE() << "an unresolved path has no target";
        } catch (const wchar_t* text) {
            EXPECT_STREQ(text, L"Path has not been resolved");
        }
    }
}

} // namespace

} // namespace Kestrona::Tracking
