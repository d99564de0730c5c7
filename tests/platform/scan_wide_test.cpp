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

// Beside what the C library shows: wide texts, and where a text ends to fit.
TEST(ScanWide, ReadsTheParametersOfKeywords) {
    struct Case {
        std::wstring_view text;
        std::wstring_view format;
        std::int32_t items;
        std::wstring_view texts; // the first one and, behind a bar, the second one
        std::size_t position;
    };

    constexpr std::wstring_view kTwo = L"STRING STORAGE ( %[^(] ( %[^)]";
    for (const Case& c :
         {Case{L"STRING  STORAGE ( Orders ( Notes ) )", kTwo, 2, L"Orders |Notes ", 33},
          Case{L"STRING STORAGE(Orders)", kTwo, 1, L"Orders)|", 22},
          Case{L"STRING STORAGE((Notes))", kTwo, 0, L"|", 15}, Case{L"STRING STORAGE", kTwo, -1, L"|", 14},
          Case{L"STRING STOPPED", kTwo, 0, L"|", 10},
          Case{L"HELP TEXT(\x65e5\x672c \xe4\x1d11e)", L"HELP TEXT ( %[^)]", 1, L"\x65e5\x672c \xe4\x1d11e|", 15},
          Case{L" (Due\nDate)", L" (%[^)\n] ) ", 1, L"Due|", 6}, Case{L"x]y-z[", L"x%[]y-]%[z[]", 2, L"]y-|z[", 6},
          Case{L"abcxyz", L"%[a-c]%[^a-c]", 2, L"abc|xyz", 6},
          Case{L"50 % off", L"%2[0-9]%% %[^.]", 2, L"50|off", 8}}) {
        std::wstring first = L"before";
        std::wstring second = L"before";
        const ScanResult result = ScanWide(c.text, c.format, &first, &second);
        const auto shown = ::testing::PrintToString(c.text);
        EXPECT_EQ(result.items, c.items) << shown;
        EXPECT_EQ(result.position, c.position) << shown;
        EXPECT_EQ(first + L"|" + second, c.texts) << shown;
    }
    std::int32_t value = 99;
    EXPECT_EQ(ScanWide(L"HELPID ( 0xg", L"HELPID ( %li", &value).position, 10U); // the C library takes the x as well
    EXPECT_EQ(value, 0);
    EXPECT_EQ(ScanWide(L"12345", L"%3d", &value).position, 3U);
    EXPECT_EQ(value, 123);
}

// What two readers make of a text, as text: the items, and the values one by one. Conversions of one format each have a
// letter: l %ld, i %li, h %hu, c %c, t text, r %lf.
struct Shape {
    const char* format;
    std::string_view kinds;
    std::vector<std::string> pieces;
};

std::vector<Shape> Shapes() {
    const std::vector<std::string> dates{"1", "12", "2024", "07", "31", "/", "-", ".", ":", " ", "  ", "0", "+3", "x"};
    const std::vector<std::string> spans{"1", "2.5", "08", ":", " days ", "h", "Mon", " ", "-3", ".", "12", "w ", "\t"};
    const std::vector<std::string> words{"A(B", "KEY (", "(", ")",        " ",    "Name", "KEY",
                                         "]",   "\"",    "7", "KEY(A(B)", "0x1F", "08",   "-99999999999"};
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

struct Scanned {
    std::int32_t items = 0;
    std::wstring values;
    std::size_t position = 0; // the largest number where it is not told
};

Scanned ScanOurs(const std::string& text, const Shape& shape) {
    std::array<std::int32_t, 10> integers{};
    std::array<std::uint16_t, 10> shorts{};
    std::array<wchar_t, 10> characters{};
    std::array<std::wstring, 10> texts{};
    std::array<double, 10> reals{};
    std::vector<ScanOutput> outputs;
    for (std::size_t i = 0; i < shape.kinds.size(); ++i) {
        const char kind = shape.kinds[i];
        outputs.push_back(kind == 't'   ? ScanOutput(&texts[i])
                          : kind == 'r' ? ScanOutput(&reals[i])
                          : kind == 'c' ? ScanOutput(&characters[i])
                          : kind == 'h' ? ScanOutput(&shorts[i])
                                        : ScanOutput(&integers[i]));
    }
    const ScanResult result = ScanWideTo(WidenAscii(text), WidenAscii(shape.format), outputs);
    Scanned found{result.items, {}, result.position};
    for (std::size_t i = 0; i < shape.kinds.size(); ++i) {
        const std::int32_t integer = shape.kinds[i] == 'h' ? shorts[i] : integers[i];
        found.values += texts[i] + characters[i] + std::to_wstring(integer) + std::to_wstring(reals[i]) + L'|';
    }
    return found;
}

// By the C library, whose "%hu" wraps: it reads those numbers as longs instead, which are clamped here.
Scanned ScanTheirs(const std::string& text, const Shape& shape) {
    std::string format = shape.format;
    for (std::size_t at = format.find("hu"); at != std::string::npos; at = format.find("hu", at)) {
        format.replace(at, 2, "ld");
    }
    std::array<std::array<char, 128>, 10> cells{};
    int end = -1;
    std::array<void*, 11> to{};
    std::ranges::transform(cells, to.begin(), [](auto& cell) -> void* { return cell.data(); });
    to[shape.kinds.size()] = &end;
    Scanned found{std::sscanf(text.c_str(), (format + "%n").c_str(), to[0], to[1], to[2], to[3], to[4], to[5], to[6],
                              to[7], to[8], to[9], to[10]),
                  {},
                  static_cast<std::size_t>(end)};
    for (std::size_t i = 0; i < shape.kinds.size(); ++i) {
        const char kind = shape.kinds[i];
        long integer = 0;
        double real = 0.0;
        if (kind == 'r') {
            std::memcpy(&real, cells[i].data(), sizeof real);
        } else if (kind != 't' && kind != 'c') {
            std::memcpy(&integer, cells[i].data(), sizeof integer);
            integer = kind == 'h' ? std::clamp<long>(integer, INT16_MIN, UINT16_MAX) & UINT16_MAX
                                  : std::clamp<long>(integer, INT32_MIN, INT32_MAX);
        }
        const std::string words = kind == 't' ? cells[i].data() : "";
        found.values += WidenAscii(words) + static_cast<wchar_t>(kind == 'c' ? cells[i][0] : '\0') +
                        std::to_wstring(integer) + std::to_wstring(real) + L'|';
    }
    return found;
}

TEST(ScanWide, AgreesWithTheCLibraryOnAscii) {
    RandomSource random(21);
    for (const Shape& shape : Shapes()) {
        std::array<int, 12> seen{};
        for (int round = 0; round < 30000; ++round) {
            const std::string text = random.Join(shape.pieces, 14);
            const Scanned ours = ScanOurs(text, shape);
            const Scanned theirs = ScanTheirs(text, shape);
            ASSERT_EQ(ours.items, theirs.items) << shape.format << " on '" << text << "'";
            ASSERT_EQ(ours.values, theirs.values) << shape.format << " on '" << text << "'";
            ASSERT_TRUE(theirs.position > text.size() || ours.position == theirs.position)
                << shape.format << " on '" << text << "'";
            ++seen[static_cast<std::size_t>(ours.items) + 1];
        }
        // The random texts reach every number of items.
        for (std::size_t items = 1; items <= shape.kinds.size(); ++items) {
            EXPECT_GT(seen[items + 1], 0) << shape.format << ", " << items;
        }
    }
}

} // namespace
} // namespace Kestrona::Platform
