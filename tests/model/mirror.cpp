#include "model/mirror.h"

#include <kestrona/matrices.h>
#include <kestrona/records.h>

#include <algorithm>
#include <array>

namespace Kestrona::Model {

using namespace Data::MemoryResident;

namespace {

constexpr std::size_t kLastOperations = 12;
constexpr std::int32_t kKey = 0;
constexpr std::int32_t kMostDeleted = 48;

std::string Joined(const std::vector<double>& numbers) {
    std::ostringstream out;
    for (const double number : numbers) {
        out << number << ' ';
    }
    return out.str();
}

} // namespace

Mirror::Mirror(MemoryResidentData& store, const Plan& plan, unsigned seed)
    : store_(store),
      plan_(plan),
      twin_(plan),
      random_(seed) {}

std::int32_t Mirror::Fields(std::int32_t format) const {
    return static_cast<std::int32_t>(plan_[static_cast<std::size_t>(format)].fields.size());
}

const FieldPlan& Mirror::Field(std::int32_t format, std::int32_t field) const {
    return plan_[static_cast<std::size_t>(format)].fields[static_cast<std::size_t>(field)];
}

void Mirror::Remember(std::string line) {
    operations_.push_back(std::move(line));
    if (operations_.size() > kLastOperations) {
        operations_.pop_front();
    }
}

std::string Mirror::LastOperations() const {
    std::string lines;
    for (const std::string& line : operations_) {
        lines += "\n  " + line;
    }
    return lines;
}

void Mirror::Expect(bool is_right, const char* what) {
    if (!is_right) {
        problems_ += std::string(what) + " answers wrongly; ";
    }
}

double Mirror::DrawKey(std::int32_t format) {
    if (format == -1 || twin_.Size(format) == 0 || Chance(15)) {
        return std::array{-1.0, 0.0, -0.0, 1.0, 2.0, 1.5}[static_cast<std::size_t>(Draw(6))];
    }
    return twin_.Number(format, kKey, Draw(twin_.Size(format)));
}

void Mirror::SetNumber(std::int32_t format, std::int32_t field, std::int32_t record, double value) {
    Tell("SetDbValue ", format, ' ', field, ' ', record, ' ', value);
    store_.SetDbValue(format, field, record, value);
    twin_.SetNumber(format, field, record, value);
}

void Mirror::GiveNewKey(std::int32_t format, std::int32_t record) {
    double key = 0.0;
    find_next_value(store_, format, kKey, &key);
    Expect(key == twin_.NextKey(format), "find_next_value");
    SetNumber(format, kKey, record, key);
}

// Most records get a key of their own.
void Mirror::NeedKey(std::int32_t format, std::int32_t record) {
    if (plan_[static_cast<std::size_t>(format)].has_unique_keys || Chance(80)) {
        GiveNewKey(format, record);
    }
}

void Mirror::Insert(std::int32_t format) {
    const std::int32_t size = twin_.Size(format);
    const std::array places{0, size, Draw(size + 1), Draw(size + 1), size + 3, -1};
    const std::int32_t record = places[static_cast<std::size_t>(Draw(Chance(90) ? 4 : 6))];
    Tell("KSDLL_InsertDbItem ", format, ' ', record);
    Expect(KSDLL_InsertDbItem(store_, format, record) == 0, "KSDLL_InsertDbItem");
    twin_.Insert(format, record);
    NeedKey(format, record < 0 || record > size ? size : record);
}

void Mirror::Create(std::int32_t format) {
    Tell("KSDLL_CreateRecord ", format);
    const double key = twin_.NextKey(format);
    const std::int32_t record = twin_.Size(format);
    Expect(KSDLL_CreateRecord(store_, format) == record, "KSDLL_CreateRecord");
    twin_.Insert(format, record);
    twin_.SetNumber(format, kKey, record, key);
}

void Mirror::DeleteOne(std::int32_t format) {
    const std::int32_t record = Draw(twin_.Size(format));
    Tell("KSDLL_DeleteDbItem ", format, ' ', record);
    KSDLL_DeleteDbItem(store_, format, record);
    twin_.Delete(format, {record});
}

void Mirror::DeleteMany(std::int32_t format) {
    const std::int32_t size = twin_.Size(format);
    std::vector<std::int32_t> records;
    std::string told;
    for (std::int32_t i = Draw(std::min(size / 2, kMostDeleted) + 1); i >= 0; --i) {
        const std::int32_t record =
            Chance(90) ? Draw(size) : std::array{-1, size, 999900000}[static_cast<std::size_t>(i % 3)];
        records.insert(records.end(), Chance(20) ? 2U : 1U, record);
        told += ' ' + std::to_string(record);
    }
    Tell("KSDLL_DeleteDbItems ", format, told);
    KSDLL_DeleteDbItems(store_, format, records);
    twin_.Delete(format, records);
}

// One matrix for a whole field has no record to stand in when the last one goes, so such a format is emptied.
void Mirror::ClearIfEmpty() {
    for (std::int32_t format = 0; format < store_.GetFormatCount(); ++format) {
        const auto& fields = plan_[static_cast<std::size_t>(format)].fields;
        const bool has_common =
            std::ranges::any_of(fields, [](const FieldPlan& f) { return f.Has(Classes::kCommonMatrix); });
        if (has_common && twin_.Size(format) == 0) {
            Clear(format);
        }
    }
}

void Mirror::Delete(std::int32_t format) {
    if (Chance(60)) {
        DeleteOne(format);
    } else {
        DeleteMany(format);
    }
    ClearIfEmpty();
}

void Mirror::Append(std::int32_t format, double key) {
    KSDLL_InsertDbItem(store_, format, twin_.Size(format));
    twin_.Insert(format, twin_.Size(format));
    const std::int32_t last = twin_.Size(format) - 1;
    store_.SetDbValue(format, kKey, last, key);
    twin_.SetNumber(format, kKey, last, key);
}

void Mirror::Clear(std::int32_t format) {
    Tell("KSDLL_Clear ", format);
    KSDLL_Clear(store_, format);
    twin_.Clear(format);
}

void Mirror::Fill(std::int32_t format, std::int32_t field, std::int32_t record, const std::vector<double>& cells) {
    const std::int32_t id = KSDLL_CreateMatrix(store_, static_cast<std::uint32_t>(cells.size()), format, field, record);
    for (std::uint32_t i = 0; i < cells.size(); ++i) {
        KSDLL_SetMatrixValue(id, i, cells[i]);
    }
    twin_.SetCells(format, field, record, cells);
}

// A list and those beside it get the same length.
void Mirror::WriteList(std::int32_t format, std::int32_t field, std::int32_t record) {
    std::vector<double> keys(static_cast<std::size_t>(Draw(6)));
    std::ranges::generate(keys, [&] { return DrawKey(Field(format, field).field.table); });
    Tell("Fill list ", format, ' ', field, ' ', record, ' ', Joined(keys));
    Fill(format, field, record, keys);
    for (std::int32_t other = 0; other < Fields(format); ++other) {
        if (Field(format, other).beside == field) {
            std::ranges::generate(keys, [&] { return DrawKey(Field(format, other).storage); });
            Fill(format, other, record, keys);
        }
    }
}

void Mirror::WriteElement(std::int32_t format, std::int32_t field, std::int32_t record) {
    const TwinMatrix* const matrix = twin_.Matrix(format, field, record);
    if (matrix != nullptr && matrix->size > 0) {
        const auto index = static_cast<std::uint32_t>(Draw(static_cast<std::int32_t>(matrix->size)));
        const double value = Draw(1000) / 8.0;
        Tell("KSDLL_SetMatrixValue ", format, ' ', field, ' ', record, ' ', index, ' ', value);
        KSDLL_SetMatrixValue(KSDLL_GetDbMatrix(store_, format, field, record), index, value);
        twin_.SetCell(format, field, record, index, value);
    }
}

void Mirror::DeleteEntry(std::int32_t format, std::int32_t field, std::int32_t record) {
    const TwinMatrix* const list = twin_.Matrix(format, field, record);
    const std::int32_t index = Draw(list != nullptr ? static_cast<std::int32_t>(list->size) + 1 : 1);
    Tell("KSDLL_DeleteMatrixRow ", format, ' ', field, ' ', record, ' ', index);
    KSDLL_DeleteMatrixRow(KSDLL_GetDbMatrix(store_, format, field, record), index);
    twin_.DeleteCell(format, field, record, static_cast<std::size_t>(index));
}

void Mirror::WriteMatrix(std::int32_t format, std::int32_t field, std::int32_t record) {
    if (Field(format, field).IsAnyList() && Chance(20)) {
        DeleteEntry(format, field, record);
    } else if (Field(format, field).Has(Classes::kList)) {
        WriteList(format, field, record);
    } else if (!Field(format, field).Has(Classes::kStringStorage)) {
        WriteElement(format, field, record);
    }
}

void Mirror::WriteText(std::int32_t format, std::int32_t field, std::int32_t record) {
    const std::wstring text(static_cast<std::size_t>(Draw(9)), static_cast<wchar_t>(L'A' + Draw(3)));
    Tell("SetDbString ", format, ' ', field, ' ', record, ' ', text.size());
    store_.SetDbString(format, field, record, text);
    twin_.SetText(format, field, record, text);
}

void Mirror::WriteNumber(std::int32_t format, std::int32_t field, std::int32_t record) {
    if (field != kKey) {
        const bool refers = (Field(format, field).field.type & TypeBit::kReference) != 0;
        const std::int32_t table =
            Field(format, field).Has(Classes::kFamily) ? format : Field(format, field).field.table;
        SetNumber(format, field, record, refers ? DrawKey(table) : Draw(9) / 2.0 - 1.0);
    } else if (!plan_[static_cast<std::size_t>(format)].has_unique_keys && Chance(30)) {
        SetNumber(format, field, record, DrawKey(format));
    }
}

void Mirror::WriteField(std::int32_t format, std::int32_t field, std::int32_t record) {
    if (Field(format, field).IsMatrix()) {
        WriteMatrix(format, field, record);
    } else if (Field(format, field).IsText()) {
        WriteText(format, field, record);
    } else {
        WriteNumber(format, field, record);
    }
}

void Mirror::Write(std::int32_t format) {
    const std::int32_t field = Draw(Fields(format));
    const std::int32_t record = Draw(twin_.Size(format));
    WriteField(format, field, record);
    if (Chance(10)) {
        store_.SetDbUpdate(format, record, Draw(100));
        twin_.SetUpdate(format, record, store_.GetDbUpdate(format, record));
    }
}

void Mirror::CopyRow(std::int32_t format) {
    const std::int32_t source = Draw(twin_.Size(format));
    const std::int32_t target = Draw(twin_.Size(format));
    Tell("CopyItemInfo ", source, ' ', target, ' ', format);
    store_.CopyItemInfo(source, target, format);
    twin_.CopyRow(format, source, target);
    NeedKey(format, target);
}

void Mirror::SwapRows(std::int32_t format) {
    const std::int32_t record1 = Draw(twin_.Size(format));
    const std::int32_t record2 = Draw(twin_.Size(format));
    Tell("SwapItemInfo ", record1, ' ', record2, ' ', format);
    store_.SwapItemInfo(record1, record2, format);
    twin_.SwapRows(format, record1, record2);
}

void Mirror::CopyList(std::int32_t format) {
    const std::int32_t target_format = Draw(store_.GetFormatCount());
    const std::int32_t field = Draw(Fields(format));
    const std::int32_t target_field = format == target_format ? field : Draw(Fields(target_format));
    if (twin_.Size(target_format) == 0 || !Field(format, field).IsAnyList() ||
        !Field(target_format, target_field).IsAnyList()) {
        return;
    }
    const std::int32_t record = Draw(twin_.Size(format));
    const std::int32_t target = Draw(twin_.Size(target_format));
    Tell("CopyMatrix ", format, ' ', field, ' ', record, ' ', target_format, ' ', target_field, ' ', target);
    store_.CopyMatrix(format, field, record, target_format, target_field, target);
    twin_.CopyMatrix(format, field, record, target_format, target_field, target);
}

} // namespace Kestrona::Model
