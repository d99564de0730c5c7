#include "columns/change_page.h"

#include <kestrona/record_state.h>

#include <boost/unordered/unordered_flat_map.hpp>

#include <bit>
#include <cassert>
#include <limits>
#include <type_traits>
#include <unordered_map>
#include <utility>

namespace Kestrona::Data::MemoryResident {

namespace {

constexpr std::int32_t kUnchanged = 0;
constexpr std::int32_t kChanged = 2;

// Agrees with KeyOrder: both zeros are one key, and so are all NaNs.
struct KeyHash {
    std::size_t operator()(double key) const {
        return std::bit_cast<std::uint64_t>(key != key ? std::numeric_limits<double>::quiet_NaN() : key + 0.0);
    }
};

struct KeyEqual {
    bool operator()(double a, double b) const { return a == b || (a != a && b != b); }
};

} // namespace

// Transactions are kept by a small number each, so that a change costs no text.
class RecordStateStrategy::Attribution {
public:
    using Number = std::uint32_t;

    // The changes that follow belong to the transaction.
    void Attribute(const std::string& id) {
        const auto [place, is_new] = numbers_.try_emplace(id, nextNumber_);
        current_ = place->second;
        nextNumber_ += is_new ? 1 : 0;
    }

    void AttributeToNone() { current_ = kNone; }

    [[nodiscard]] bool HasCurrent() const { return current_ != kNone; }

    void RecordChanged(std::int32_t record) { records_[record] = current_; }

    void RecordErased(double key) { keys_[key] = current_; }

    // Hands every record and key of the transaction to `take_back` and forgets them. One pass.
    template <typename TakeBack>
    void Release(const std::string& id, TakeBack take_back) {
        const auto found = numbers_.find(id);
        if (found == numbers_.end()) {
            return;
        }
        const auto belongs = [number = found->second, &take_back](const auto& entry) {
            const bool hit = entry.second == number;
            if (hit) {
                take_back(entry.first);
            }
            return hit;
        };
        boost::unordered::erase_if(records_, belongs);
        boost::unordered::erase_if(keys_, belongs);
        numbers_.erase(found);
    }

    [[nodiscard]] bool IsEmpty() const { return numbers_.empty(); }

private:
    static constexpr Number kNone = 0;

    Number current_ = kNone;
    Number nextNumber_ = 1;
    std::unordered_map<std::string, Number> numbers_;
    boost::unordered_flat_map<std::int32_t, Number> records_;
    boost::unordered_flat_map<double, Number, KeyHash, KeyEqual> keys_;
};

RecordStateStrategy::RecordStateStrategy(formats_info* format, std::int32_t format_number)
    : format_(format),
      formatNumber_(format_number) {
    assert(format != nullptr);
}

RecordStateStrategy::~RecordStateStrategy() = default;

RecordStateStrategy::Attribution& RecordStateStrategy::NeedAttribution() {
    if (attribution_ == nullptr) {
        attribution_ = std::make_unique<Attribution>();
    }
    if (!attribution_->HasCurrent()) {
        attribution_->Attribute(*currentTransaction_);
    }
    return *attribution_;
}

void RecordStateStrategy::CountChanges(std::int32_t changes) {
    if (!format_->changed) {
        format_->changed = true;
    }
    if (format_->timestampSuspendCount == 0) {
        format_->timestamp += changes;
    }
}

void RecordStateStrategy::RecordChanged(std::int32_t record) {
    if (currentTransaction_ != nullptr) [[unlikely]] {
        return RecordChangedInTransaction(record);
    }
    CountChanges(1);
    format_->changedRecords.MarkInPlace(record);
}

void RecordStateStrategy::RecordsChanged(std::int32_t first, std::uint64_t bits) {
    if (bits == 0 || currentTransaction_ != nullptr) {
        return IRecordStateStrategy::RecordsChanged(first, bits);
    }
    CountChanges(std::popcount(bits));
    format_->changedRecords.MarkMany(first, bits);
}

[[gnu::noinline]] void RecordStateStrategy::RecordChangedInTransaction(std::int32_t record) {
    NeedAttribution().RecordChanged(record);
    CountChanges(1);
    format_->changedRecords.Mark(record);
}

void RecordStateStrategy::RecordErased(double key) {
    if (currentTransaction_ != nullptr) {
        NeedAttribution().RecordErased(key);
    }
    CountChanges(1);
    format_->erasedKeys[key] = true;
}

void RecordStateStrategy::ColumnCleared(bool mark_changed) {
    CountChanges(1);
    columnChanged_ = mark_changed;
}

void RecordStateStrategy::StartTransaction(std::string id) {
    currentTransaction_ = id.empty() ? nullptr : std::make_unique<std::string>(std::move(id));
    if (attribution_ != nullptr) {
        attribution_->AttributeToNone();
    }
}

// Hands what is attributed to `id` to `take_back`, drops the attribution and ends the running transaction.
template <typename TakeBack>
void RecordStateStrategy::ReleaseTransaction(const std::string& id, TakeBack take_back) {
    currentTransaction_.reset();
    if (attribution_ == nullptr) {
        return;
    }
    attribution_->AttributeToNone();
    attribution_->Release(id, take_back);
    if (attribution_->IsEmpty()) {
        attribution_.reset();
    }
}

void RecordStateStrategy::EndTransaction(std::string id) {
    ReleaseTransaction(id, [](const auto&) {});
}

void RecordStateStrategy::RevertTransaction(std::string id) {
    bool took_back = false;
    ReleaseTransaction(id, [this, &took_back](const auto& mark) {
        took_back = true;
        if constexpr (std::is_same_v<decltype(mark), const double&>) {
            format_->erasedKeys.erase(mark);
        } else {
            format_->changedRecords.Erase(mark);
        }
    });
    if (took_back && format_->changedRecords.IsEmpty() && format_->erasedKeys.empty()) {
        format_->changed = false;
    }
}

void RecordStateStrategy::ResetColumnChanged() {
    format_->changedRecords.Clear();
    format_->erasedKeys.clear();
    format_->changed = false;
    columnChanged_ = false;
    attribution_.reset();
}

bool RecordStateStrategy::HasColumnChanged() {
    return columnChanged_ || !format_->changedRecords.IsEmpty() || !format_->erasedKeys.empty() || format_->changed;
}

std::int32_t RecordStateStrategy::GetRecordState(std::int32_t record) {
    if (formatNumber_ == -1) {
        return kUnchanged;
    }
    return format_->changedRecords.Lookup(record) ? kChanged : kUnchanged;
}

} // namespace Kestrona::Data::MemoryResident
