// Typed texts as values.
#include "platform/foreign_locale.h"
#include "text/value_words.h"

#include <kestrona/classification_readers.h>

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace Kestrona {

namespace {

using Data::MemoryResident::MemoryResidentData;
using Fixtures::Field;
using Testing::Of;
using ValueReader = Testing::ValueWords;

constexpr double kUntouched = 4711.25;

double Read(MemoryResidentData& store, std::int32_t format, const wchar_t* text) {
    double value = kUntouched;
    EXPECT_FALSE(ConvertStringByColumnType(store, format, 1, text, &value));
    return value;
}

TEST_F(ValueReader, TextsBecomeValuesOfTheirType) {
    struct Case {
        Field field;
        const wchar_t* text;
        double value;
    };

    const Testing::ForeignLocale foreign;
    const std::vector<Case> cases{
        {Of(TypeBit::kReal), L" 1234.5 kg", 1234.5},
        {Of(TypeBit::kReal), L"1,5", 1.0},
        {Of(TypeBit::kReal), L"abc", kUntouched},
        {Of(TypeBit::kReal), L"", kUntouched},
        {Of(TypeBit::kReal), nullptr, kUntouched},
        {Of(TypeBit::kReal), L"inf", kUntouched},
        {Of(TypeBit::kReal), L"1e999", kUntouched},
        {Of(TypeBit::kInteger), L" -12.9", -12.0},
        {Of(TypeBit::kInteger), L"99999999999", 2147483647.0},
        {Of(TypeBit::kInteger), L"0x10", 0.0},
        {Of(TypeBit::kInteger), L"x", kUntouched},
        {Of(TypeBit::kReal | TypeBit::kInteger), L"2.5", 2.5},
        {Of(TypeBit::kDateTime), L"2022-01-01 12:00", 44562.5},
        {Of(TypeBit::kDateTime), L"2022-02-31", kUntouched},
        {Of(TypeBit::kDateTime), L"UNBESTIMMT", -1.0},
        {Of(TypeBit::kDateTime, {Classes::kTimeForm}), L"6:00", 0.25},
        {Of(TypeBit::kDateTime, {Classes::kTimeForm}), L"25:00", kUntouched},
        {Of(TypeBit::kDuration), L"2 Tage 12:00", 2.5},
        {Of(TypeBit::kDuration), L"abc", kUntouched},
        {Of(TypeBit::kDuration, {Classes::kTimeForm, Classes::kDurationMode3}), L"Dienstag 12:00", 2.5},
        {Of(TypeBit::kToggle), L"jA", 1.0},
        {Of(TypeBit::kToggle), L"Jaja", 0.0},
        {Of(TypeBit::kToggle), nullptr, 0.0},
        {Of(TypeBit::kReference), L"5", kUntouched},
        {Of(TypeBit::kFreeString), L"5", kUntouched},
        {Of(TypeBit::kFreeString | TypeBit::kReal), L"5", 5.0},
        {Of(0x100 | TypeBit::kReal), L"5", kUntouched},
        {Of(TypeBit::kMatrix | TypeBit::kReal), L"5", kUntouched},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(Read(store, AddField(c.field), c.text), c.value)
            << std::hex << c.field.type << ' ' << ::testing::PrintToString(c.text != nullptr ? c.text : L"null");
    }
    double value = kUntouched;
    EXPECT_FALSE(ConvertStringByColumnType(store, -1, 0, L"5", &value));
    EXPECT_EQ(value, kUntouched);
}

// Shows random values, reads the texts back and shows what was read: the text must stay, and the value must lie within
// what the text can tell.
TEST_F(ValueReader, ShownTextsReadBackAtTheirPrecision) {
    struct Case {
        Field field;
        double from;
        double to;
        double precision;
        bool rounds_to_other_form = false; // with MAX, a value that rounds to a whole one has lost its decimals
    };

    constexpr double kMinute = 1.0 / 1440.0;
    const std::vector<Case> cases{
        {Of(TypeBit::kReal), -1e6, 1e6, 0.00501},
        {Of(TypeBit::kReal, {}, L"FORMAT(12.4)"), -1e6, 1e6, 0.0000501},
        {Of(TypeBit::kReal, {}, L"FORMAT(MAX 010.1)"), -1e6, 1e6, 0.0501, true},
        {Of(TypeBit::kInteger), -2e9, 2e9, 0.501},
        {Of(TypeBit::kDateTime), 25204.0, 61728.0, kMinute},
        {Of(TypeBit::kDateTime, {Classes::kTimeForm}), 0.0, 0.999, kMinute},
        {Of(TypeBit::kDuration, {}, L"FORMAT(.0)"), 2.0, 1e6, kMinute},
        {Of(TypeBit::kDuration, {Classes::kTimeForm}, L"FORMAT(.0)"), 0.0, 1e6, kMinute},
        {Of(TypeBit::kDuration, {Classes::kDurationMode2}, L"FORMAT(.0)"), 0.0, 1e5, kMinute},
        {Of(TypeBit::kDuration, {Classes::kDurationMode3}, L"FORMAT(.0)"), 0.0, 6.999, kMinute},
    };
    std::mt19937 generator(61);
    for (const Case& c : cases) {
        const std::int32_t format = AddField(c.field);
        std::uniform_real_distribution<double> draw(c.from, c.to);
        for (int i = 0; i < 2000; ++i) {
            const double value = draw(generator);
            const std::wstring text = KSDLL_ValueToTString(store, format, 1, 0, value, -1);
            const double read = Read(store, format, text.c_str());
            ASSERT_NEAR(read, value, c.precision) << ::testing::PrintToString(text);
            if (!c.rounds_to_other_form) {
                ASSERT_EQ(KSDLL_ValueToTString(store, format, 1, 0, read, -1), text) << value;
            }
        }
    }
}

} // namespace

} // namespace Kestrona
