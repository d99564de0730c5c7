#include "fixtures/program_output.h"
#include "platform/format_text.h"

#include <kestrona/host/message_catalogue.h>
#include <kestrona/unicode.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace Kestrona::Host {
namespace {

// One way in which the data module uses numbered texts: joined to one format string and filled with so many arguments.
struct Use {
    std::vector<std::int32_t> numbers;
    std::size_t arguments = 0;
    std::wstring joint{}; // between the texts
};

// The texts that stand alone and have arguments, by the number of these.
const std::pair<std::size_t, std::vector<std::int32_t>> kSingles[] = {
    {1, {19062, 21039, 21069}},
    {2, {19063, 21108, 21109}},
    {3, {19054, 19076, 21007}},
    // Contexts and refusals with format and field
    {2, {21006, 21008, 21010, 21011, 21012, 21082, 21090, 21093, 21094, 21095, 21097, 21100, 21104}},
    {2, {21504, 21505, 21016, 21020, 21025, 21030, 21034, 21037, 21506}},
    {2, {21033, 21038, 21102, 21110, 21111, 21112, 21113, 21114, 29012, 31100, 31101, 31102}},
};

const std::vector<Use>& Uses() {
    static const std::vector<Use> uses = [] {
        std::vector<Use> all{
            {{0x6a23, 0x6a24}, 3},
            {{21004, 21003}, 4},
            {{21005, 21003}, 3, L"\n%s\n"},
            {{21009, 21084}, 2, L" "},
            {{21102, 21103}, 2, L" "},
            {{21058, 21059, 21060, 21061, 21062}, 2},
            {{21085, 21086, 21087, 21088}, 4},
            {{21085, 21086, 21087, 21089}, 4},
            {{21024, 21023}, 2},
            {{21026, 21027}, 5},
            {{21028, 21029}, 3},
        };
        for (const std::int32_t number : {21018, 21019, 21021, 21022, 21508}) {
            all.push_back({{number, 21017}, 3});
        }
        for (const std::int32_t number : {21031, 21032, 21035, 21036, 21096}) {
            all.push_back({{number, 21003}, 3});
        }
        for (const auto& [arguments, numbers] : kSingles) {
            for (const std::int32_t number : numbers) {
                all.push_back({{number}, arguments});
            }
        }
        return all;
    }();
    return uses;
}

std::wstring Joined(const Use& use) {
    std::wstring text;
    for (std::size_t i = 0; i < use.numbers.size(); ++i) {
        text += (i == 0 ? L"" : use.joint) + MessageText(use.numbers[i]);
    }
    return text;
}

std::wstring Fill(const std::wstring& text, const std::vector<std::wstring>& arguments) {
    std::vector<Platform::FormatArgument> list(arguments.begin(), arguments.end());
    return Platform::FormatTextWith(text, list);
}

// A text that has a placeholder too many would show the argument that no caller gives.
TEST(MessageCatalogue, EveryUseShowsEachOfItsArgumentsAndNoMore) {
    const std::vector<std::wstring> names{L"Orders", L"Colour", L"Plant", L"Due date", L"Spare", L"Nobody's"};
    for (const Use& use : Uses()) {
        const std::vector<std::wstring> arguments(names.begin(),
                                                  names.begin() + static_cast<std::ptrdiff_t>(use.arguments) + 1);
        const std::wstring text = Fill(Joined(use), arguments);
        SCOPED_TRACE(ToUtf8(text));
        EXPECT_FALSE(text.empty());
        EXPECT_EQ(text.find(L'%'), std::wstring::npos);
        EXPECT_EQ(text.find(L"  "), std::wstring::npos);
        for (std::size_t i = 0; i < arguments.size(); ++i) {
            EXPECT_EQ(text.find(arguments[i]) != std::wstring::npos, i < use.arguments) << ToUtf8(arguments[i]);
        }
    }
}

TEST(MessageCatalogue, WordsCanBeToldApartWhenTheyAreReadBack) {
    const auto upper = [](std::int32_t number) {
        return UpperCase(MessageText(number));
    };
    for (std::int32_t day = 0; day < 7; ++day) {
        for (std::int32_t other = 0; other < 7; ++other) {
            const bool is_inside = upper(0x6999 + day).find(upper(0x6999 + other)) != std::wstring::npos;
            EXPECT_EQ(is_inside, day == other) << day << " " << other;
        }
    }
    for (const std::int32_t word : {0x69a0, 0x69a2, 0x69a3}) {
        EXPECT_EQ(upper(word).find(upper(0x69a1)), std::wstring::npos);
    }
    EXPECT_NE(upper(0x697d), upper(0x697e));
    EXPECT_NE(upper(0x698a), upper(0x69a6));
    EXPECT_LE(MessageText(17147).size(), 11U) << "the title is cut";
}

TEST(MessageCatalogue, UserNameIsThatOfTheSystem) {
    EXPECT_EQ(ToUtf8(MessageText(kUserNameMessage)) + "\n", Fixtures::OutputOf("id -un 2>&- || id -u"));
}

} // namespace
} // namespace Kestrona::Host
