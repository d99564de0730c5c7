#pragma once

#include <kestrona/data_storage.h>

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

/// \file
/// The columns that the store makes for plain fields.

namespace Kestrona::Data::MemoryResident {

/// A storage with a given default whose writes compare exactly. A column with another idea of equality derives from
/// `DataStorage<T>`.
///
/// `DataStorage<T>` is a virtual base: every class that derives from here names it in its constructors, too, with the
/// same `record_state`. The storage takes that object once.
/// \tparam T `double`, `char` or `std::int32_t`.
template <typename T>
class KS_API ValueManagedDataStorage : public virtual DataStorage<T> {
public:
    /// Takes ownership of `record_state`.
    ValueManagedDataStorage(T default_value, IRecordStateStrategy* record_state);
    using DataStorage<T>::GetValue;
    using DataStorage<T>::SetValue;
    void SetValue(std::int32_t record, const T& value) override;
    T GetValue(std::int32_t record) const override;
    void MoveUp(std::int32_t first, std::int32_t last) override;

protected:
    bool ValuesEqual(const T& a, const T& b) final;
};

extern template class KS_API ValueManagedDataStorage<double>;
extern template class KS_API ValueManagedDataStorage<char>;
extern template class KS_API ValueManagedDataStorage<std::int32_t>;

/// Numbers, dates, durations, keys and references.
class KS_API DoubleColumn : public virtual ValueManagedDataStorage<double> {
public:
    /// Takes ownership of `record_state`.
    DoubleColumn(IRecordStateStrategy* record_state, double default_value);
    ~DoubleColumn() override;
};

/// A column whose values also go to another one, except -1.0, which stands for no override.
class KS_API OverrideDoubleColumn : public virtual DoubleColumn {
public:
    /// Takes ownership of `record_state`, borrows `target`. A null target is never written.
    OverrideDoubleColumn(IRecordStateStrategy* record_state, IColumn<double>* target, double default_value);
    using DoubleColumn::SetValue;
    void SetValue(std::int32_t record, const double& value) override;

private:
    IColumn<double>* target_;
};

/// Texts. `FindMinValue` finds no text below the empty one, so it answers with the default.
class KS_API StringColumn : public virtual DataStorage<std::wstring> {
public:
    /// Takes ownership of `record_state`.
    StringColumn(std::wstring default_value, IRecordStateStrategy* record_state);

protected:
    bool ValuesEqual(const std::wstring& a, const std::wstring& b) override;
    std::wstring GetMinTypeValue() override;
    std::wstring GetMaxTypeValue() override;
};

/// Narrow storage behind the interface of a double column.
///
/// An index stands between this object and the storage, and is told nothing of bulk updates: it goes stale through the
/// storage and rebuilds itself at the next search.
/// \tparam T `char` or `std::int32_t`.
template <typename T>
class KS_API DataStorageWrapper : public virtual IColumn<double> {
public:
    /// Takes ownership of `record_state`.
    DataStorageWrapper(T default_value, IRecordStateStrategy* record_state);
    DataStorageWrapper(const DataStorageWrapper&) = delete;
    DataStorageWrapper& operator=(const DataStorageWrapper&) = delete;
    ~DataStorageWrapper() override;

    void StartTransaction(std::string id) override;
    void EndTransaction(std::string id) override;
    void RevertTransaction(std::string id) override;
    void Insert(std::int32_t record, const double& value) override;
    void MoveUp(std::int32_t first, std::int32_t last) override;
    void Erase(std::int32_t record, double key) override;
    double operator[](std::int32_t record) const override;
    void SetValue(std::int32_t record, const double& value) override;
    double GetValue(std::int32_t record) const override;
    std::int32_t Find(const double& value) const override;
    FindResult* FindAll(const double& value, FindOperator comparison) override;
    FindResult* FindAll(const double& value) override;
    FindResult* DistinctValues() override;
    void WriteToFile(std::FILE* file) override;
    void ReadFromFile(std::FILE* file) override;
    void Clear(bool mark_changed) override;
    std::uint32_t GetCurrentSize() const override;
    double FindMaxValue(bool exclude_default) override;
    double FindMaxValue() override;
    double FindMinValue(bool exclude_default) override;
    double FindMinValue() override;
    void Resize(std::uint32_t size) override;
    double GetDefaultValue() const override;
    bool IsIndexedColumn() override;
    bool HasColumnChanged() override;
    std::int32_t GetRecordState(std::int32_t record) override;
    void ResetColoumnChanged() override;
    void GroupErase(IColumn<double>* keys, std::vector<std::int32_t> records) override;
    /// Puts the index below this object and returns this object.
    IColumn<double>* CreateIndexedColumn() override;
    void ReadBlock(std::int32_t first, std::int32_t count, double* out) const override;

protected:
    /// Narrows a value for storage.
    [[nodiscard]] virtual T ToStoredValue(double value) const = 0;

private:
    DataStorage<T>* storage_;             // what holds the values, below the index if there is one
    std::unique_ptr<IColumn<T>> wrapped_; // the storage, or the index that owns it
};

extern template class KS_API DataStorageWrapper<char>;
extern template class KS_API DataStorageWrapper<std::int32_t>;

/// Integers: truncated toward zero; NaN and what 32 bits do not hold become 0x80000000.
class KS_API IntegerColumn : public DataStorageWrapper<std::int32_t> {
public:
    IntegerColumn(std::int32_t default_value, IRecordStateStrategy* record_state);

protected:
    [[nodiscard]] std::int32_t ToStoredValue(double value) const override;
};

/// Toggles: 0 for exactly 0.0 and 1 for everything else.
class KS_API BoolColumn : public DataStorageWrapper<char> {
public:
    BoolColumn(char default_value, IRecordStateStrategy* record_state);

protected:
    [[nodiscard]] char ToStoredValue(double value) const override;
};

/// Stands where a field has no value column of its own: stores nothing, answers 0.0, takes writes without effect.
class KS_API NullColumn : public virtual IColumn<double> {
public:
    void StartTransaction(std::string id) override;
    void EndTransaction(std::string id) override;
    void RevertTransaction(std::string id) override;
    void Insert(std::int32_t record, const double& value) override;
    void Erase(std::int32_t record, double key) override;
    double operator[](std::int32_t record) const override;
    void SetValue(std::int32_t record, const double& value) override;
    double GetValue(std::int32_t record) const override;
    std::int32_t Find(const double& value) const override;
    FindResult* FindAll(const double& value, FindOperator comparison) override;
    FindResult* FindAll(const double& value) override;
    void WriteToFile(std::FILE* file) override;
    void ReadFromFile(std::FILE* file) override;
    void Clear(bool mark_changed) override;
    std::uint32_t GetCurrentSize() const override;
    double FindMaxValue(bool exclude_default) override;
    double FindMaxValue() override;
    double FindMinValue(bool exclude_default) override;
    double FindMinValue() override;
    void Resize(std::uint32_t size) override;
    double GetDefaultValue() const override;
    bool HasColumnChanged() override;
    std::int32_t GetRecordState(std::int32_t record) override;
    void ResetColoumnChanged() override;
    bool IsNullColumn() override;
    /// Returns a new `NullColumn`; the caller owns it and replaces this one by it.
    IColumn<double>* CreateIndexedColumn() override;
};

} // namespace Kestrona::Data::MemoryResident
