#pragma once

#include <kestrona/binary_strings.h>

#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

namespace Kestrona::Fuzz {

// Writes a stream with scrambled texts. A changed byte inside such a text spoils every text behind it, so inputs tell
// how to make one: a byte n below 128 copies the next n bytes, n from 128 on scrambles the next n - 128 bytes.
//
// Requires: `KSDLL_ResetChecksum` at the beginning of the stream.
inline void Cook(std::string_view recipe, std::FILE* file) {
    constexpr std::uint8_t kTextStart = 128;
    while (!recipe.empty()) {
        const auto token = static_cast<std::uint8_t>(recipe.front());
        const std::string_view part = recipe.substr(1, token % kTextStart);
        if (token < kTextStart) {
            std::fwrite(part.data(), 1, part.size(), file);
        } else {
            KSDLL_WriteBinaryString(file, std::wstring(part.begin(), part.end()).c_str());
        }
        recipe.remove_prefix(1 + part.size());
    }
}

} // namespace Kestrona::Fuzz
