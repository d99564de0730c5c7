#include "platform/random_text.h"

#include <kestrona/unicode.h>

#include <gtest/gtest.h>
#include <unicode/unistr.h>
#include <unicode/ustring.h>

#include <algorithm>

namespace Kestrona {
namespace {

using Testing::RandomSource;

// Characters at the borders of every range that matters, surrogates among them.
std::wstring RandomWide(RandomSource& random, std::size_t most) {
    static const std::vector<std::wstring> kPieces{L"a",        L"\x7f",   L"\x80",   L"\x7ff",   L"\x800",
                                                   L"\xd7ff",   L"\xd800", L"\xdbff", L"\xdc00",  L"\xdfff",
                                                   L"\xe000",   L"\xfffd", L"\xffff", L"\x10000", L"\x1d11e",
                                                   L"\x10ffff", L"\xe000", L"\xdc00", L"\xd800",  L"\x10000"};
    std::wstring text = random.Join(kPieces, most);
    if (random.Below(4) == 0) {
        text += static_cast<wchar_t>(random.Below(0x110000));
    }
    return text;
}

icu::UnicodeString ToIcu(const std::wstring& text) {
    icu::UnicodeString result;
    for (const wchar_t c : text) {
        result.append(static_cast<UChar32>(c));
    }
    return result;
}

std::u16string UnitsOf(const icu::UnicodeString& text) {
    return {text.getBuffer(), static_cast<std::size_t>(text.length())};
}

bool IcuAccepts(const std::string& bytes) {
    UErrorCode error = U_ZERO_ERROR;
    u_strFromUTF8(nullptr, 0, nullptr, bytes.data(), static_cast<std::int32_t>(bytes.size()), &error);
    return error != U_INVALID_CHAR_FOUND;
}

int Sign(int value) {
    return (value > 0) - (value < 0);
}

TEST(Utf16, AgreesWithIcuOnConversionLengthAndOrder) {
    RandomSource random(1);
    for (int round = 0; round < 20000; ++round) {
        const std::wstring left = RandomWide(random, 6);
        const std::wstring right = random.Below(2) == 0 ? RandomWide(random, 6) : left + RandomWide(random, 2);
        const icu::UnicodeString icu_left = ToIcu(left);
        const icu::UnicodeString icu_right = ToIcu(right);
        ASSERT_EQ(ToUtf16(left), UnitsOf(icu_left));
        std::string utf8;
        ASSERT_EQ(ToUtf8(left), icu_left.toUTF8String(utf8));
        ASSERT_EQ(Utf16Length(left), UnitsOf(icu_left).size());
        ASSERT_EQ(Sign(CompareUtf16(left, right)), Sign(icu_left.compare(icu_right)));
        ASSERT_EQ(ToUtf16(FromUtf16(UnitsOf(icu_left))), UnitsOf(icu_left));
        ASSERT_EQ(FromUtf16(UnitsOf(icu_left)).size(), static_cast<std::size_t>(icu_left.countChar32()));
    }
}

TEST(Utf16, WhatIsNoCodePointCountsAsTheReplacementCharacter) {
    const std::wstring text{static_cast<wchar_t>(0x110000), static_cast<wchar_t>(0xffffffff),
                            static_cast<wchar_t>(0x80000000)};
    EXPECT_EQ(ToUtf16(text), u"\xfffd\xfffd\xfffd");
    EXPECT_EQ(ToUtf8(text), "\xef\xbf\xbd\xef\xbf\xbd\xef\xbf\xbd");
    EXPECT_EQ(Utf16Length(text), 3U);
    EXPECT_EQ(CompareUtf16(text, L"\xfffd\xfffd\xfffd"), 0);
    EXPECT_EQ(FoldCase(text), text);
    EXPECT_EQ(UpperCase(text), text);
}

TEST(Utf16, CutIsTheLongestBeginningThatFitsAndKeepsPairsWhole) {
    RandomSource random(2);
    for (int round = 0; round < 20000; ++round) {
        const std::wstring text = RandomWide(random, 6);
        const std::u16string units = ToUtf16(text);
        const std::size_t most = random.Below(10);
        std::size_t expected = std::min(most, units.size());
        if (expected > 0 && expected < units.size() && U16_IS_LEAD(units[expected - 1]) &&
            U16_IS_TRAIL(units[expected])) {
            --expected;
        }
        ASSERT_EQ(ToUtf16(CutUtf16(text, most)), units.substr(0, expected)) << most;
    }
}

TEST(Utf8, DecodesDamagedBytesAsIcuDoes) {
    static const std::vector<std::string> kPieces{"a",    "\x7f", "\x80", "\x8f", "\x90", "\x9f", "\xa0", "\xbf",
                                                  "\xc0", "\xc1", "\xc2", "\xdf", "\xe0", "\xe1", "\xed", "\xef",
                                                  "\xf0", "\xf1", "\xf4", "\xf5", "\xff", "\xbb", "\xe2", "\xf3"};
    RandomSource random(4);
    for (int round = 0; round < 50000; ++round) {
        const std::string bytes = random.Join(kPieces, 6);
        ASSERT_EQ(ToUtf16(FromUtf8(bytes)), UnitsOf(icu::UnicodeString::fromUTF8(bytes)));

        // The offset is the length of the longest well-formed beginning.
        std::size_t expected = bytes.size();
        while (!IcuAccepts(bytes.substr(0, expected))) {
            --expected;
        }
        std::size_t offset = 99;
        ASSERT_EQ(IsValidUtf8(bytes, &offset), expected == bytes.size());
        ASSERT_EQ(offset, expected);
    }
}

TEST(LetterCase, FoldsAndRaisesSingleCharacters) {
    struct Case {
        std::wstring_view text;
        std::wstring_view folded;
        std::wstring_view upper;
    };

    // Characters whose full forms are longer than one character stay one character.
    for (const Case& c : {Case{L"Ab1z", L"ab1z", L"AB1Z"}, Case{L"\xc4\xe4", L"\xe4\xe4", L"\xc4\xc4"},
                          Case{L"\x3a3\x3c3\x3c2", L"\x3c3\x3c3\x3c3", L"\x3a3\x3a3\x3a3"},
                          Case{L"\x10400", L"\x10428", L"\x10400"}, Case{L"\xdf", L"\xdf", L"\xdf"},
                          Case{L"\x130\x131", L"\x130\x131", L"\x130I"}, Case{L"\x212a", L"k", L"\x212a"}}) {
        EXPECT_EQ(FoldCase(c.text), c.folded);
        EXPECT_EQ(UpperCase(c.text), c.upper);
        EXPECT_TRUE(EqualIgnoringCase(c.text, c.folded));
    }
    EXPECT_FALSE(EqualIgnoringCase(L"a", L"ab") || EqualIgnoringCase(L"a", L"b"));
}

TEST(LocaleIdFromName, KnowsPosixAndHyphenatedNames) {
    const std::pair<std::string, std::uint32_t> cases[] = {{"de_DE.UTF-8", 0x407},
                                                           {"de-DE", 0x407},
                                                           {"de_DE@euro", 0x407},
                                                           {"en_GB.utf8", 0x809},
                                                           {"pt-BR", 0x416},
                                                           {"fr", 0x0c},
                                                           {"C", 0x7f},
                                                           {"C.UTF-8", 0x7f},
                                                           {"POSIX", 0x7f},
                                                           {"", 0x7f},
                                                           {"xx_YY", 0},
                                                           {"nonsense", 0},
                                                           {"ja_JP.eucJP", 0x411},
                                                           {std::string(100000, 'q'), 0}};
    for (const auto& [name, id] : cases) {
        EXPECT_EQ(LocaleIdFromName(name), id) << name.substr(0, 20);
    }
}

} // namespace
} // namespace Kestrona
