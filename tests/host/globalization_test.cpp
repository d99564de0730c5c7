#include <kestrona/host/globalization.h>
#include <kestrona/owned_text.h>
#include <kestrona/unicode.h>

#include <gtest/gtest.h>

#include <array>
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
        {"pt-BR", L"doc/a.b/help.htm", "doc/a.b/help.pt.htm"},
        {"DE_AT@euro", L"help.tar.gz", "help.tar.de.gz"},
        {"fil_PH", L"a.b/help", "a.b/help.fil"},
        {"de", L"a/.hidden", "a/.hidden.de"},
        {"de", L"", ".de"},
        {"de", L"\u00fcber.txt", "\u00fcber.de.txt"},
        {"de", nullptr, "(null)"},
        {"C.UTF-8", L"help.txt", "(null)"},
        {"", L"help.txt", "(null)"},
        {"../../etc", L"help.txt", "(null)"},
        {"abcdefghi", L"help.txt", "(null)"},
        {"d\xc3\xa9", L"help.txt", "(null)"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(Localized(c.language, c.file_name), c.expected) << c.language;
    }
}

TEST(Globalization, EnvironmentIsReadByRank) {
    constexpr std::array kVariables{"LC_ALL", "LC_TIME", "LC_MESSAGES", "LANG"};

    struct Case {
        std::array<const char*, 4> values;
        const char* formats;
        const char* language;
    };

    const Case cases[] = {
        {{"fr_FR", "de_DE", "it_IT", "es_ES"}, "fr_FR", "fr_FR"},
        {{nullptr, "de_DE", "it_IT", "es_ES"}, "de_DE", "it_IT"},
        {{"", "", "", "es_ES"}, "es_ES", "es_ES"},
        {{nullptr, nullptr, "it_IT", nullptr}, "", "it_IT"},
    };
    for (const Case& c : cases) {
        for (std::size_t i = 0; i < kVariables.size(); ++i) {
            unsetenv(kVariables[i]);
            if (c.values[i] != nullptr) {
                setenv(kVariables[i], c.values[i], 1);
            }
        }
        const LocaleNames names = LocaleNamesFromEnvironment();
        EXPECT_EQ(names.formats, c.formats);
        EXPECT_EQ(names.language, c.language);
    }
}

} // namespace
} // namespace Kestrona::Host
