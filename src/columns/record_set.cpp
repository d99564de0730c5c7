#include "columns/record_set.h"

#include <algorithm>
#include <bit>
#include <cassert>
#include <numeric>
#include <utility>

namespace Kestrona::Data::MemoryResident {

namespace {

using Numbers = std::vector<std::int32_t>;

// Sets up to this size are shifted at once; moving 4 KiB costs no more than a note does in the end.
constexpr std::size_t kLongSet = 1024;
// Notes are worked in when they are more than this share of the set, so that each costs a bounded part of one pass.
constexpr std::size_t kSetToNotes = 2;
// From this share on, a pass over one bit for each number is cheaper than a search for each note.
constexpr std::size_t kSetToManyNotes = 10;

// Sorts the numbers and drops those that occur an even number of times.
void SortAndCancel(Numbers& notes) {
    std::sort(notes.begin(), notes.end());
    auto kept = notes.begin();
    for (auto run = notes.begin(); run != notes.end();) {
        const auto run_end = std::find_if(run, notes.end(), [value = *run](std::int32_t n) { return n != value; });
        if ((run_end - run) % 2 != 0) {
            *kept++ = *run;
        }
        run = run_end;
    }
    notes.erase(kept, notes.end());
}

// One bit for each number of a stretch.
class Bits {
public:
    Bits(std::int32_t lowest, std::int32_t highest) : lowest_(lowest), words_(WordsFor(lowest, highest)) {}

    static std::size_t WordsFor(std::int32_t lowest, std::int32_t highest) {
        return (static_cast<std::uint32_t>(highest) - static_cast<std::uint32_t>(lowest)) / kWordBits + 1;
    }

    void Toggle(const Numbers& numbers) {
        for (const std::int32_t number : numbers) {
            const auto offset = static_cast<std::uint32_t>(number) - static_cast<std::uint32_t>(lowest_);
            words_[offset / kWordBits] ^= std::uint64_t{1} << (offset % kWordBits);
        }
    }

    // Requires: room for every number.
    void WriteTo(Numbers& numbers) const {
        auto to = numbers.begin();
        std::int32_t number = lowest_;
        for (const std::uint64_t word : words_) {
            for (std::uint64_t rest = word; rest != 0; rest &= rest - 1) {
                *to++ = number + std::countr_zero(rest);
            }
            number += kWordBits;
        }
        assert(to == numbers.end());
    }

private:
    static constexpr std::int32_t kWordBits = 64;

