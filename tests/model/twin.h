#pragma once

#include "model/plan.h"

#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <utility>
#include <vector>

// What the store must look like: plain vectors that know nothing of the library, changed in the most obvious way.
namespace Kestrona::Model {

// A matrix as its users see it: cells in the order of their numbers. Cells behind a size that was made smaller stay.
struct TwinMatrix {
    bool exists = false;
    double default_value = 0.0;
    std::size_t size = 0;
    std::vector<double> cells;

    [[nodiscard]] double At(std::size_t index) const { return index < cells.size() ? cells[index] : default_value; }

    [[nodiscard]] std::vector<double> Cells() const;
    void Set(std::size_t index, double value);
    void Assign(std::vector<double> values);
};

struct TwinRow {
    std::int32_t serial = 0; // stays with the record when its number changes
    std::vector<double> numbers;
    std::vector<std::wstring> texts;
};

struct TwinFormat {
    const FormatPlan* plan = nullptr;
    std::vector<TwinRow> rows;
    std::vector<std::vector<std::int32_t>> ids; // of each field the matrices by record; may be longer than `rows`
    std::vector<std::int32_t> updates;          // likewise
};

class Twin {
public:
    explicit Twin(const Plan& plan);

    [[nodiscard]] const TwinFormat& Format(std::int32_t format) const { return formats_[Index(format)]; }

    [[nodiscard]] std::int32_t Size(std::int32_t format) const;
    [[nodiscard]] double Number(std::int32_t format, std::int32_t field, std::int32_t record) const;
    [[nodiscard]] const std::wstring& Text(std::int32_t format, std::int32_t field, std::int32_t record) const;
    // Null for a record without a matrix.
    [[nodiscard]] const TwinMatrix* Matrix(std::int32_t format, std::int32_t field, std::int32_t record) const;
    [[nodiscard]] std::int32_t Update(std::int32_t format, std::int32_t record) const;
    // The first record with the key, -1 for none.
    [[nodiscard]] std::int32_t FindKey(std::int32_t format, double key) const;
    [[nodiscard]] double NextKey(std::int32_t format) const;

    void SetNumber(std::int32_t format, std::int32_t field, std::int32_t record, double value);
    void SetText(std::int32_t format, std::int32_t field, std::int32_t record, const std::wstring& text);
    void SetUpdate(std::int32_t format, std::int32_t record, std::int32_t value);
    void CreateMatrix(std::int32_t format, std::int32_t field, std::int32_t record, std::size_t size);
    void SetCell(std::int32_t format, std::int32_t field, std::int32_t record, std::size_t index, double value);
    // A matrix of exactly these cells.
    void SetCells(std::int32_t format, std::int32_t field, std::int32_t record, const std::vector<double>& values);
    void DeleteCell(std::int32_t format, std::int32_t field, std::int32_t record, std::size_t index);

    void Insert(std::int32_t format, std::int32_t record);
    void Delete(std::int32_t format, const std::vector<std::int32_t>& records);
    void Clear(std::int32_t format);

    void CopyRow(std::int32_t format, std::int32_t source, std::int32_t target);
    void SwapRows(std::int32_t format, std::int32_t record1, std::int32_t record2);
    // The rows as `records` tells them: each record once, in its new order.
    void Reorder(std::int32_t format, const std::vector<std::int32_t>& records);
    void CopyMatrix(std::int32_t source_format, std::int32_t source_field, std::int32_t source_record,
                    std::int32_t format, std::int32_t field, std::int32_t record);

private:
    using Rows = std::set<std::pair<std::int32_t, std::int32_t>>; // format and serial
    using Positions = std::vector<std::set<std::int32_t>>;        // of each format

    static std::size_t Index(std::int32_t number) { return static_cast<std::size_t>(number); }

    [[nodiscard]] const FieldPlan& Field(std::int32_t format, std::int32_t field) const;
    [[nodiscard]] std::int32_t Fields(std::int32_t format) const;

    [[nodiscard]] std::int32_t Formats() const { return static_cast<std::int32_t>(formats_.size()); }

    [[nodiscard]] std::int32_t IdAt(std::int32_t format, std::int32_t field, std::int32_t record) const;
    void SetId(std::int32_t format, std::int32_t field, std::int32_t record, std::int32_t id);
    [[nodiscard]] TwinMatrix* Mutable(std::int32_t format, std::int32_t field, std::int32_t record);
    // Records of `format`, or how many there were before `change` records came.
    [[nodiscard]] std::size_t Extent(std::int32_t format, std::int32_t changed, std::int32_t change) const;
    [[nodiscard]] std::size_t FullSize(const FieldPlan& field) const;

    [[nodiscard]] TwinRow BlankRow(std::int32_t format);
    void MakeOwnMatrices(std::int32_t format, std::int32_t field);
    void ShiftMatrices(std::int32_t format, std::int32_t field, std::int32_t record);
    void OpenHoles(std::int32_t format, std::int32_t record);
    void OpenHole(std::int32_t owner, std::int32_t field, std::int32_t owner_record, std::int32_t format,
                  std::int32_t record);

    void AddOwned(Rows& rows, std::int32_t format, std::int32_t record) const;
    void CloseHoles(std::int32_t owner, std::int32_t field, const Positions& gone);
    void RemoveKeys(std::int32_t owner, std::int32_t field, const std::set<double>& keys);
    void EraseRow(std::int32_t format, std::int32_t record);

    std::vector<TwinFormat> formats_;
    std::vector<std::vector<TableColumn>> dimensioned_; // by each format the fields that it dimensions
    std::vector<TwinMatrix> matrices_;
    std::int32_t next_serial_ = 0;
};

} // namespace Kestrona::Model
