#include "output/text_table.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>

namespace Kestrona::Tool {
namespace {

TEST(Output, FittedTextsNeverPassTheirWidth) {
    EXPECT_EQ(FitToWidth("a\tb\x7F\xC2\x85", 9), "a b  ") << "control characters take a cell";
    std::mt19937 random(1);
    for (int round = 0; round < 2000; ++round) {
        std::string text;
        for (std::size_t i = random() % 20; i > 0; --i) {
            text += static_cast<char>(random());
        }
        for (std::size_t width = 0; width < 12; ++width) {
            ASSERT_LE(DisplayWidth(FitToWidth(text, width)), std::max<std::size_t>(width, 1));
        }
        ASSERT_EQ(DisplayWidth(FitToWidth(text, 1000)), DisplayWidth(text));
    }
}

} // namespace
} // namespace Kestrona::Tool
