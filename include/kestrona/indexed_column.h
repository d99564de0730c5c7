#pragma once

#include <kestrona/column.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <shared_mutex>
#include <string>
#include <vector>

/// \file
/// The hash index in front of a column.

namespace Kestrona::Data::MemoryResident {

/// A column with a value-to-records index beside it.
///
/// The index is built at the first search and costs nothing before. Single writes and growth keep it up to date; any
/// other change marks it stale, and the next search builds it anew.
///
/// Threads: searches share a lock, changes take it alone. `GetValue`, `operator[]`, `GetCurrentSize` and the minimum
/// and maximum take none, so they must not run beside a writer.
template <typename T>
class KS_API IndexedColumn : public virtual IColumn<T> {
public:
    /// Takes ownership of `column`. Requires: not null.
    explicit IndexedColumn(IColumn<T>* column);
    IndexedColumn(const IndexedColumn&) = delete;
    IndexedColumn& operator=(const IndexedColumn&) = delete;
    ~IndexedColumn() override;

    void StartTransaction(std::string id) override;
    void EndTransaction(std::string id) override;
    void RevertTransaction(std::string id) override;
    void Insert(std::int32_t record, const T& value) override;
    /// A short move keeps the index up to date, a long one makes it stale.
    void MoveUp(std::int32_t first, std::int32_t last) override;
    void Erase(std::int32_t record, double key) override;
    T operator[](std::int32_t record) const override;
    void SetValue(std::int32_t record, const T& value) override;
    T GetValue(std::int32_t record) const override;
    /// Expected constant time once the index stands.
    std::int32_t Find(const T& value) const override;
    /// A search for equality uses the index, every other comparison walks the column.
    FindResult* FindAll(const T& value, FindOperator comparison) override;
    /// Returns a view into the index, or an owned empty result. The view is valid until the next write to the column.
    FindResult* FindAll(const T& value) override;
    FindResult* DistinctValues() override;
    void WriteToFile(std::FILE* file) override;
    void ReadFromFile(std::FILE* file) override;
    void Clear(bool mark_changed) override;
    std::uint32_t GetCurrentSize() const override;
    T FindMaxValue(bool exclude_default) override;
    T FindMaxValue() override;
    T FindMinValue(bool exclude_default) override;
    T FindMinValue() override;
    void Resize(std::uint32_t size) override;
    T GetDefaultValue() const override;
    bool IsIndexedColumn() override;
    bool IsIndexValid() override;
    bool HasColumnChanged() override;
    std::int32_t GetRecordState(std::int32_t record) override;
    void ResetColoumnChanged() override;
    void BeginBulkUpdate() override;
    void EndBulkUpdate() override;
    void GroupErase(IColumn<double>* keys, std::vector<std::int32_t> records) override;
    /// Returns this object.
    IColumn<T>* CreateIndexedColumn() override;
    void ReadBlock(std::int32_t first, std::int32_t count, T* out) const override;

    /// Marks the index as stale unless this object is writing at the moment. Called by the wrapped storage.
    void Invalidate();

private:
    class Index;

    void EnsureIndex() const;
    void BuildIndex() const;
    [[nodiscard]] std::int32_t IfStillThere(std::int32_t record) const;
    [[nodiscard]] std::int32_t SettleAndFind(const T& value) const;
    template <typename Write, typename Follow>
    void WriteThrough(Write write, Follow follow);
    template <typename Change>
    void ChangeUnindexed(Change change);
    void IndexNewRecords(std::uint32_t first, std::uint32_t last, std::int32_t written);

    mutable std::shared_mutex mutex_;
    std::unique_ptr<IColumn<T>> column_;
    std::unique_ptr<Index> index_;
    // Written under the exclusive lock or by a thread that has the column for itself; read without a lock.
    mutable std::atomic<bool> valid_ = false;
    std::atomic<bool> updating_ = false;
};

extern template class KS_API IndexedColumn<double>;
extern template class KS_API IndexedColumn<std::wstring>;
extern template class KS_API IndexedColumn<char>;
extern template class KS_API IndexedColumn<std::int32_t>;

} // namespace Kestrona::Data::MemoryResident
