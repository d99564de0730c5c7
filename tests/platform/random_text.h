#pragma once

#include <cstddef>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace Kestrona::Testing {

// Repeatable random choices.
class RandomSource {
public:
    explicit RandomSource(unsigned seed) : engine_(seed) {}

    std::size_t Below(std::size_t bound) { return std::uniform_int_distribution<std::size_t>(0, bound - 1)(engine_); }

    // Up to `most` pieces, each drawn from `pieces`, joined.
    template <typename Text>
    Text Join(const std::vector<Text>& pieces, std::size_t most) {
        Text text;
        for (std::size_t left = Below(most + 1); left > 0; --left) {
            text += pieces[Below(pieces.size())];
        }
        return text;
    }

    // `text` with up to `most` of its elements removed, replaced or followed by another one from `alphabet`.
    template <typename Text>
    Text Damage(Text text, const Text& alphabet, std::size_t most) {
        for (std::size_t left = Below(most + 1); left > 0 && !text.empty(); --left) {
            const auto at = static_cast<typename Text::difference_type>(Below(text.size()));
            const auto inserted = alphabet[Below(alphabet.size())];
            switch (Below(3)) {
            case 0:
                text.erase(text.begin() + at);
                break;
            case 1:
                *(text.begin() + at) = inserted;
                break;
            default:
                text.insert(text.begin() + at, inserted);
            }
        }
        return text;
    }

private:
    std::mt19937 engine_;
};

inline std::wstring WidenAscii(std::string_view text) {
    return {text.begin(), text.end()};
}

} // namespace Kestrona::Testing
