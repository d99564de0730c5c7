#include <kestrona/host/console_messages.h>
#include <kestrona/host/message_catalogue.h>

#include <gtest/gtest.h>

#include <string>

namespace Kestrona::Host {
namespace {

TEST(ConsoleMessages, PrintsLabelCaptionAndText) {
    struct Case {
        const wchar_t* text;
        const wchar_t* caption;
        std::int32_t style;
        const char* expected;
    };

    const Case cases[] = {
        {L"Bad key", L"", 16, "tool: error: Bad key\n"},
        {L"Old file", nullptr, 48, "tool: warning: Old file\n"},
        {L"Done", L"", 0, "tool: note: Done\n"},
        {L"With buttons", L"", 16 | 0x1, "tool: error: With buttons\n"},
        {L"One\nTwo\n\nThree\n\n", L"", 16, "tool: error: One\n    Two\n    \n    Three\n"},
        {L"Gr\u00f6\u00dfe \u20ac \U0001F600", L"", 48, "tool: warning: Gr\u00f6\u00dfe \u20ac \U0001F600\n"},
        {L"\x1b[2J\r\a\x9b", L"a\nb", 16, "tool: error: a\\nb: \\x1b[2J\\r\\x07\\x9b\n"},
        {nullptr, nullptr, 16, "tool: error: \n"},
    };
    for (const Case& c : cases) {
        std::string out;
        ConsoleMessages messages("tool", [&out](std::string_view text) { out += text; });
        messages.ShowMessage(c.text, c.caption, c.style);
        messages.ShowMessage(nullptr, c.text, c.caption, c.style);
        EXPECT_EQ(out, std::string(c.expected) + c.expected);
    }
}

TEST(ConsoleMessages, KeepsABoundedListAndFullCounts) {
    ConsoleMessages messages("tool", {});
    std::size_t heard = 0;
    messages.SetListener([&](const ShownMessage&) { ++heard; });
    for (std::size_t i = 0; i < ConsoleMessages::kMostKept; ++i) {
        messages.ShowMessage(std::to_wstring(i).c_str(), L"", 16);
    }
    messages.ShowMessage(L"late", L"", 16);
    messages.DisplayUnableToOpen(L"a.cnf");
    messages.DisplayGenericUnableToRead(L"a.cnf");
    EXPECT_EQ(messages.Shown().size(), ConsoleMessages::kMostKept);
    EXPECT_EQ(messages.ErrorCount(), ConsoleMessages::kMostKept + 1);
    EXPECT_EQ(messages.WarningCount(), 2U);
    EXPECT_EQ(heard, ConsoleMessages::kMostKept + 3);
    messages.Clear();
    EXPECT_TRUE(messages.Shown().empty());
    EXPECT_EQ(messages.ErrorCount() + messages.WarningCount(), 0U);
}

TEST(ConsoleMessages, BufferFormStaysInsideTheBuffer) {
    ConsoleMessages messages("tool", {});
    const std::wstring whole = messages.GetMessage(21001);
    ASSERT_EQ(whole, MessageText(21001));
    for (std::size_t size = 1; size <= whole.size() + 2; ++size) {
        std::wstring buffer(whole.size() + 4, L'#');
        messages.GetMessageText(21001, buffer.data(), size);
        EXPECT_STREQ(buffer.c_str(), whole.substr(0, size - 1).c_str());
        EXPECT_EQ(buffer.find_first_not_of(L'#', size), std::wstring::npos) << size;
    }
    wchar_t untouched = L'#';
    messages.GetMessageText(21001, &untouched, 0);
    EXPECT_EQ(untouched, L'#');
    messages.GetMessageText(21001, nullptr, 10);
}

} // namespace
} // namespace Kestrona::Host
