#include "platform/scan_wide.h"

#include "platform/random_text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>

namespace Kestrona::Platform {
namespace {

using Testing::RandomSource;
using Testing::WidenAscii;

struct TextCase {
    std::wstring_view text;
    std::wstring_view format;
    std::int32_t items;
    std::wstring_view first;
    std::wstring_view second;
    std::size_t position;
};

TEST(ScanWide, ReadsTheParametersOfKeywords) {
    constexpr std::wstring_view kTwo = L"STRING STORAGE ( %[^(] ( %[^)]";
    constexpr std::wstring_view kOne = L"HELP TEXT ( %[^)]";
    constexpr std::array kCases{
        TextCase{L"STRING STORAGE(Orders(Notes))", kTwo, 2, L"Orders", L"Notes", 27},
        TextCase{L"STRING  STORAGE ( Orders ( Notes ) )", kTwo, 2, L"Orders ", L"Notes ", 33},
        TextCase{L"STRING STORAGE(Orders)", kTwo, 1, L"Orders)", L"", 22},
        TextCase{L"STRING STORAGE((Notes))", kTwo, 0, L"", L"", 15},
        TextCase{L"STRING STORAGE", kTwo, -1, L"", L"", 14},
        TextCase{L"STRING STOPPED", kTwo, 0, L"", L"", 10},
        TextCase{L"", kTwo, -1, L"", L"", 0},
        TextCase{L"HELP TEXT(\x65e5\x672c \xe4\x1d11e)", kOne, 1, L"\x65e5\x672c \xe4\x1d11e", L"", 15},
        TextCase{L"HELP TEXT()", kOne, 0, L"", L"", 10},
        TextCase{L"HELP TEXT( ", kOne, -1, L"", L"", 11},
        TextCase{L"STRING_DEF \"Not set\" x", L"STRING_DEF \"%[^\"]", 1, L"Not set", L"", 19},
        TextCase{L" (Due\nDate)", L" (%[^)\n] ) ", 1, L"Due", L"", 6},
        TextCase{L"x]y-z[", L"x%[]y-]%[z[]", 2, L"]y-", L"z[", 6},
        TextCase{L"abcxyz", L"%[a-c]%[^a-c]", 2, L"abc", L"xyz", 6},
        TextCase{L"  word next", L"%3s%s", 2, L"wor", L"d", 6},
        TextCase{L"50% off", L"%2[0-9]%% %[^.]", 2, L"50", L"off", 7},
        TextCase{L"50 % off", L"%2[0-9]%% %[^.]", 2, L"50", L"off", 8},
    };
    for (const TextCase& c : kCases) {
        std::wstring first = L"before";
        std::wstring second = L"before";
        const ScanResult result = ScanWide(c.text, c.format, &first, &second);
        const auto shown = ::testing::PrintToString(c.text);
        EXPECT_EQ(result.items, c.items) << shown;
        EXPECT_EQ(result.position, c.position) << shown;
        EXPECT_EQ(first, c.first) << shown;
        EXPECT_EQ(second, c.second) << shown;
    }
}

TEST(ScanWide, ClampsIntegersAndKeepsTheirBases) {
    struct Case {
        std::wstring_view text;
        std::wstring_view format;
        std::int32_t expected;
        std::size_t position;
    };

    constexpr std::array kCases{
        Case{L"HELPID ( 7 )", L"HELPID ( %li", 7, 10},
        Case{L"010", L"%li", 8, 3},
        Case{L"010", L"%ld", 10, 3},
        Case{L"08", L"%li", 0, 1},
        Case{L"-0x1F", L"%i", -31, 5},
        Case{L"0xg", L"%li", 0, 1},
        Case{L"0x", L"%li", 0, 1},
        Case{L"99999999999999999999", L"%ld", INT32_MAX, 20},
        Case{L"-99999999999", L"%li", INT32_MIN, 12},
        Case{L"0xffffffff", L"%li", INT32_MAX, 10},
        Case{L"12345", L"%3d", 123, 3},
    };
    for (const Case& c : kCases) {
        std::int32_t value = 99;
        const ScanResult result = ScanWide(c.text, c.format, &value);
        EXPECT_EQ(result.items, 1) << ::testing::PrintToString(c.text);
        EXPECT_EQ(value, c.expected) << ::testing::PrintToString(c.text);
        EXPECT_EQ(result.position, c.position) << ::testing::PrintToString(c.text);
    }
}

// Ten values of any kind, as ScanWide and as the C library read them.
struct Values {
    std::array<std::int32_t, 10> integers{};
    std::array<std::uint16_t, 10> shorts{};
    std::array<wchar_t, 10> characters{};
    std::array<std::wstring, 10> texts{};
    std::array<double, 10> reals{};

