#pragma once

#include <cstdint>
#include <cstdio>
#include <string>

// The stored elements of one matrix.
namespace Kestrona::Data::MemoryResident {

struct formats_info;
class IRecordStateStrategy;

// Behaves as a column of doubles in each of its operations. A model has millions of matrices with a few elements each,
// beside which a column and its strategy are large. So all that is known of a matrix stands in front of its elements,
// in one allocation, and a strategy of its own is made only for a matrix that takes part in a transaction.
//
// Made without arguments, or moved from, it is no matrix; nothing but the tests for that may be called then.
class MatrixCells {
public:
    MatrixCells() = default;
    // Changes are told to `format`, which is borrowed; to nobody when it is null.
    MatrixCells(formats_info* format, std::int32_t format_number, double default_value);
    MatrixCells(MatrixCells&& other) noexcept;
    MatrixCells& operator=(MatrixCells&& other) noexcept;
    MatrixCells(const MatrixCells&) = delete;
    MatrixCells& operator=(const MatrixCells&) = delete;
    ~MatrixCells();

    [[nodiscard]] bool IsMatrix() const { return block_ != nullptr; }

    [[nodiscard]] double GetValue(std::int32_t index) const;
    void ReadBlock(std::int32_t first, std::int32_t count, double* out) const;
    [[nodiscard]] std::uint32_t GetCurrentSize() const;
    void SetValue(std::int32_t index, double value);
    void Insert(std::int32_t index, double value);
    void Erase(std::int32_t index, double key);
    void Resize(std::uint32_t size);
    // Reports every element from the smaller of two sizes up to the larger one as changed.
    void ReportResize(std::uint32_t from, std::uint32_t to);

    void WriteToFile(std::FILE* file) const;
    void ReadFromFile(std::FILE* file);

    void StartTransaction(const std::string& id);
    void EndTransaction(const std::string& id);
    void RevertTransaction(const std::string& id);
    [[nodiscard]] bool HasColumnChanged() const;
    [[nodiscard]] std::int32_t GetRecordState(std::int32_t index) const;
    void ResetColoumnChanged();

private:
    struct Block;
    struct Aside;

    [[nodiscard]] double* Values() const;
    [[nodiscard]] bool IsHeld(std::int32_t index) const;
    [[nodiscard]] double ValueBehind(std::int32_t index) const;
    void SetValueBehind(std::int32_t index, double value);
    void Extend(std::uint32_t held);
    void SetCapacity(std::uint32_t capacity);
    Aside& NeedAside();
    // Hands the strategy to `tell`, unless nobody is told.
    template <typename Tell>
    void Report(Tell tell) const;
    void ReportChange(std::int32_t index) const;

    Block* block_ = nullptr;
};

} // namespace Kestrona::Data::MemoryResident
