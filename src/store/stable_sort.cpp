#include "store/stable_sort.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <limits>
#include <span>
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

// Moves the entries into the order of one digit.
template <typename Entry>
void SortByDigit(std::span<const Entry> from, std::span<Entry> to, Counts& counts, int digit) {
    std::size_t place = 0;
    for (std::size_t& count : counts) {
        place += std::exchange(count, place);
    }
    for (const Entry& entry : from) {
        to[counts[Digit(entry.key, digit)]++] = entry;
    }
}

std::vector<Counts> CountDigits(const auto& entries) {
    std::vector<Counts> counts(kDigits);
    for (const auto& entry : entries) {
        for (int digit = 0; digit < kDigits; ++digit) {
            ++counts[static_cast<std::size_t>(digit)][Digit(entry.key, digit)];
        }
    }
    return counts;
}

// `scratch` has room for as many entries; what it holds goes.
template <typename Entry>
void SortByKey(std::span<Entry> entries, std::span<Entry> scratch) {
    std::vector<Counts> counts = CountDigits(entries);
    std::span<Entry> from = entries;
    std::span<Entry> to = scratch.first(entries.size());
    for (int digit = 0; digit < kDigits; ++digit) {
        Counts& count = counts[static_cast<std::size_t>(digit)];
        if (count[Digit(from.front().key, digit)] != from.size()) {
            SortByDigit<Entry>(from, to, count, digit);
            std::swap(from, to);
        }
    }
    if (from.data() != entries.data()) {
        std::ranges::copy(from, entries.begin());
    }
}

constexpr std::size_t kHeadBytes = sizeof(std::uint64_t);

// The bytes from `offset` on, zeros behind the end.
std::uint64_t HeadOf(std::string_view text, std::size_t offset) {
    std::uint64_t head = 0;
    for (std::size_t i = offset; i < offset + kHeadBytes; ++i) {
        head = head << 8 | (i < text.size() ? static_cast<unsigned char>(text[i]) : 0U);
    }
    return head;
}

// Sorts texts by eight bytes at a time: all by the first ones, then those that these do not tell apart by the next, and
// so on. What decides is at hand in the key, so that few texts are looked at more than once.
class TextSort {
public:
    TextSort(std::vector<NumberedText>& texts, bool ascending)
        : texts_(texts),
          scratch_(texts.size()),
          ascending_(ascending) {}

    void Sort() {
        groups_.push_back({0, texts_.size(), 0});
        while (!groups_.empty()) {
            const Group group = groups_.back();
            groups_.pop_back();
            SortGroup(group);
        }
    }

private:
    // Texts that are equal before `offset`; ends count as zeros.
    struct Group {
        std::size_t begin;
        std::size_t end;
        std::size_t offset;
    };

    // Fewer texts are sorted faster by comparing them whole.
    static constexpr std::size_t kFewTexts = 24;

    void SortGroup(const Group& group) {
        const std::span texts = std::span(texts_).subspan(group.begin, group.end - group.begin);
        const bool have_ended =
            std::ranges::all_of(texts, [&](const auto& t) { return t.text.size() <= group.offset; });
        if (texts.size() <= kFewTexts || have_ended) {
            SortByText(texts, have_ended);
            return;
        }
        for (NumberedText& text : texts) {
            text.key = HeadOf(text.text, group.offset) ^ (ascending_ ? 0 : ~std::uint64_t{0});
        }
        if (texts.size() < kFewKeys) {
            std::ranges::stable_sort(texts, {}, &NumberedText::key);
        } else {
            SortByKey<NumberedText>(texts, scratch_);
        }
        AddGroups(group);
    }

    // Of texts that have ended the shorter one comes first; all before that is zeros in the longer one.
    void SortByText(std::span<NumberedText> texts, bool have_ended) const {
        const auto before = [&](const NumberedText& a, const NumberedText& b) {
            return have_ended ? a.text.size() < b.text.size() : a.text < b.text;
        };
        const auto ordered = [&](const NumberedText& a, const NumberedText& b) {
            return ascending_ ? before(a, b) : before(b, a);
        };
        if (texts.size() > kFewTexts) {
            std::ranges::stable_sort(texts, ordered);
            return;
        }
        for (auto text = texts.begin(); text != texts.end(); ++text) {
            std::rotate(std::upper_bound(texts.begin(), text, *text, ordered), text, text + 1);
        }
    }

    // Remembers the texts that the bytes at `group.offset` do not tell apart.
    void AddGroups(const Group& group) {
        std::size_t begin = group.begin;
        while (begin < group.end) {
            std::size_t end = begin + 1;
            while (end < group.end && texts_[end].key == texts_[begin].key) {
                ++end;
            }
            if (end - begin > 1) {
                groups_.push_back({begin, end, group.offset + kHeadBytes});
            }
            begin = end;
        }
    }

    std::vector<NumberedText>& texts_;
    std::vector<NumberedText> scratch_;
    std::vector<Group> groups_;
    bool ascending_;
};

} // namespace

void SortStably(std::vector<NumberedKey>& keys) {
    if (keys.size() < kFewKeys) {
        std::ranges::stable_sort(keys, {}, &NumberedKey::key);
        return;
    }
    std::vector<NumberedKey> scratch(keys.size());
    SortByKey<NumberedKey>(keys, scratch);
}

std::uint64_t OrderedBits(double value) {
    if (std::isnan(value)) {
        return std::numeric_limits<std::uint64_t>::max();
    }
    constexpr std::uint64_t kSign = std::uint64_t{1} << 63;
    const auto bits = std::bit_cast<std::uint64_t>(value == 0.0 ? 0.0 : value);
    return (bits & kSign) != 0 ? ~bits : bits | kSign;
}

void SortStably(std::vector<NumberedText>& texts, bool ascending) {
    TextSort(texts, ascending).Sort();
}

} // namespace Kestrona::Data::MemoryResident
