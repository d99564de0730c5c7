// Sorting byte texts, against std::stable_sort: few letters, zeros among them, so that many texts begin alike.
#include "store/stable_sort.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>

namespace Kestrona::Data::MemoryResident {

namespace {

std::vector<std::string> RandomTexts(std::mt19937& random, std::size_t count, std::size_t longest,
                                     const std::string& letters) {
    std::vector<std::string> texts(count);
    for (std::string& text : texts) {
        text.resize(random() % (longest + 1));
        std::ranges::generate(text, [&] { return letters[random() % letters.size()]; });
    }
    return texts;
}

TEST(StableSort, TextsStandInTheOrderOfTheirBytes) {
    std::mt19937 random(31);
    const std::string zeros(1, '\0');
    const std::string mixed = zeros + "a\xFF";
    for (const std::size_t count : {0U, 1U, 20U, 300U, 5000U}) {
        for (const auto& [letters, longest] : {std::pair{zeros, 30U}, {mixed, 3U}, {mixed, 40U}, {zeros + "a", 12U}}) {
            const std::vector<std::string> texts = RandomTexts(random, count, longest, letters);
            for (const bool ascending : {true, false}) {
                std::vector<NumberedText> sorted;
                for (const std::string& text : texts) {
                    sorted.push_back({0, text, static_cast<std::int32_t>(sorted.size())});
                }
                std::vector<NumberedText> expected = sorted;
                std::ranges::stable_sort(expected, [&](const NumberedText& a, const NumberedText& b) {
                    return ascending ? a.text < b.text : b.text < a.text;
                });
                SortStably(sorted, ascending);
                for (std::size_t i = 0; i < count; ++i) {
                    ASSERT_EQ(sorted[i].record, expected[i].record) << count << ' ' << longest << ' ' << i;
                }
            }
        }
    }
}

} // namespace

} // namespace Kestrona::Data::MemoryResident