    std::int32_t lowest_;
    std::vector<std::uint64_t> words_;
};

// The first element that is not below `value`, searched with growing steps from `from`: cheap when it is near.
Numbers::iterator SeekForward(Numbers::iterator from, Numbers::iterator end, std::int32_t value) {
    std::ptrdiff_t step = 1;
    while (step < end - from && *(from + step) < value) {
        from += step;
        step *= 2;
    }
    return std::lower_bound(from, from + std::min(step + 1, end - from), value);
}

// The same in an array that ends at `from`, searched backward.
Numbers::iterator SeekBackward(Numbers::iterator begin, Numbers::iterator from, std::int32_t value) {
    std::ptrdiff_t step = 1;
    while (step < from - begin && *(from - step) >= value) {
        from -= step;
        step *= 2;
    }
    return std::lower_bound(from - std::min(step, from - begin), from, value);
}

} // namespace

std::size_t RecordSet::Size() const {
    return own_ == nullptr ? built_.size() : own_->Size();
}

bool RecordSet::IsSettled() const {
    return own_ == nullptr || own_->notes.empty();
}

std::span<const std::int32_t> RecordSet::Rows() const {
    assert(IsSettled());
    return own_ == nullptr ? built_ : own_->rows;
}

RecordSet::Own& RecordSet::NeedOwn() {
    if (own_ == nullptr) {
        auto own = std::make_unique<Own>();
        own->rows.assign(built_.begin(), built_.end());
        own_ = std::move(own);
    }
    return *own_;
}

void RecordSet::AddRange(std::int32_t first, std::int32_t last) {
    Numbers& rows = NeedOwn().rows;
    assert(rows.empty() || rows.back() < first);
    const std::size_t before = rows.size();
    rows.resize(before + static_cast<std::size_t>(last - first));
    std::iota(rows.begin() + static_cast<std::ptrdiff_t>(before), rows.end(), first);
}

void RecordSet::Add(std::int32_t record) {
    Own& own = NeedOwn();
    const bool is_last = own.rows.empty() || own.rows.back() < record;
    if (is_last && IsSettled()) {
        own.rows.push_back(record);
    } else if (own.IsLong()) {
        own.Note(record);
        ++own.added;
    } else {
        own.rows.insert(std::lower_bound(own.rows.begin(), own.rows.end(), record), record);
    }
}

void RecordSet::Remove(std::int32_t record) {
    Own& own = NeedOwn();
    if (own.IsLong()) {
        own.Note(record);
        --own.added;
        return;
    }
    const auto place = std::lower_bound(own.rows.begin(), own.rows.end(), record);
    assert(place != own.rows.end() && *place == record);
    own.rows.erase(place);
}

void RecordSet::Settle() {
    if (!IsSettled()) {
        own_->Settle();
    }
}

std::size_t RecordSet::Own::Size() const {
    return static_cast<std::size_t>(static_cast<std::ptrdiff_t>(rows.size()) + added);
}

bool RecordSet::Own::IsLong() const {
    return rows.size() > kLongSet || !notes.empty();
}

void RecordSet::Own::Note(std::int32_t record) {
    if (notes.size() >= std::max(kLongSet, rows.size() / kSetToNotes)) {
        Settle();
    }
    notes.push_back(record);
}

// In each way, all that can fail comes first.
void RecordSet::Own::Settle() {
    if (!SettleByBits()) {
        const std::size_t size = Size();
        if (rows.capacity() < size) {
            rows.reserve(size + size / 8);
        }
        SortAndCancel(notes);
        WorkInAdditions(WorkInRemovals());
        assert(rows.size() == size);
    }
    notes.clear();
    added = 0;
}

// Where there are many notes and the records stand close enough together.
bool RecordSet::Own::SettleByBits() {
    if (rows.empty() || notes.size() < rows.size() / kSetToManyNotes) {
        return false;
    }
    const auto [lowest_note, highest_note] = std::minmax_element(notes.begin(), notes.end());
    const std::int32_t lowest = std::min(*lowest_note, rows.front());
    const std::int32_t highest = std::max(*highest_note, rows.back());
    if (Bits::WordsFor(lowest, highest) > rows.size() + notes.size()) {
        return false;
    }
    Bits bits(lowest, highest);
    bits.Toggle(rows);
    bits.Toggle(notes);
    rows.resize(Size());
    bits.WriteTo(rows);
    return true;
}

// Leaves the notes that are additions at the front of notes and returns their number.
std::size_t RecordSet::Own::WorkInRemovals() {
    std::size_t additions = 0;
    auto kept = rows.begin();
    auto next = rows.begin();
    const auto keep_up_to = [&](Numbers::iterator end) {
        kept = kept == next ? end : std::move(next, end, kept);
        next = end;
    };
    for (const std::int32_t note : notes) {
        const auto place = SeekForward(next, rows.end(), note);
        if (place != rows.end() && *place == note) {
            keep_up_to(place);
            ++next;
        } else {
            notes[additions++] = note;
        }
    }
    keep_up_to(rows.end());
    rows.erase(kept, rows.end());
    return additions;
}

// Opens the gaps from the back, so that every record moves once.
void RecordSet::Own::WorkInAdditions(std::size_t count) {
    auto from = static_cast<std::ptrdiff_t>(rows.size());
    rows.resize(rows.size() + count);
    auto to = rows.end();
    for (std::size_t i = count; i > 0; --i) {
        const std::int32_t note = notes[i - 1];
        const auto end = rows.begin() + from;
        const auto place = SeekBackward(rows.begin(), end, note);
        to = std::move_backward(place, end, to);
        *--to = note;
        from = place - rows.begin();
    }
}

} // namespace Kestrona::Data::MemoryResident
