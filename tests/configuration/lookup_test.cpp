#include "configuration/auto_list_chain.h"
#include "configuration/classification_finder.h"
#include "configuration/definition_fixture.h"
#include "configuration/record_choosers.h"
#include "configuration/reference_lookup.h"

#include <kestrona/record_search.h>

#include <gtest/gtest.h>

#include <array>
#include <random>
#include <set>

// The look-ups of a pass against the walks that they stand for.
namespace Kestrona::Configuration {

namespace {

class Lookup : public ConfigurationTest::DefinitionFixture {
protected:
    std::int32_t Pick(std::int32_t count) { return std::uniform_int_distribution<std::int32_t>(0, count - 1)(random_); }

    std::wstring Name(std::int32_t count) { return std::wstring(1, static_cast<wchar_t>(L'A' + Pick(count))); }

    // Formats and fields with names that repeat, some formats in datasets, some in families.
    void DefineAnything() {
        for (std::int32_t format = 0; format < kFormats; ++format) {
            std::vector<Fixtures::Field> fields;
            for (std::int32_t field = Pick(6); field > 0; --field) {
                fields.push_back(Fixtures::Number(Name(5)));
            }
            Add(Name(6), fields);
            if (Pick(2) == 0) {
                SetExtension(format, L"dat");
            }
            if (format > 0 && Pick(2) == 0) {
                SetParent(format, Pick(format));
            }
        }
    }

    // The rule, told by plain walks.
    TableColumn Expected(const std::wstring& name, const std::wstring& field_name, Datasets datasets,
                         std::int32_t current) {
        const std::int32_t parent = store_.GetAssociateTableNumber(current);
        std::int32_t format = 0;
        while (format < kFormats &&
               (store_.GetDbName(format) != name ||
                (store_.GetDbExtension(format) != nullptr && datasets != Datasets::Any && format != current &&
                 format != parent && !store_.IsFormatChildOfParent(parent, format)))) {
            ++format;
        }
        for (std::int32_t field = 0; field < store_.GetDbFields(format); ++field) {
            if (store_.GetColumnName(format, field) == field_name) {
                return {format, field};
            }
        }
        return {};
    }

