// Lists of texts to translate: written, filled in, read back.
#include "fixtures/recording_services.h"
#include "fixtures/scratch_files.h"
#include "text/translation_writers.h"

#include <kestrona/execution_state.h>
#include <kestrona/host/native_config.h>
#include <kestrona/host/translation_list.h>
#include <kestrona/translation.h>
#include <kestrona/translation_writer.h>
#include <kestrona/unicode.h>

#include <gtest/gtest.h>

namespace Kestrona::Host {

namespace {

std::string Utf16Bytes(std::wstring_view text, bool big_endian) {
    std::string bytes;
    for (const char16_t unit : ToUtf16(L"\xfeff" + std::wstring(text))) {
        const char low = static_cast<char>(unit & 0xff);
        const char high = static_cast<char>(unit >> 8);
        bytes += big_endian ? high : low;
        bytes += big_endian ? low : high;
    }
    return bytes;
}

std::wstring Described(const TranslationList& list) {
    std::wstring text;
    for (const TranslationListEntry& entry : list.entries) {
        text +=
            std::to_wstring(entry.line) + L' ' + entry.section + L'|' + entry.text + L'|' + entry.translation + L";";
    }
    for (const Diagnostic& diagnostic : list.diagnostics) {
        text += L"!" + std::to_wstring(diagnostic.line);
    }
    return text;
}

std::wstring Parsed(std::wstring_view text) {
    return Described(ParseTranslationList(ToUtf8(text), "list"));
}

TEST(TranslationList, EveryEncodingReadsAlike) {
    const std::wstring text = L"Remark\n\n#SECTION F\xfcr\n\"A\"\n\"\x1f600\"\n\n";
    const std::wstring expected = L"4 F\xfcr|A|\x1f600;";
    std::wstring with_returns;
    for (const wchar_t c : text) {
        with_returns += c == L'\n' ? L"\r\n" : std::wstring(1, c);
    }
    for (const std::wstring& each : {text, with_returns}) {
        for (const std::string& bytes : {Utf16Bytes(each, false), Utf16Bytes(each, true), ToUtf8(each),
                                         "\xef\xbb\xbf" + ToUtf8(each), Utf16Bytes(each, false) + 'x'}) {
            EXPECT_EQ(Described(ParseTranslationList(bytes, "list")), expected);
        }
    }
}

TEST(TranslationList, DamagedEntriesAreLeftOutAndTold) {
    struct Case {
        const wchar_t* text;
        const wchar_t* expected;
    };

    for (const Case& c : {Case{L"", L""}, Case{L"\"", L"!1"}, Case{L"\"A\"", L"!1"}, Case{L"\"A\"\n\"", L"!1"},
                          Case{L"\"A\"\n\"B\"", L"1 |A|B;"}, Case{L"\"A\"\n\"B\"\n\"C\"\n\"D\"", L"1 |A|B;3 |C|D;"},
                          Case{L"\"A\"\n\"B\n\n\"C\"\n\"D\"\n\n", L"!14 |C|D;"}, // the translation lost its quote
                          Case{L"\"A\n\"B\"\n\n\"C\"\n\"D\"\n\n", L"!14 |C|D;"}, // the text did
                          Case{L"\"A\"\n\n#SECTION S\n\"C\"\n\"D\"\n\n", L"!14 S|C|D;"},
                          Case{L"\"A\"x\"\n\"B\" \"\"\n\n", L"1 |A\"x|B\" \";"},
                          Case{L"\"two\n\nlines\"\n\"zwei\n\nZeilen\"\n\n", L"1 |two\n\nlines|zwei\n\nZeilen;"},
                          Case{L"x\"A\"\n\"\"\n\"\"\n", L"2 ||;"}}) {
        const std::wstring found = Parsed(c.text);
        std::wstring expected = c.expected;
        if (expected.starts_with(L"!1") && expected.size() > 2) { // diagnostics stand behind the entries
            expected = expected.substr(2) + L"!1";
        }
        EXPECT_EQ(found, expected) << ::testing::PrintToString(c.text);
    }
}

TEST(TranslationList, LongListsTakeNoLonger) {
    std::string open;
    for (int i = 0; i < 200000; ++i) {
        open += "\"A\n\n";
    }
    EXPECT_EQ(ParseTranslationList(open, "list").diagnostics.size(), 200000U);
    EXPECT_EQ(ParseTranslationList(std::string(1 << 20, '"'), "list").diagnostics.size(), 1U);

    // Each entry names its section, so long names are cut off.
    std::string entries = "#SECTION " + std::string(1 << 20, 's') + '\n';
    for (int i = 0; i < 100000; ++i) {
        entries += "\"\"\n\"\"\n";
    }
    const TranslationList list = ParseTranslationList(entries, "list");
    ASSERT_EQ(list.entries.size(), 100000U);
    EXPECT_EQ(list.entries.back().section, std::wstring(256, L's'));
    EXPECT_EQ(list.diagnostics.size(), 1U);
}

TEST(TranslationList, WhatAWriterListsReadsBackAndTranslates) {
    const Fixtures::FreshProcess process;
    const Testing::ScratchFolder folder;
    const std::vector<std::wstring> texts{L"Orders",
                                          L"say \"no\"",
                                          L"two\nlines",
                                          std::wstring(1 << 20, L'x'),
                                          std::wstring{L'a', L'\0', static_cast<wchar_t>(0xdc00)},
                                          L"#SECTION x"};
    TranslationStreamWriter writer(folder.WidePath("list.lst"));
    writer.NewSection(L"Texts");
    for (const std::wstring& text : texts) {
        writer.AddEntry(text);
    }
    writer.Close();

    auto list = ReadTranslationListFile(folder.Path("list.lst"));
    ASSERT_TRUE(list);
    EXPECT_FALSE(ReadTranslationListFile(folder.Path("none.lst")));
    ASSERT_EQ(list->entries.size(), texts.size());
    EXPECT_TRUE(list->diagnostics.empty());
    EXPECT_EQ(ApplyTranslationList(*list), 0U); // nothing is filled in
    for (std::size_t i = 0; i < texts.size(); ++i) {
        EXPECT_EQ(list->entries[i].text, texts[i]);
        list->entries[i].translation = L"Text " + std::to_wstring(i);
    }
    list->entries[0].translation.clear();
    EXPECT_EQ(ApplyTranslationList(*list), texts.size() - 1);
    EXPECT_EQ(KSDLL_CheckTranslationEntryT(texts[0], L"Texts"), texts[0]);
    EXPECT_EQ(KSDLL_CheckTranslationEntryT(texts[2], L"Texts"), L"Text 2");
}

TEST(TranslationList, ALoadedSourceListsEachOfItsTextsOnce) {
    constexpr const char* kSource = R"(
table Colours { "Red" = 1 "Green" = 2 "Red" = 3 }
define Limit = 5
format Product "Products" {
    key Number
    field Number : INTEGER | UNIQUE
    field Colour : REFERENCE | TABLE(Colours)
}
format Order {
    key Number
    field Number : INTEGER | UNIQUE
    field Price : MATRIX | REAL | AUTO DIMENSION(Article,Order(Number),For,Product(Number))
}
)";
    const Fixtures::FreshProcess process;
    const Testing::CurrentFolder folder;
    ExecutionState::Instance().set_ExtractTranslations(true);
    Text::InstallTranslationWriters();
    const auto store = Data::MemoryResident::CreateMemoryResidentData();
    NativeConfig config(nullptr, {}, [&](const std::string&) { return std::optional<std::string>(kSource); });
    EXPECT_EQ(config.Load("plant", *store), LoadOutcome::Ok)
        << (config.Diagnostics().empty() ? "" : config.Diagnostics().front().ToString());
    TranslationWriter_Close();
    const auto list = ReadTranslationListFile("KSSERVER.LST");
    ASSERT_TRUE(list);
    std::wstring texts;
    for (const TranslationListEntry& entry : list->entries) {
        texts += entry.section + L':' + entry.text + L' ';
    }
    EXPECT_EQ(texts, L"Formats:Products Formats:Order Fields:Number Fields:Colour Fields:Price String tables:Red "
                     L"String tables:Green Dimensions:Article Dimensions:For ");
}

} // namespace

} // namespace Kestrona::Host
