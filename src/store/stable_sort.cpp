#include "store/stable_sort.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <limits>
#include <utility>

namespace Kestrona::Data::MemoryResident {

namespace {

constexpr int kDigitBits = 11;
constexpr std::size_t kDigitValues = std::size_t{1} << kDigitBits;
constexpr int kKeyBits = 64;
constexpr int kDigits = (kKeyBits + kDigitBits - 1) / kDigitBits;
// Fewer keys are sorted faster by comparing.
constexpr std::size_t kFewKeys = 512;

std::size_t Digit(std::uint64_t key, int digit) {
    return static_cast<std::size_t>(key >> (digit * kDigitBits)) & (kDigitValues - 1);
}

using Counts = std::array<std::size_t, kDigitValues>;

// Moves the keys into the order of one digit.
void SortByDigit(const std::vector<NumberedKey>& from, std::vector<NumberedKey>& to, Counts& counts, int digit) {
    std::size_t place = 0;
    for (std::size_t& count : counts) {
        place += std::exchange(count, place);
    }
    for (const NumberedKey& key : from) {
        to[counts[Digit(key.key, digit)]++] = key;
    }
}

} // namespace

void SortStably(std::vector<NumberedKey>& keys) {
    if (keys.size() < kFewKeys) {
        std::ranges::stable_sort(keys, {}, &NumberedKey::key);
        return;
    }
    std::vector<Counts> counts(kDigits);
    for (const NumberedKey& key : keys) {
        for (int digit = 0; digit < kDigits; ++digit) {
            ++counts[static_cast<std::size_t>(digit)][Digit(key.key, digit)];
        }
    }
    std::vector<NumberedKey> sorted(keys.size());
    for (int digit = 0; digit < kDigits; ++digit) {
        Counts& count = counts[static_cast<std::size_t>(digit)];
        if (count[Digit(keys.front().key, digit)] != keys.size()) {
            SortByDigit(keys, sorted, count, digit);
            keys.swap(sorted);
        }
    }
}

std::uint64_t OrderedBits(double value) {
    if (std::isnan(value)) {
        return std::numeric_limits<std::uint64_t>::max();
    }
    constexpr std::uint64_t kSign = std::uint64_t{1} << 63;
    const auto bits = std::bit_cast<std::uint64_t>(value == 0.0 ? 0.0 : value);
    return (bits & kSign) != 0 ? ~bits : bits | kSign;
}

std::uint64_t HeadOf(const std::string& text) {
    std::uint64_t head = 0;
    for (std::size_t i = 0; i < sizeof head; ++i) {
        head = head << 8 | (i < text.size() ? static_cast<unsigned char>(text[i]) : 0U);
    }
    return head;
}

void SortStably(std::vector<NumberedText>& texts, bool ascending) {
    const auto before = [](const NumberedText& a, const NumberedText& b) {
        return a.head != b.head ? a.head < b.head : a.text->compare(*b.text) < 0;
    };
    if (ascending) {
        std::ranges::stable_sort(texts, before);
    } else {
        std::ranges::stable_sort(texts, [&](const auto& a, const auto& b) { return before(b, a); });
    }
}

} // namespace Kestrona::Data::MemoryResident