    bool operator==(const Values&) const = default;
};

// Conversions of one format, each by a letter: l %ld, i %li, h %hu, c %c, t text, r %lf.
struct Shape {
    const char* format;
    std::string_view kinds;
    std::vector<std::string> pieces;
};

std::vector<Shape> Shapes() {
    const std::vector<std::string> dates{"1", "12", "2024", "07", "31", "/", "-", ".", ":", " ", "  ", "0", "+3", "x"};
    const std::vector<std::string> spans{"1", "2.5", "08", ":", " days ", "h", "Mon", " ", "-3", ".", "12", "w ", "\t"};
    const std::vector<std::string> words{"A(B", "KEY (", "(", ")", " ", "Name", "KEY", "]", "\"", "7", "KEY(A(B)"};
    return {
        {"%ld %c %hu %c %hu %hu %c %hu %c %hu", "lchchhchch", dates},
        {"%ld%[^1234567890]%ld", "ltl", dates},
        {"%[^1234567890]%lf %lf %[^1234567890] %lf", "trrtr", spans},
        {"%[^1234567890] %lf %[^1234567890] %lf", "trtr", spans},
        {"%lf%[^1234567890]%lf %[^1234567890] %lf", "rtrtr", spans},
        {"KEY ( %[^(] ( %[^)]", "tt", words},
        {" %[^,(\"] %3s ( %li", "tti", words},
    };
}

ScanResult ScanOurs(const std::string& text, const Shape& shape, Values& values) {
    std::vector<ScanOutput> outputs;
    for (std::size_t i = 0; i < shape.kinds.size(); ++i) {
        switch (shape.kinds[i]) {
        case 'l':
        case 'i':
            outputs.emplace_back(&values.integers[i]);
            break;
        case 'h':
            outputs.emplace_back(&values.shorts[i]);
            break;
        case 'c':
            outputs.emplace_back(&values.characters[i]);
            break;
        case 't':
            outputs.emplace_back(&values.texts[i]);
            break;
        default:
            outputs.emplace_back(&values.reals[i]);
        }
    }
    return ScanWideTo(WidenAscii(text), WidenAscii(shape.format), outputs);
}

// "%hu" of the C library wraps: it reads those numbers as longs instead, and the test clamps them.
std::string FormatForTheirs(const Shape& shape) {
    std::string format = shape.format;
    for (std::size_t at = format.find("hu"); at != std::string::npos; at = format.find("hu", at)) {
        format.replace(at, 2, "ld");
    }
    return format + "%n";
}

// The C library's items, and the position through %n when the whole format was read, else -1.
std::pair<int, int> ScanTheirs(const std::string& text, const Shape& shape, Values& values) {
    using Cell = std::array<char, 128>;
    std::array<Cell, 10> cells{};
    int end = -1;
    std::array<void*, 11> targets{};
    std::transform(cells.begin(), cells.end(), targets.begin(), [](Cell& cell) -> void* { return cell.data(); });
    targets[shape.kinds.size()] = &end;
    const int items =
        std::sscanf(text.c_str(), FormatForTheirs(shape).c_str(), targets[0], targets[1], targets[2], targets[3],
                    targets[4], targets[5], targets[6], targets[7], targets[8], targets[9], targets[10]);
    for (std::size_t i = 0; i < shape.kinds.size(); ++i) {
        const char* cell = cells[i].data();
        if (shape.kinds[i] == 't') {
            values.texts[i] = WidenAscii(cell);
        } else if (shape.kinds[i] == 'r') {
            std::memcpy(&values.reals[i], cell, sizeof(double));
        } else if (shape.kinds[i] == 'c') {
            values.characters[i] = static_cast<wchar_t>(*cell);
        } else {
            long wide = 0;
            std::memcpy(&wide, cell, sizeof(wide));
            if (shape.kinds[i] == 'h') {
                values.shorts[i] = static_cast<std::uint16_t>(std::clamp<long>(wide, INT16_MIN, UINT16_MAX));
            } else {
                values.integers[i] = static_cast<std::int32_t>(std::clamp<long>(wide, INT32_MIN, INT32_MAX));
            }
        }
    }
    return {items, end};
}

TEST(ScanWide, AgreesWithTheCLibraryOnAscii) {
    RandomSource random(21);
    for (const Shape& shape : Shapes()) {
        std::array<int, 12> seen{};
        for (int round = 0; round < 30000; ++round) {
            const std::string text = random.Join(shape.pieces, 14);
            Values ours;
            Values theirs;
            const ScanResult result = ScanOurs(text, shape, ours);
            const auto [items, end] = ScanTheirs(text, shape, theirs);
            ASSERT_EQ(result.items, items) << shape.format << " on '" << text << "'";
            ASSERT_EQ(ours, theirs) << shape.format << " on '" << text << "'";
            ASSERT_TRUE(end < 0 || result.position == static_cast<std::size_t>(end))
                << shape.format << " on '" << text << "'";
            ++seen[static_cast<std::size_t>(items + 1)];
        }
        // The random texts reach every number of items.
        for (std::size_t items = 1; items <= shape.kinds.size(); ++items) {
            EXPECT_GT(seen[items + 1], 0) << shape.format << ", " << items;
        }
    }
}

} // namespace
} // namespace Kestrona::Platform
