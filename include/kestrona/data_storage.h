#pragma once

#include <kestrona/column.h>
#include <kestrona/record_state_strategy.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

/// \file
/// The sparse-tailed growable array behind most columns.

namespace Kestrona::Data::MemoryResident {

template <typename T>
class IndexedColumn;
class RecordStateStrategy;

/// Stores the values of a column.
///
/// Physically held is only what was ever written different from the default; every record behind the physical end
/// reads as the default, so a column of defaults costs nothing. The positions of the extreme values are cached.
/// Comparison is exact: numbers as they are, texts by UTF-16 code unit. A NaN equals nothing, itself included.
template <typename T>
class KS_API DataStorage : public virtual IColumn<T> { // NOLINT(*-virtual-class-destructor): it is virtual
public:
    /// Takes ownership of `record_state`. Requires: not null.
    explicit DataStorage(IRecordStateStrategy* record_state);
    /// Copies member by member, the two pointers included: a copy and its source must not both be destroyed.
    DataStorage(const DataStorage& other);
    DataStorage& operator=(const DataStorage& other);
    ~DataStorage() override;

    /// Sets the default, fills the scratch cells with it and announces size 0.
    void Initialise(T default_value);
    T GetValue(std::uint32_t record) const;
    void SetValue(std::uint32_t record, const T& value);
    /// Releases its argument.
    void Free(T value);
    /// Forgets the cached positions of the extreme values.
    void ResetMinMax();
    /// Replaces all values, as read from a file: counts as no change.
    void ReplaceValues(std::vector<T> values);

    void StartTransaction(std::string id) override;
    void EndTransaction(std::string id) override;
    void RevertTransaction(std::string id) override;
    /// Up to a position past the physical end, defaults fill in. A position that no record can have is dropped.
    void Insert(std::int32_t record, const T& value) override;
    void MoveUp(std::int32_t first, std::int32_t last) override;
    void Erase(std::int32_t record, double key) override;
    T operator[](std::int32_t record) const override;
    /// A negative number and one above the scratch records is dropped.
    void SetValue(std::int32_t record, const T& value) override;
    T GetValue(std::int32_t record) const override;
    std::int32_t Find(const T& value) const override;
    FindResult* FindAll(const T& value, FindOperator comparison) override;
    FindResult* FindAll(const T& value) override;
    /// A 32-bit count and the physically held values; a text is its number of UTF-16 units and the units.
    void WriteToFile(std::FILE* file) override;
    /// Numbers replace all values and count as no change. Texts are written over the first records one by one, cut at a
    /// zero unit, and count as changes; texts behind them stay.
    void ReadFromFile(std::FILE* file) override;
    void Clear(bool mark_changed) override;
    std::uint32_t GetCurrentSize() const override;
    T FindMaxValue(bool exclude_default) override;
    T FindMaxValue() override;
    T FindMinValue(bool exclude_default) override;
    T FindMinValue() override;
    void Resize(std::uint32_t size) override;
    T GetDefaultValue() const override;
    bool HasColumnChanged() override;
    std::int32_t GetRecordState(std::int32_t record) override;
    void ResetColoumnChanged() override;
    void GroupErase(IColumn<double>* keys, std::vector<std::int32_t> records) override;
    /// Returns the index in front of this storage, made at the first call.
    IColumn<T>* CreateIndexedColumn() override;
    void ReadBlock(std::int32_t first, std::int32_t count, T* out) const override;

protected:
    virtual T GetMinTypeValue();
    virtual T GetMaxTypeValue();
    /// Marks the index in front as stale, unless the index itself is writing. Called only when there is one, or once
    /// after `HearOfNextChange`.
    virtual void InvalidateIndex();
    /// Has `InvalidateIndex` called before the next change of a record, be there an index or not.
    void HearOfNextChange();
    /// Tells whether a write of `b` over `a` changes nothing.
    virtual bool ValuesEqual(const T& a, const T& b) = 0;

    static bool AreEqual(const T& a, const T& b) { return a == b; }

    /// The strategy that hears of changes.
    [[nodiscard]] IRecordStateStrategy& RecordState() const { return *recordState_; }

private:
    template <typename>
    friend class ValueManagedDataStorage;
    template <typename>
    friend class DataStorageWrapper;

    // Positions of the extreme values; -1 means not known.
    struct Extremes {
        std::int32_t max = -1;
        std::int32_t min = -1;
        std::int32_t maxNonDefault = -1;
        std::int32_t minNonDefault = -1;
    };

    static bool IsLessThan(const T& a, const T& b);
    static bool IsLessThanOrEqual(const T& a, const T& b);
    static bool IsGreaterThan(const T& a, const T& b);
    static bool IsGreaterThanOrEqual(const T& a, const T& b);
    template <typename Predicate>
    FindResult* FindAllImpl(const T& value, Predicate predicate);

    [[nodiscard]] bool IsHeld(std::int32_t record) const { return static_cast<std::uint32_t>(record) < values_.size(); }

    [[nodiscard]] const T& Cell(std::int32_t record) const {
        return IsHeld(record) ? values_[static_cast<std::size_t>(record)] : CellBehindValues(record);
    }

    [[nodiscard]] const T& CellBehindValues(std::int32_t record) const;
    template <typename Equal>
    void Write(std::int32_t record, const T& value, Equal equal);
    void WriteTheLongWay(std::int32_t record, const T& value);
    void ReplaceHeld(std::int32_t record, const T& value);
    void Extend(std::int32_t record, const T& value);
    template <typename Equal>
    void MoveValuesUp(std::int32_t first, std::int32_t last, Equal equal);
    template <typename Equal>
    void ReportMoves(std::int32_t low, std::int32_t high, Equal equal);
    void InvalidateIndexInFront();

    [[nodiscard]] Extremes ExtremesAfterWrite(std::int32_t record, const T& value) const;
    [[nodiscard]] bool LosesExtreme(std::int32_t record, const T& value) const;
    void ForgetExtremesBeyondDefault();
    void ScanForMax();
    void ScanForMin();
    void RequireRecords(const char* message) const;

    void ReportErasedRuns(IColumn<double>& keys, const std::vector<std::int32_t>& records);
    void RemoveHeld(const std::vector<std::int32_t>& records);

    std::vector<T> values_;
    T defaultValue_{};
    IndexedColumn<T>* indexedColumn_ = nullptr;
    IRecordStateStrategy* recordState_;
    RecordStateStrategy* marks_; // recordState_ where it is of this very class, so that a change is marked directly
    bool tracked_;               // false when recordState_ has no ear for changes
    bool watched_ = false;       // an index stands in front, somebody listens, or an extreme value may be known
    bool listens_ = false;       // InvalidateIndex wants to be called for the next change
    std::uint32_t logicalSize_ = 0;
    Extremes extremes_;
    std::array<T, kScratchRecords> scratchValues_{};
};

extern template class KS_API DataStorage<double>;
extern template class KS_API DataStorage<std::wstring>;
extern template class KS_API DataStorage<char>;
extern template class KS_API DataStorage<std::int32_t>;

} // namespace Kestrona::Data::MemoryResident
