#pragma once

#include <kestrona/column.h>
#include <kestrona/matrix_column.h>
#include <kestrona/memory_resident_data.h>

#include <cstdint>
#include <cstdio>
#include <string>

/// \file
/// The columns of calculated fields.

namespace Kestrona::Data::MemoryResident {

/// What the columns of calculated fields have in common: they store nothing, drop what is written, and evaluate the
/// field's expression at each read, so a value is always current. Records are those of the format.
///
/// Calculated fields that read each other are evaluated up to 256 levels deep, the steps from references to the fields
/// that they show included. A read that would go further gives 0.0 or an empty text, with one line to the debug log.
/// \tparam T `double` or `std::wstring`.
template <typename T>
class KS_API CalculatedColumn : public IColumn<T> {
public:
    void StartTransaction(std::string id) override;
    void EndTransaction(std::string id) override;
    void RevertTransaction(std::string id) override;
    void Insert(std::int32_t record, const T& value) override;
    void Erase(std::int32_t record, double key) override;
    T operator[](std::int32_t record) const override;
    void SetValue(std::int32_t record, const T& value) override;
    /// Evaluates up to the first record found.
    std::int32_t Find(const T& value) const override;
    /// Evaluates every record. Empty for a comparison that is none of the five.
    FindResult* FindAll(const T& value, FindOperator comparison) override;
    FindResult* FindAll(const T& value) override;
    void WriteToFile(std::FILE* file) override;
    void ReadFromFile(std::FILE* file) override;
    void Clear(bool mark_changed) override;
    /// Returns 0.
    std::uint32_t GetCurrentSize() const override;
    /// Returns -9e+99 or the empty text, and so do the other three: there is no extreme of a calculated field.
    T FindMaxValue(bool exclude_default) override;
    T FindMaxValue() override;
    T FindMinValue(bool exclude_default) override;
    T FindMinValue() override;
    void Resize(std::uint32_t size) override;
    bool HasColumnChanged() override;
    std::int32_t GetRecordState(std::int32_t record) override;
    void ResetColoumnChanged() override;
    /// Returns this column: there is no index over calculated values.
    IColumn<T>* CreateIndexedColumn() override;
    bool CanWrite() override;

protected:
    /// Borrows `store`, which must outlive the column.
    CalculatedColumn(std::int32_t format, std::int32_t field, IMemoryResidentData& store)
        : format_(format),
          field_(field),
          store_(&store) {}

    [[nodiscard]] std::int32_t Format() const { return format_; }

    [[nodiscard]] std::int32_t Field() const { return field_; }

    [[nodiscard]] IMemoryResidentData& Store() const { return *store_; }

    /// Returns the field's present expression, null for none. It is asked for at each read, since the store may replace
    /// it at any time.
    [[nodiscard]] INativeExpression* Calculation() const { return store_->GetDbEvaluateExpression(format_, field_); }

private:
    template <typename Predicate>
    [[nodiscard]] FindResult* FindRecords(Predicate predicate) const;

    std::int32_t format_;
    std::int32_t field_;
    IMemoryResidentData* store_;
};

extern template class KS_API CalculatedColumn<double>;
extern template class KS_API CalculatedColumn<std::wstring>;

/// The number of a calculated field; 0.0 without an expression.
class KS_API EvaluateColumn final : public CalculatedColumn<double> {
public:
    EvaluateColumn(std::int32_t format, std::int32_t field, IMemoryResidentData& store)
        : CalculatedColumn(format, field, store) {}

    double GetValue(std::int32_t record) const override;
    double GetDefaultValue() const override;
    void ReadBlock(std::int32_t first, std::int32_t count, double* out) const override;
};

/// The text of a calculated field; empty without an expression.
class KS_API StringEvaluateColumn final : public CalculatedColumn<std::wstring> {
public:
    StringEvaluateColumn(std::int32_t format, std::int32_t field, IMemoryResidentData& store)
        : CalculatedColumn(format, field, store) {}

    std::wstring GetValue(std::int32_t record) const override;
    std::wstring GetDefaultValue() const override;
};

/// One matrix of a calculated matrix field: its elements are evaluated at each read, those of the matrices that the
/// expression names at the same index. 0.0 without an expression. The cells that it inherits stay unused.
class KS_API MatrixEvaluateColumn final : public MatrixColumn {
public:
    /// Takes ownership of `record_state`; borrows `store`, which must outlive the column.
    MatrixEvaluateColumn(IRecordStateStrategy* record_state, double default_value, std::int32_t format,
                         std::int32_t field, IMemoryResidentData& store);

    double GetElement(std::int32_t record, std::uint32_t index) const override;

private:
    std::int32_t format_;
    std::int32_t field_;
    IMemoryResidentData* store_;
};

} // namespace Kestrona::Data::MemoryResident
