#include "output/host_message.h"

#include "output/error_codes.h"

#include <kestrona/host/message_catalogue.h>
#include <kestrona/unicode.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <regex>

namespace Kestrona::Tool {
namespace {

std::string Filled(std::int32_t number) {
    static const std::regex placeholder("%s|%[0-9]+%");
    return std::regex_replace(ToUtf8(Host::MessageText(number)), placeholder, "Price 'of' it");
}

TEST(HostMessages, HaveTheCodeOfTheirNumber) {
    for (const MessageEntry& entry : MessageEntries()) {
        EXPECT_EQ(CodeOfMessage(Filled(entry.number)).name, CodeName(entry.number)) << Filled(entry.number);
        EXPECT_NE(MessageTitle(entry.number), "") << entry.number;
        EXPECT_EQ(CodeNumber(CodeName(entry.number)), entry.number);
    }
}

// A failed look-up quotes the keyword and its place in words that refusals begin with, too.
TEST(HostMessages, AreNotTakenForWhatTheyQuote) {
    for (const std::int32_t number : Host::MessageNumbers()) {
        const std::string context = Filled(number);
        const bool refuses = std::ranges::count(MessageEntries(), number, &MessageEntry::number) > 0;
        if (!refuses && context.find("format '") != std::string::npos && context.find('\n') == std::string::npos) {
            const std::string text = "DATABASE(Nix)" + Filled(21005).substr(Filled(21005).find('\n')) + '\n' + context;
            EXPECT_EQ(CodeOfMessage(text).name, CodeName(21005)) << text;
        }
    }
}

TEST(HostMessages, WithoutANumberHaveTheCodeOfTheirFailure) {
    EXPECT_EQ(CodeOfMessage("'a.kes' is damaged at offset 7").name, CodeName(Code::Damaged));
    EXPECT_EQ(CodeOfMessage("Something else.").name, CodeName(Code::BadDefinition));
}

TEST(Codes, AreReadFromTheirNames) {
    EXPECT_EQ(CodeNumber("KES-0104"), 104);
    EXPECT_EQ(CodeNumber("kes-21039"), 21039);
    for (const char* wrong : {"", "KES", "KES-", "KES-1x", "KES-99999999999", "KEX-0104", "0104"}) {
        EXPECT_EQ(CodeNumber(wrong), std::nullopt) << wrong;
    }
}

} // namespace
} // namespace Kestrona::Tool
