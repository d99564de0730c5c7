#include "columns/matrix_cells.h"

#include "columns/column_file.h"

#include <kestrona/record_state.h>
#include <kestrona/types.h>

#include <algorithm>
#include <array>
#include <cassert>
#include <cstdlib>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>
#include <vector>

namespace Kestrona::Data::MemoryResident {

// What few matrices have.
struct MatrixCells::Aside {
    std::unique_ptr<RecordStateStrategy> strategy;
    std::array<double, kScratchRecords> scratch;
};

// Stands in front of the values. Those behind the held ones have the default.
struct MatrixCells::Block {
    formats_info* format; // null when changes are told to nobody
    Aside* aside;
    double defaultValue;
    std::int32_t formatNumber;
    std::uint32_t announced;
    std::uint32_t held;
    std::uint32_t capacity;
};

namespace {

bool IsScratch(std::int32_t index) {
    return index >= kFirstScratchRecord && index <= kLastScratchRecord;
}

bool IsElement(std::int32_t index) {
    return index >= 0 && index < kFirstScratchRecord;
}

} // namespace

MatrixCells::MatrixCells(formats_info* format, std::int32_t format_number, double default_value) {
    static_assert(std::is_trivially_copyable_v<Block> && alignof(Block) == alignof(double));
    SetCapacity(0);
    *block_ = {format, nullptr, default_value, format_number, 0, 0, 0};
}

MatrixCells::MatrixCells(MatrixCells&& other) noexcept : block_(std::exchange(other.block_, nullptr)) {}

MatrixCells& MatrixCells::operator=(MatrixCells&& other) noexcept {
    MatrixCells old(std::move(*this));
    block_ = std::exchange(other.block_, nullptr);
    return *this;
}

MatrixCells::~MatrixCells() {
    if (block_ != nullptr) {
        delete block_->aside;
        std::free(block_);
    }
}

double* MatrixCells::Values() const {
    return reinterpret_cast<double*>(block_ + 1);
}

bool MatrixCells::IsHeld(std::int32_t index) const {
    return static_cast<std::uint32_t>(index) < block_->held;
}

double MatrixCells::GetValue(std::int32_t index) const {
    return IsHeld(index) ? Values()[index] : ValueBehind(index);
}

double MatrixCells::ValueBehind(std::int32_t index) const {
    const bool is_aside = IsScratch(index) && block_->aside != nullptr;
    return is_aside ? block_->aside->scratch[static_cast<std::size_t>(index - kFirstScratchRecord)]
                    : block_->defaultValue;
}

void MatrixCells::ReadBlock(std::int32_t first, std::int32_t count, double* out) const {
    std::int32_t done = 0;
    if (count > 0 && IsHeld(first)) {
        done = std::min(count, static_cast<std::int32_t>(block_->held) - first);
        std::copy_n(Values() + first, done, out);
    }
    for (; done < count; ++done) {
        out[done] = GetValue(first + done);
    }
}

std::uint32_t MatrixCells::GetCurrentSize() const {
    return std::max(block_->announced, block_->held);
}

void MatrixCells::SetValue(std::int32_t index, double value) {
    if (!IsHeld(index)) {
        SetValueBehind(index, value);
    } else if (!(Values()[index] == value)) {
        Values()[index] = value;
        ReportChange(index);
    }
}

void MatrixCells::SetValueBehind(std::int32_t index, double value) {
    if (IsScratch(index)) {
        NeedAside().scratch[static_cast<std::size_t>(index - kFirstScratchRecord)] = value;
    } else if (IsElement(index) && !(value == block_->defaultValue)) {
        Extend(static_cast<std::uint32_t>(index) + 1);
        Values()[index] = value;
        ReportChange(index);
    }
}

// Holds so many values, the further ones with the default.
void MatrixCells::Extend(std::uint32_t held) {
    if (held > block_->capacity) {
        // Allocations come in steps of two values.
        SetCapacity((std::max(held, block_->capacity + block_->capacity / 2) + 1) / 2 * 2);
    }
    std::fill(Values() + block_->held, Values() + held, block_->defaultValue);
    block_->held = held;
}

void MatrixCells::SetCapacity(std::uint32_t capacity) {
    void* const moved = std::realloc(block_, sizeof(Block) + capacity * sizeof(double));
    if (moved == nullptr) {
        throw std::bad_alloc();
    }
    block_ = static_cast<Block*>(moved);
    block_->capacity = capacity;
}

MatrixCells::Aside& MatrixCells::NeedAside() {
    if (block_->aside == nullptr) {
        block_->aside = new Aside();
        block_->aside->scratch.fill(block_->defaultValue);
    }
    return *block_->aside;
}

void MatrixCells::Insert(std::int32_t index, double value) {
    if (!IsElement(index) || block_->held >= static_cast<std::uint32_t>(kFirstScratchRecord)) {
        return;
    }
    const auto position = static_cast<std::uint32_t>(index);
    const std::uint32_t end = block_->held;
    Extend(std::max(position, end) + 1);
    if (position < end) {
        std::move_backward(Values() + position, Values() + end, Values() + end + 1);
    }
    Values()[position] = value;
}

void MatrixCells::Erase(std::int32_t index, double key) {
    if (IsHeld(index)) {
        std::move(Values() + index + 1, Values() + block_->held, Values() + index);
        --block_->held;
    }
    Report([key](IRecordStateStrategy& strategy) { strategy.RecordErased(key); });
}

// Elements that go give their memory back where none stays, which counts as a change of its own.
void MatrixCells::Resize(std::uint32_t size) {
    const std::uint32_t elements = std::min(size, static_cast<std::uint32_t>(kFirstScratchRecord));
    block_->announced = elements;
    if (elements >= block_->held) {
        return;
    }
    block_->held = elements;
    if (elements == 0) {
        SetCapacity(0);
        Report([](IRecordStateStrategy& strategy) { strategy.ColumnCleared(false); });
    }
}

void MatrixCells::ReportResize(std::uint32_t from, std::uint32_t to) {
    const auto [first, end] = std::minmax(from, to);
    Report([first = first, end = end](IRecordStateStrategy& strategy) {
        for (std::uint32_t index = first; index < end; ++index) {
            strategy.RecordChanged(static_cast<std::int32_t>(index));
        }
    });
}

void MatrixCells::WriteToFile(std::FILE* file) const {
    std::fwrite(&block_->held, sizeof block_->held, 1, file);
    if (block_->held > 0) {
        std::fwrite(Values(), sizeof(double), block_->held, file);
    }
}

// A loaded matrix is not a changed one, except that it lost its elements where the file has none for it.
void MatrixCells::ReadFromFile(std::FILE* file) {
    const std::vector<double> values = ReadNumbers<double>(file, kFirstScratchRecord);
    const auto count = static_cast<std::uint32_t>(values.size());
    if (count > block_->capacity) {
        SetCapacity(count);
    }
    if (count > 0) {
        std::ranges::copy(values, Values());
        block_->held = count;
    }
    Resize(count);
}

// A strategy has nothing to remember between two changes outside transactions, so the one told is gone right after.
template <typename Tell>
void MatrixCells::Report(Tell tell) const {
    if (block_->format == nullptr) {
        return;
    }
    if (block_->aside != nullptr && block_->aside->strategy != nullptr) {
        tell(*block_->aside->strategy);
    } else {
        RecordStateStrategy strategy(block_->format, block_->formatNumber);
        tell(strategy);
    }
}

void MatrixCells::ReportChange(std::int32_t index) const {
    Report([index](IRecordStateStrategy& strategy) { strategy.RecordChanged(index); });
}

void MatrixCells::StartTransaction(const std::string& id) {
    if (block_->format == nullptr) {
        return;
    }
    std::unique_ptr<RecordStateStrategy>& strategy = NeedAside().strategy;
    if (strategy == nullptr) {
        strategy = std::make_unique<RecordStateStrategy>(block_->format, block_->formatNumber);
    }
    strategy->StartTransaction(id);
}

void MatrixCells::EndTransaction(const std::string& id) {
    Report([&id](IRecordStateStrategy& strategy) { strategy.EndTransaction(id); });
}

void MatrixCells::RevertTransaction(const std::string& id) {
    Report([&id](IRecordStateStrategy& strategy) { strategy.RevertTransaction(id); });
}

bool MatrixCells::HasColumnChanged() const {
    bool has_changed = false;
    Report([&has_changed](IRecordStateStrategy& strategy) { has_changed = strategy.HasColumnChanged(); });
    return has_changed;
}

std::int32_t MatrixCells::GetRecordState(std::int32_t index) const {
    std::int32_t state = 0;
    Report([index, &state](IRecordStateStrategy& strategy) { state = strategy.GetRecordState(index); });
    return state;
}

void MatrixCells::ResetColoumnChanged() {
    Report([](IRecordStateStrategy& strategy) { strategy.ResetColumnChanged(); });
}

} // namespace Kestrona::Data::MemoryResident
