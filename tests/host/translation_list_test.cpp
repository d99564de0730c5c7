// Lists of texts to translate: written, filled in, read back.
#include "fixtures/audited_orders.h"
#include "fixtures/scratch_files.h"

#include <kestrona/host/translation_list.h>
#include <kestrona/translation.h>
#include <kestrona/translation_writer.h>
#include <kestrona/unicode.h>

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace Kestrona::Host {
namespace {

std::string BigEndian(std::string bytes) {
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
        std::swap(bytes[i], bytes[i + 1]);
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

TEST(TranslationList, EveryEncodingReadsAlike) {
    const std::wstring text = L"Remark\n\n#SECTION F\xfcr\n\"A\"\n\"\x1f600\"\n\n";
    const std::wstring expected = L"4 F\xfcr|A|\x1f600;";
    std::wstring with_returns;
    for (const wchar_t c : text) {
        with_returns += c == L'\n' ? L"\r\n" : std::wstring(1, c);
    }
    for (const std::wstring& each : {text, with_returns}) {
        const std::string little = Fixtures::Utf16File(L"\xfeff" + each);
        for (const std::string& bytes :
             {little, BigEndian(little), little + 'x', ToUtf8(each), "\xef\xbb\xbf" + ToUtf8(each)}) {
            EXPECT_EQ(Described(ParseTranslationList(bytes, "list")), expected);
        }
    }
}

TEST(TranslationList, DamagedEntriesAreLeftOutAndTold) {
    struct Case {
        const wchar_t* text;
        const wchar_t* expected;
    };

    // Diagnostics stand behind the entries.
    for (const Case& c : {Case{L"", L""}, Case{L"\"", L"!1"}, Case{L"\"A\"", L"!1"}, Case{L"\"A\"\n\"", L"!1"},
                          Case{L"\"A\"\n\"B\"", L"1 |A|B;"}, Case{L"\"A\"\n\"B\"\n\"C\"\n\"D\"", L"1 |A|B;3 |C|D;"},
                          Case{L"\"A\"\n\"B\n\n\"C\"\n\"D\"\n\n", L"4 |C|D;!1"}, // the translation lost its quote
                          Case{L"\"A\n\"B\"\n\n\"C\"\n\"D\"\n\n", L"4 |C|D;!1"}, // the text did
                          Case{L"\"A\"\n\n#SECTION S\n\"C\"\n\"D\"\n\n", L"4 S|C|D;!1"},
                          Case{L"\"A\"x\"\n\"B\" \"\"\n\n", L"1 |A\"x|B\" \";"},
                          Case{L"\"two\n\nlines\"\n\"zwei\n\nZeilen\"\n\n", L"1 |two\n\nlines|zwei\n\nZeilen;"},
                          Case{L"x\"A\"\n\"\"\n\"\"\n", L"2 ||;"}}) {
        EXPECT_EQ(Described(ParseTranslationList(ToUtf8(c.text), "list")), c.expected) << ToUtf8(c.text);
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

} // namespace
} // namespace Kestrona::Host