    static constexpr std::int32_t kFormats = 12;
    std::mt19937 random_{7};
};

TEST_F(Lookup, FindsWhatAWalkOverTheFormatsFinds) {
    DefineAnything();
    ReferenceLookup lookup(store_);
    for (int i = 0; i < 2000; ++i) {
        const std::wstring name = Name(7);
        const std::wstring field = Name(6);
        const Datasets datasets = Pick(2) == 0 ? Datasets::Own : Datasets::Any;
        const std::int32_t current = Pick(kFormats);
        TableColumn found;
        const bool success = lookup.FindReferenceFormatField(
            name, field, [] { return L""; }, datasets, L"", current, found);
        const TableColumn expected = Expected(name, field, datasets, current);
        ASSERT_EQ(success, expected.field >= 0);
        if (success) {
            ASSERT_EQ(found, expected);
        }
    }
}

TEST_F(Lookup, FindsTheClassificationThatASearchFromTheFirstFormatFinds) {
    DefineAnything();
    ClassificationFinder finder(store_);
    for (int i = 0; i < 5000; ++i) {
        const TableColumn place{Pick(kFormats), Pick(6)};
        if (Pick(3) == 0) {
            const std::wstring text = Name(90) + Name(90) + Name(90);
            store_.SetDbClassString(place.format, place.field, text);
            if (place.field < store_.GetDbFields(place.format)) {
                finder.Changed(place, text);
            }
        }
        const std::wstring wanted = Name(90);
        ASSERT_EQ(finder.Find(wanted, place), KSDLL_FindClassificationInstance(store_, wanted, place));
    }
}

TEST_F(Lookup, FollowsListsAsFarAsASlowWalkDoes) {
    constexpr std::int32_t kFields = 40;
    std::vector<Fixtures::Field> fields;
    std::array<std::int32_t, kFields> next{};
    for (std::size_t field = 0; field < kFields; ++field) {
        next[field] = Pick(12) == 0 ? -1 : Pick(kFields); // most walks end in a ring
        fields.push_back(ConfigurationTest::Matrix(L"F" + std::to_wstring(field),
                                                   L"AUTO LIST(T(F" + std::to_wstring(next[field]) + L"))"));
        fields.back().classification.resize(next[field] < 0 ? 0 : fields.back().classification.size());
    }
    Add(L"T", fields);
    ReferenceLookup lookup(store_);
    AutoListChain chain(store_, lookup);
    for (int i = 0; i < 500; ++i) {
        auto field = static_cast<std::size_t>(Pick(kFields));
        TableColumn end;
        ASSERT_TRUE(chain.FindEnd({0, static_cast<std::int32_t>(field)}, end));
        std::set<std::int32_t> passed{static_cast<std::int32_t>(field)};
        while (next[field] >= 0 && passed.insert(next[field]).second) {
            field = static_cast<std::size_t>(next[field]);
        }
        ASSERT_EQ(end, (TableColumn{0, static_cast<std::int32_t>(field)}));
        if (Pick(10) == 0) { // a field's list changes
            const std::int32_t changed = Pick(kFields);
            store_.SetDbClassString(0, changed, L"");
            next[static_cast<std::size_t>(changed)] = -1;
            chain.Changed({0, changed});
        }
    }
}

TEST_F(Lookup, KeepsTheFieldsThatChooseARecordWhileTheirReferencesChange) {
    for (std::int32_t format = 0; format < 4; ++format) {
        std::vector<Fixtures::Field> fields(20, Fixtures::Number(L"F"));
        for (Fixtures::Field& each : fields) {
            each.type = Pick(4) == 0 ? TypeBit::kMatrix : TypeBit::kReal;
            for (const Class c :
                 {Classes::kDatabase, Classes::kUnique, Classes::kUnchecked, Classes::kAdditionalReference}) {
                if (Pick(2) == 0) {
                    each.classes.push_back(c);
                }
            }
            each.table = Pick(5) - 1;
            each.source = Pick(21) - 1;
        }
        Add(L"T", fields);
    }
    // The rule, told by a plain walk.
    const auto walk = [&](std::int32_t format, std::int32_t target, bool unchecked) {
        std::set<std::int32_t> found;
        for (std::int32_t field = 0; field < store_.GetDbFields(format); ++field) {
            const auto is = [&](Class c) {
                return store_.ClassDefined(format, field, c);
            };
            if ((store_.GetDbType(format, field) & TypeBit::kMatrix) == 0 && is(Classes::kDatabase) &&
                !(is(Classes::kAdditionalReference) && format != target) && is(Classes::kUnchecked) == unchecked &&
                store_.GetDbTable(format, field) == target &&
                store_.ClassDefined(target, store_.GetDbSource(format, field), Classes::kUnique)) {
                found.insert(field);
            }
        }
        return found;
    };
    RecordChoosers choosers(store_);
    for (int i = 0; i < 2000; ++i) {
        const std::int32_t format = i / 500;
        const std::int32_t field = Pick(20);
        store_.SetDbTable(format, field, Pick(5) - 1);
        store_.SetDbSource(format, field, Pick(21) - 1);
        choosers.Changed(format, field);
        const std::int32_t target = Pick(4);
        ASSERT_EQ(choosers.Of(format, target).checked, walk(format, target, false));
        ASSERT_EQ(choosers.Of(format, target).unchecked, walk(format, target, true));
    }
}

TEST(ClassificationAt, EndsAtTheClosingBracketOrIsCut) {
    EXPECT_EQ(ClassificationAt(L"A | B(C(D)) | E(F)", 4), L"B(C(D))");
    EXPECT_EQ(ClassificationAt(L"A | B(C", 4), L"B(C");
    EXPECT_EQ(ClassificationAt(L"A", 9), L"");
    EXPECT_EQ(ClassificationAt(L"A(" + std::wstring(100000, L'x'), 0).size(), 200U);
}

} // namespace

} // namespace Kestrona::Configuration
