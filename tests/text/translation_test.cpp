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
#include <cstring>
#include <filesystem>
#include <random>
#include <tuple>
#include <vector>

namespace Kestrona {

namespace {

constexpr auto kWhole = TranslationEntryType::WholeText;
constexpr auto kInside = TranslationEntryType::Occurrences;

class Translation : public testing::Test {
    Fixtures::FreshProcess process_;
};

// In which order they do is shown by random tables.
TEST_F(Translation, EntriesApplyInTheirSection) {
    KSDLL_SetTranslationEntry(L"red", L"rot", kWhole, L"Colours");
    KSDLL_SetTranslationEntry(L"blue", L" ", kWhole, L"Colours");
    KSDLL_SetTranslationEntry(L"green", L"", kWhole, L"Colours");
    KSDLL_SetTranslationEntry(L"grey", L"grau", static_cast<TranslationEntryType>(3), L"Colours");
    KSDLL_SetTranslationEntry(L"big ", L"gross ", kInside, L"Sizes");
    KSDLL_SetTranslationEntry(L"gross red", L"gewaltig", kWhole, L"Sizes");
    for (const auto& [text, section, expected] : {std::tuple{L"red", L"Colours", L"rot"},
                                                  {L"blue", L"Colours", L"blue"},
                                                  {L"green", L"Colours", L""},
                                                  {L"grey", L"Colours", L"grey"},
                                                  {L"red", L"colours", L"red"},
                                                  {L"big red", L"Sizes", L"gewaltig"}}) {
        EXPECT_EQ(KSDLL_CheckTranslationEntryT(text, section), expected);
        std::array<wchar_t, 32> buffer{};
        std::wstring(text).copy(buffer.data(), buffer.size() - 1);
        KSDLL_CheckTranslationEntry(buffer.data(), section);
        EXPECT_EQ(std::wstring(buffer.data()), expected);
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
        std::u16string units(bytes.size() / 2, u'\0');
        std::memcpy(units.data(), bytes.data(), bytes.size());
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
    TranslationWriter_NewSection(L"Formats");
    TranslationWriter_AddEntry(L"Orders");
    TranslationWriter_AddEntry(L""); // nothing to translate
    TranslationWriter_AddEntry(std::wstring(), 0);
    TranslationWriter_AddEntry(static_cast<const wchar_t*>(nullptr), 0);
    TranslationWriter_AddEntry(L"ab", 2);
    TranslationWriter_AddEntry(L"ab", 3); // too short
    TranslationWriter_AddEntry(std::wstring{wchar_t{0x1f600}}, 2);
    DBTranslationWriter_NewSection(L"Data");
    DBTranslationWriter_AddEntry(L"Steel", 1);
    DBTranslationWriter_AddEntry(L"Iron");
    TranslationWriter_Close();
    DBTranslationWriter_Close();
    TranslationWriter_AddEntry(L"too late");
    DBTranslationWriter_Close();
    const std::wstring head = L"\xfeffKestrona Translation script file for ";
    EXPECT_EQ(TextOf("KSSERVER.LST"), head + L"KESTRONA.KSTDF.\n\n" + kBanner +
                                          L"#SECTION Formats\n\"Orders\"\n\" \"\n\n\"\"\n\" \"\n\n"
                                          L"\"ab\"\n\" \"\n\n\"\x1f600\"\n\" \"\n\n");
    EXPECT_EQ(TextOf("KS_PDB.LST"),
              head + L"DataBase Files.\n\n" + kBanner + L"#SECTION Data\n\"Steel\"\n\" \"\n\n\"Iron\"\n\" \"\n\n");
}

TEST_F(TranslationLists, ANewLoadBeginsThemAgain) {
    TranslationWriter_AddEntry(L"before there is a file");
    Text::InstallTranslationWriters();
    TranslationWriter_AddEntry(L"first");
    Text::InstallTranslationWriters();
    TranslationWriter_AddEntry(L"second");
    Text::RemoveTranslationWriters();
    EXPECT_EQ(TextOf("KSSERVER.LST").find(L"first"), std::wstring::npos);
    EXPECT_NE(TextOf("KSSERVER.LST").find(L"second"), std::wstring::npos);
    std::filesystem::remove("KSSERVER.LST");
    std::filesystem::create_directory("KSSERVER.LST"); // so that no file can be opened
    Text::InstallTranslationWriters();
    TranslationWriter_AddEntry(L"lost");
    TranslationWriter_Close();
    EXPECT_TRUE(std::filesystem::is_directory("KSSERVER.LST"));
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
