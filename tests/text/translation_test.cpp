// The translation table and the writers of lists.
#include "fixtures/recording_services.h"
#include "fixtures/scratch_files.h"
#include "text/translation_writers.h"

#include <kestrona/process.h>
#include <kestrona/store.h>
#include <kestrona/translation.h>
#include <kestrona/translation_writer.h>
#include <kestrona/unicode.h>

#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <random>
#include <vector>

namespace Kestrona {

namespace {

constexpr auto kWhole = TranslationEntryType::WholeText;
constexpr auto kInside = TranslationEntryType::Occurrences;

class Translation : public testing::Test {
    Fixtures::FreshProcess process_;
};

TEST_F(Translation, EntriesApplyInTheOrderTheyCame) {
    KSDLL_SetTranslationEntry(L"red", L"rot", kWhole, L"Colours");
    KSDLL_SetTranslationEntry(L"red", L"feuerrot", kWhole, L"Colours");
    KSDLL_SetTranslationEntry(L"blue", L" ", kWhole, L"Colours");
    KSDLL_SetTranslationEntry(L"green", L"", kWhole, L"Colours");
    KSDLL_SetTranslationEntry(L"grey", L"grau", static_cast<TranslationEntryType>(3), L"Colours");
    KSDLL_SetTranslationEntry(L"big ", L"gross ", kInside, L"Sizes");
    KSDLL_SetTranslationEntry(L"gross red", L"gewaltig", kWhole, L"Sizes");
    KSDLL_SetTranslationEntry(L"gross ", L"riesig ", kInside, L"Sizes");

    struct Case {
        const wchar_t* text;
        const wchar_t* section;
        const wchar_t* expected;
    };

    for (const Case& c :
         {Case{L"red", L"Colours", L"rot"}, Case{L"blue", L"Colours", L"blue"}, Case{L"green", L"Colours", L""},
          Case{L"grey", L"Colours", L"grey"}, Case{L"red", L"colours", L"red"}, Case{L"big red", L"Sizes", L"gewaltig"},
          Case{L"big big", L"Sizes", L"riesig big"}, Case{L"", L"Sizes", L""}}) {
        EXPECT_EQ(KSDLL_CheckTranslationEntryT(c.text, c.section), c.expected) << ::testing::PrintToString(c.text);
        std::array<wchar_t, 32> buffer{};
        std::wstring(c.text).copy(buffer.data(), buffer.size() - 1);
        KSDLL_CheckTranslationEntry(buffer.data(), c.section);
        EXPECT_EQ(std::wstring(buffer.data()), c.expected);
    }
    Data::MemoryResident::CreateMemoryResidentData()->FreeDbMemory();
    EXPECT_EQ(KSDLL_CheckTranslationEntryT(L"red", L"Colours"), L"red");
}

// Against the table written out plainly, over few letters so that much fits.
TEST_F(Translation, AnyTableTranslatesAsAPlainScanDoes) {
    struct Entry {
        std::wstring text;
        std::wstring translation;
        TranslationEntryType type;
    };

    std::mt19937 generator(64);
    const auto word = [&] {
        std::wstring text;
        for (auto length = generator() % 3; length > 0; --length) {
            text += generator() % 2 == 0 ? L'a' : L'b';
        }
        return text;
    };
    for (int round = 0; round < 300; ++round) {
        FreeTranslationTable();
        std::vector<Entry> entries;
        for (auto count = generator() % 8; count > 0; --count) {
            entries.push_back({word(), word(), round % 2 != 0 && generator() % 2 == 0 ? kInside : kWhole});
            KSDLL_SetTranslationEntry(entries.back().text, entries.back().translation, entries.back().type, L"S");
        }
        for (const wchar_t* text : {L"", L"a", L"b", L"ab", L"ba", L"aa", L"abab", L"bbaab"}) {
            std::wstring expected = text;
            for (const Entry& entry : entries) {
                if (entry.type == kInside) {
                    expected = KSDLL_TStringSubstitute(expected, entry.text, entry.translation);
                } else if (expected == entry.text) {
                    expected = entry.translation;
                    break;
                }
            }
            ASSERT_EQ(KSDLL_CheckTranslationEntryT(text, L"S"), expected) << round;
        }
    }
}

class TranslationLists : public Translation {
protected:
    std::wstring TextOf(const char* file) {
        const std::string bytes = folder_.Read(file);
        std::u16string units;
        for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
            units += static_cast<char16_t>(static_cast<unsigned char>(bytes[i]) |
                                           static_cast<unsigned char>(bytes[i + 1]) << 8);
        }
        EXPECT_EQ(bytes.size() % 2, 0U);
        return FromUtf16(units);
    }

private:
    Testing::CurrentFolder folder_;
};

constexpr const wchar_t* kBanner = L"Format :- 'Original string'   'New String'\n\n"
                                   L"If 'New String' is ' ' then no translation is performed\n\n"
                                   L"Note that the ' character above is used instead of the double quote character\n"
                                   L"to prevent translation of these comments !\n\n";

TEST_F(TranslationLists, HoldTheEntriesThatTheWritersWereGiven) {
    Text::InstallTranslationWriters();
    const std::wstring odd{L'a', L'\0', static_cast<wchar_t>(0xd800), static_cast<wchar_t>(0x1f600)};
    TranslationWriter_NewSection(L"Formats");
    TranslationWriter_AddEntry(L"Orders");
    TranslationWriter_AddEntry(std::wstring(L"Orders"));
    TranslationWriter_AddEntry(L"");
    TranslationWriter_AddEntry(std::wstring(), 0);
    TranslationWriter_AddEntry(static_cast<const wchar_t*>(nullptr), 0);
    TranslationWriter_AddEntry(L"ab", 2);
    TranslationWriter_AddEntry(L"ab", 3);
    TranslationWriter_AddEntry(std::wstring(1, static_cast<wchar_t>(0x1f600)), 2);
    TranslationWriter_AddEntry(odd);
    DBTranslationWriter_NewSection(L"Data");
    DBTranslationWriter_AddEntry(L"Steel", 1);
    TranslationWriter_Close();
    DBTranslationWriter_Close();
    TranslationWriter_AddEntry(L"too late");
    DBTranslationWriter_AddEntry(L"too late");
    DBTranslationWriter_Close();

    const std::wstring mark = L"\xfeff";
    EXPECT_EQ(TextOf("KSSERVER.LST"),
              mark + L"Kestrona Translation script file for KESTRONA.KSTDF.\n\n" + kBanner +
                  L"#SECTION Formats\n\"Orders\"\n\" \"\n\n\"Orders\"\n\" \"\n\n\"\"\n\" \"\n\n\"ab\"\n\" \"\n\n\"" +
                  std::wstring(1, static_cast<wchar_t>(0x1f600)) + L"\"\n\" \"\n\n\"" + odd + L"\"\n\" \"\n\n");
    EXPECT_EQ(TextOf("KS_PDB.LST"), mark + L"Kestrona Translation script file for DataBase Files.\n\n" + kBanner +
                                        L"#SECTION Data\n\"Steel\"\n\" \"\n\n");
}

TEST_F(TranslationLists, ANewLoadBeginsThemAgain) {
    Text::InstallTranslationWriters();
    TranslationWriter_AddEntry(L"first");
    Text::InstallTranslationWriters();
    TranslationWriter_AddEntry(L"second");
    Text::RemoveTranslationWriters();
    EXPECT_EQ(TextOf("KSSERVER.LST").find(L"first"), std::wstring::npos);
    EXPECT_NE(TextOf("KSSERVER.LST").find(L"second"), std::wstring::npos);
}

TEST_F(TranslationLists, WritersWithoutAFileTakeAnything) {
    TranslationWriter_NewSection(L"Formats");
    TranslationWriter_AddEntry(L"Orders", 1);
    DBTranslationWriter_AddEntry(std::wstring(L"Orders"));
    TranslationWriter_Close();
    DBTranslationWriter_Close();
    EXPECT_TRUE(std::filesystem::is_empty("."));

    std::filesystem::create_directory("KSSERVER.LST"); // so that no file can be opened
    Text::InstallTranslationWriters();
    TranslationWriter_AddEntry(L"Orders");
    TranslationWriter_Close();
    EXPECT_TRUE(std::filesystem::is_directory("KSSERVER.LST"));
}

} // namespace

} // namespace Kestrona
