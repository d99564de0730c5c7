#include <kestrona/host/globalization.h>
#include <kestrona/owned_text.h>
#include <kestrona/unicode.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

namespace Kestrona::Host {
namespace {

std::string Localized(const std::string& language, const wchar_t* file_name) {
    const OwnedText text(Globalization({"", language}).LocalizeFileName(file_name));
    return text ? ToUtf8(text.get()) : "(null)";
}

TEST(Globalization, PutsTheLanguageBeforeTheExtension) {
    struct Case {
        const char* language;
        const wchar_t* file_name;
        const char* expected;
    };

    const Case cases[] = {
        {"de_DE.UTF-8", L"help.txt", "help.de.txt"},
        {"de", L"help.txt", "help.de.txt"},
        {"pt-BR", L"doc/a.b/help.htm", "doc/a.b/help.pt.htm"},
        {"DE_AT@euro", L"help.tar.gz", "help.tar.de.gz"},
        {"fil_PH", L"a.b/help", "a.b/help.fil"},
        {"de", L"a/.hidden", "a/.hidden.de"},
        {"de", L".hidden", ".hidden.de"},
        {"de", L"help.", "help.de."},
        {"de", L"", ".de"},
        {"de", L"\u00fcber.txt", "\u00fcber.de.txt"},
        {"de", nullptr, "(null)"},
        {"C", L"help.txt", "(null)"},
        {"C.UTF-8", L"help.txt", "(null)"},
        {"POSIX", L"help.txt", "(null)"},
        {"", L"help.txt", "(null)"},
        {"../../etc", L"help.txt", "(null)"},
        {"/x_DE", L"help.txt", "(null)"},
        {"abcdefghi", L"help.txt", "(null)"},
        {"d\xc3\xa9", L"help.txt", "(null)"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(Localized(c.language, c.file_name), c.expected) << c.language;
    }
}

TEST(Globalization, LocaleIdentityFollowsTheFormats) {
    EXPECT_EQ(Globalization({"de_DE.UTF-8", "C"}).GetLCID(), 0x0407U);
    EXPECT_EQ(Globalization({"en_GB", "de"}).GetLCID(), 0x0809U);
    EXPECT_EQ(Globalization({"C", "de"}).GetLCID(), 0x007fU);
    EXPECT_EQ(Globalization({"", "de"}).GetLCID(), 0x007fU);
}

TEST(Globalization, EnvironmentIsReadByRank) {
    struct Case {
        const char* all;
        const char* time;
        const char* messages;
        const char* lang;
        const char* formats;
        const char* language;
    };

    const Case cases[] = {
        {"fr_FR", "de_DE", "it_IT", "es_ES", "fr_FR", "fr_FR"},
        {nullptr, "de_DE", "it_IT", "es_ES", "de_DE", "it_IT"},
        {"", "", "", "es_ES", "es_ES", "es_ES"},
        {nullptr, nullptr, "it_IT", nullptr, "", "it_IT"},
        {nullptr, nullptr, nullptr, nullptr, "", ""},
    };
    const auto set = [](const char* name, const char* value) {
        if (value == nullptr) {
            unsetenv(name);
        } else {
            setenv(name, value, 1);
        }
    };
    for (const Case& c : cases) {
        set("LC_ALL", c.all);
        set("LC_TIME", c.time);
        set("LC_MESSAGES", c.messages);
        set("LANG", c.lang);
        const LocaleNames names = LocaleNamesFromEnvironment();
        EXPECT_EQ(names.formats, c.formats);
        EXPECT_EQ(names.language, c.language);
    }
}

} // namespace
} // namespace Kestrona::Host
