#include "model/twin.h"

#include "model/side.h"

#include <algorithm>
#include <map>

namespace Kestrona::Model {

namespace {

constexpr std::int32_t kNone = -1;
constexpr std::int32_t kKey = 0;
constexpr double kLostText = 0.0;

bool IsOneDimensional(const FieldPlan& field) {
    return field.IsMatrix() && !field.IsAnyList() && !field.Has(Classes::k3DMatrix);
}

bool IsDimensionedBy(const FieldPlan& field, std::int32_t format) {
    return field.IsMatrix() && !field.IsAnyList() && (field.field.table == format || field.field.table_y == format);
}

bool LosesKeys(const FieldPlan& field) {
    return field.Has(Classes::kList) && !field.Has(Classes::kKeepKeys) && !field.Has(Classes::kKeepDeletedKeys);
}

} // namespace

std::vector<double> TwinMatrix::Cells() const {
    std::vector<double> values(size);
    for (std::size_t i = 0; i < size; ++i) {
        values[i] = At(i);
    }
    return values;
}

void TwinMatrix::Set(std::size_t index, double value) {
    if (index >= cells.size()) {
        cells.resize(index + 1, default_value);
    }
    cells[index] = value;
}

void TwinMatrix::Assign(std::vector<double> values) {
    cells = std::move(values);
    size = cells.size();
}

Twin::Twin(const Plan& plan) {
    for (const FormatPlan& format : plan) {
        formats_.push_back({.plan = &format, .rows = {}, .ids = {}, .updates = {}});
        formats_.back().ids.resize(format.fields.size());
    }
    dimensioned_.resize(plan.size());
    for (std::int32_t owner = 0; owner < Formats(); ++owner) {
        for (std::int32_t field = 0; field < Fields(owner); ++field) {
            for (std::int32_t format = 0; format < Formats() && !Format(owner).plan->has_extension; ++format) {
                if (IsDimensionedBy(Field(owner, field), format)) {
                    dimensioned_[Index(format)].push_back({owner, field});
                }
            }
        }
    }
}

const FieldPlan& Twin::Field(std::int32_t format, std::int32_t field) const {
    return Format(format).plan->fields[Index(field)];
}

std::int32_t Twin::Fields(std::int32_t format) const {
    return static_cast<std::int32_t>(Format(format).plan->fields.size());
}

std::int32_t Twin::Size(std::int32_t format) const {
    return static_cast<std::int32_t>(Format(format).rows.size());
}

double Twin::Number(std::int32_t format, std::int32_t field, std::int32_t record) const {
    const FieldPlan& plan = Field(format, field);
    return plan.calculation.empty()
               ? Format(format).rows[Index(record)].numbers[Index(field)]
               : plan.Calculated(Number(format, plan.operands[0], record), Number(format, plan.operands[1], record));
}

const std::wstring& Twin::Text(std::int32_t format, std::int32_t field, std::int32_t record) const {
    return Format(format).rows[Index(record)].texts[Index(field)];
}

std::int32_t Twin::IdAt(std::int32_t format, std::int32_t field, std::int32_t record) const {
    const std::vector<std::int32_t>& ids = Format(format).ids[Index(field)];
    return Index(record) < ids.size() ? ids[Index(record)] : kNone;
}

void Twin::SetId(std::int32_t format, std::int32_t field, std::int32_t record, std::int32_t id) {
    std::vector<std::int32_t>& ids = formats_[Index(format)].ids[Index(field)];
    if (Index(record) >= ids.size()) {
        ids.resize(Index(record) + 1, kNone);
    }
    ids[Index(record)] = id;
}

const TwinMatrix* Twin::Matrix(std::int32_t format, std::int32_t field, std::int32_t record) const {
    const std::int32_t id = IdAt(format, field, record);
    return id != kNone && matrices_[Index(id)].exists ? &matrices_[Index(id)] : nullptr;
}

TwinMatrix* Twin::Mutable(std::int32_t format, std::int32_t field, std::int32_t record) {
    return const_cast<TwinMatrix*>(Matrix(format, field, record));
}

std::int32_t Twin::Update(std::int32_t format, std::int32_t record) const {
    const std::vector<std::int32_t>& updates = Format(format).updates;
    return Index(record) < updates.size() ? updates[Index(record)] : 0;
}

std::int32_t Twin::FindKey(std::int32_t format, double key) const {
    for (std::int32_t record = 0; record < Size(format); ++record) {
        if (Number(format, kKey, record) == key) {
            return record;
        }
    }
    return kNone;
}

double Twin::NextKey(std::int32_t format) const {
    double highest = Size(format) > 0 ? Number(format, kKey, 0) : 0.0;
    for (std::int32_t record = 1; record < Size(format); ++record) {
        highest = std::max(highest, Number(format, kKey, record));
    }
    return highest + std::min(Field(format, kKey).field.default_value, 1.0);
}

void Twin::SetNumber(std::int32_t format, std::int32_t field, std::int32_t record, double value) {
    formats_[Index(format)].rows[Index(record)].numbers[Index(field)] = Field(format, field).Stored(value);
}

void Twin::SetText(std::int32_t format, std::int32_t field, std::int32_t record, const std::wstring& text) {
    const OnTwinSide side;
    const std::int32_t limit = Field(format, field).field.max_text;
    formats_[Index(format)].rows[Index(record)].texts[Index(field)] = limit > 0 ? text.substr(0, Index(limit)) : text;
}

void Twin::SetUpdate(std::int32_t format, std::int32_t record, std::int32_t value) {
    const OnTwinSide side;
    std::vector<std::int32_t>& updates = formats_[Index(format)].updates;
    updates.resize(std::max(updates.size(), Index(record) + 1));
    updates[Index(record)] = value;
}

void Twin::CreateMatrix(std::int32_t format, std::int32_t field, std::int32_t record, std::size_t size) {
    const OnTwinSide side;
    const FieldPlan& plan = Field(format, field);
    if (plan.Has(Classes::kCommonMatrix) && record != 0) {
        SetId(format, field, record, IdAt(format, field, 0));
        return;
    }
    std::int32_t id = IdAt(format, field, record);
    if (id == kNone) {
        id = static_cast<std::int32_t>(matrices_.size());
        matrices_.emplace_back();
        SetId(format, field, record, id);
    }
    TwinMatrix& matrix = matrices_[Index(id)];
    if (!matrix.exists) {
        matrix = {.exists = true, .default_value = plan.field.default_value, .cells = {}};
    }
    matrix.size = size;
}

void Twin::SetCell(std::int32_t format, std::int32_t field, std::int32_t record, std::size_t index, double value) {
    const OnTwinSide side;
    if (TwinMatrix* const matrix = Mutable(format, field, record)) {
        matrix->Set(index, value);
    }
}

void Twin::SetCells(std::int32_t format, std::int32_t field, std::int32_t record, const std::vector<double>& values) {
    const OnTwinSide side;
    CreateMatrix(format, field, record, values.size());
    for (std::size_t i = 0; i < values.size(); ++i) {
        SetCell(format, field, record, i, values[i]);
    }
}

void Twin::DeleteCell(std::int32_t format, std::int32_t field, std::int32_t record, std::size_t index) {
    const OnTwinSide side;
    TwinMatrix* const matrix = Mutable(format, field, record);
    if (matrix != nullptr && index < matrix->size) {
        std::vector<double> cells = matrix->Cells();
        cells.erase(cells.begin() + static_cast<std::ptrdiff_t>(index));
        matrix->Assign(std::move(cells));
    }
}

TwinRow Twin::BlankRow(std::int32_t format) {
    TwinRow row{.serial = next_serial_++, .numbers = {}, .texts = {}};
    for (const FieldPlan& field : Format(format).plan->fields) {
        row.numbers.push_back(field.Stored(field.field.default_value));
        row.texts.emplace_back();
    }
    return row;
}

std::size_t Twin::Extent(std::int32_t format, std::int32_t changed, std::int32_t change) const {
    return format == kNone ? 0 : Index(Size(format) - (format == changed ? change : 0));
}

std::size_t Twin::FullSize(const FieldPlan& field) const {
    const std::size_t y = Extent(field.field.table_y, kNone, 0);
    return field.Has(Classes::k3DMatrix) ? Extent(field.field.table, kNone, 0) * y : y;
}

// The matrices that a format gets when a record has been added to its end.
void Twin::MakeOwnMatrices(std::int32_t format, std::int32_t field) {
    const FieldPlan& plan = Field(format, field);
    const std::int32_t last = Size(format) - 1;
    if (plan.IsAnyList()) {
        CreateMatrix(format, field, last, 0);
        return;
    }
    for (std::int32_t record = plan.Has(Classes::kAssociate) ? last : 0; record <= last; ++record) {
        CreateMatrix(format, field, record, FullSize(plan));
    }
}

// The last record's matrix goes to `record`; a list moves as it is, of other matrices the cells move.
void Twin::ShiftMatrices(std::int32_t format, std::int32_t field, std::int32_t record) {
    const std::int32_t last = Size(format) - 1;
    if (Field(format, field).Has(Classes::kCommonMatrix)) {
        return;
    }
    if (Field(format, field).Has(Classes::kList)) {
        const auto ids = formats_[Index(format)].ids[Index(field)].begin();
        std::rotate(ids + record, ids + last, ids + last + 1);
        return;
    }
    const std::vector<double> blank = Matrix(format, field, last)->Cells();
    for (std::int32_t i = last; i > record; --i) {
        const TwinMatrix* const source = Matrix(format, field, i - 1);
        SetCells(format, field, i, source != nullptr ? source->Cells() : std::vector<double>());
    }
    SetCells(format, field, record, blank);
}

void Twin::OpenHole(std::int32_t owner, std::int32_t field, std::int32_t owner_record, std::int32_t format,
                    std::int32_t record) {
    const FieldPlan& plan = Field(owner, field);
    CreateMatrix(owner, field, owner_record, FullSize(plan));
    TwinMatrix& matrix = *Mutable(owner, field, owner_record);
    const bool is_grid = plan.Has(Classes::k3DMatrix);
    const bool moves_x = is_grid && plan.field.table == format;
    const bool moves_y = plan.field.table_y == format;
    const std::size_t old_x = is_grid ? Extent(plan.field.table, format, 1) : 1;
    const std::size_t old_y = Extent(plan.field.table_y, format, 1);
    const std::size_t new_y = Extent(plan.field.table_y, kNone, 0);
    double fill = plan.field.default_value;
    if (IsOneDimensional(plan) && plan.Has(Classes::kMatrixDefault) && owner_record < Size(format)) {
        fill = Number(format, plan.default_field, owner_record);
    }
    std::vector<double> cells(FullSize(plan), fill);
    for (std::size_t x = 0; x < old_x; ++x) {
        for (std::size_t y = 0; y < old_y; ++y) {
            const std::size_t to_x = x + (moves_x && x >= Index(record) ? 1 : 0);
            const std::size_t to_y = y + (moves_y && y >= Index(record) ? 1 : 0);
            cells[to_x * new_y + to_y] = matrix.At(x * old_y + y);
        }
    }
    matrix.Assign(std::move(cells));
}

void Twin::OpenHoles(std::int32_t format, std::int32_t record) {
    for (const auto& [owner, field] : dimensioned_[Index(format)]) {
        const FieldPlan& plan = Field(owner, field);
        if (owner == format && plan.Has(Classes::kAssociate)) {
            continue;
        }
        const std::int32_t size = plan.Has(Classes::kCommonMatrix) ? std::min(1, Size(owner)) : Size(owner);
        for (std::int32_t r = 0; r < size; ++r) {
            OpenHole(owner, field, r, format, record);
        }
    }
}

void Twin::Insert(std::int32_t format, std::int32_t record) {
    const OnTwinSide side;
    TwinFormat& target = formats_[Index(format)];
    const std::int32_t last = Size(format);
    if (record < 0 || record > last) {
        record = last;
    }
    target.rows.insert(target.rows.begin() + record, BlankRow(format));
    for (std::int32_t field = 0; field < Fields(format); ++field) {
        if (Field(format, field).IsMatrix()) {
            MakeOwnMatrices(format, field);
            ShiftMatrices(format, field, record);
        }
    }
    target.updates.resize(std::max(target.updates.size(), target.rows.size()));
    const auto updates = target.updates.begin();
    std::rotate(updates + record, updates + last, updates + last + 1);
    OpenHoles(format, record);
}

// The record, and what it owns: the records whose keys stand in its lists of stored strings.
void Twin::AddOwned(Rows& rows, std::int32_t format, std::int32_t record) const {
    if (!rows.insert({format, Format(format).rows[Index(record)].serial}).second) {
        return;
    }
    for (std::int32_t field = 0; field < Fields(format); ++field) {
        const TwinMatrix* const list = Matrix(format, field, record);
        if (!Field(format, field).Has(Classes::kStringStorage) || list == nullptr) {
            continue;
        }
        for (const double key : list->Cells()) {
            const std::int32_t owned = FindKey(Field(format, field).storage, key);
            if (owned != kNone) {
                AddOwned(rows, Field(format, field).storage, owned);
            }
        }
    }
}

void Twin::CloseHoles(std::int32_t owner, std::int32_t field, const Positions& gone) {
    const FieldPlan& plan = Field(owner, field);
    const std::set<std::int32_t> none;
    const bool is_grid = plan.Has(Classes::k3DMatrix);
    const std::set<std::int32_t>& gone_x = is_grid ? gone[Index(plan.field.table)] : none;
    const std::set<std::int32_t>& gone_y = gone[Index(plan.field.table_y)];
    if (gone_x.empty() && gone_y.empty()) {
        return;
    }
    const std::int32_t sizes[] = {is_grid ? Size(plan.field.table) : 1, Size(plan.field.table_y)};
    const std::int32_t owners = plan.Has(Classes::kCommonMatrix) ? std::min(1, Size(owner)) : Size(owner);
    for (std::int32_t r = 0; r < owners; ++r) {
        TwinMatrix& matrix = *Mutable(owner, field, r);
        std::vector<double> cells;
        for (std::int32_t x = 0; x < sizes[0]; ++x) {
            for (std::int32_t y = 0; y < sizes[1]; ++y) {
                if (!gone_x.contains(x) && !gone_y.contains(y)) {
                    cells.push_back(matrix.At(Index(x * sizes[1] + y)));
                }
            }
        }
        matrix.Assign(std::move(cells));
    }
}

// Several records may have one list: it loses a key once, but each record has its own lists beside it.
void Twin::RemoveKeys(std::int32_t owner, std::int32_t field, const std::set<double>& keys) {
    if (keys.empty()) {
        return;
    }
    std::map<std::int32_t, std::vector<double>> lists; // by id, as they were
    for (std::int32_t r = 0; r < Size(owner); ++r) {
        const TwinMatrix* const list = Matrix(owner, field, r);
        const std::int32_t id = IdAt(owner, field, r);
        if (list == nullptr) {
            continue;
        }
        const bool is_first = !lists.contains(id);
        if (is_first && std::ranges::none_of(list->Cells(), [&](double key) { return keys.contains(key); })) {
            continue;
        }
        const auto before = lists.emplace(id, list->Cells()).first;
        for (std::size_t i = before->second.size(); i-- > 0;) {
            if (!keys.contains(before->second[i])) {
                continue;
            }
            if (is_first) {
                DeleteCell(owner, field, r, i);
            }
            for (std::int32_t other = 0; other < Fields(owner); ++other) {
                if (Field(owner, other).Has(Classes::kParallelList) && Field(owner, other).beside == field) {
                    DeleteCell(owner, other, r, i);
                }
            }
        }
    }
}

void Twin::EraseRow(std::int32_t format, std::int32_t record) {
    TwinFormat& target = formats_[Index(format)];
    for (std::int32_t field = 0; field < Fields(format); ++field) {
        std::vector<std::int32_t>& ids = target.ids[Index(field)];
        if (Field(format, field).Has(Classes::kCommonMatrix) || Index(record) >= ids.size()) {
            continue;
        }
        if (TwinMatrix* const matrix = Mutable(format, field, record)) {
            *matrix = {};
        }
        ids.erase(ids.begin() + record);
    }
    if (Index(record) < target.updates.size()) {
        target.updates.erase(target.updates.begin() + record);
    }
    target.rows.erase(target.rows.begin() + record);
}

void Twin::Delete(std::int32_t format, const std::vector<std::int32_t>& records) {
    const OnTwinSide side;
    Rows rows;
    for (const std::int32_t record : records) {
        if (record >= 0 && record < Size(format)) {
            AddOwned(rows, format, record);
        }
    }
    Positions gone(formats_.size());
    std::vector<std::set<double>> keys(formats_.size());
    for (std::int32_t f = 0; f < Formats(); ++f) {
        const auto first = rows.lower_bound({f, 0});
        for (std::int32_t r = 0; first != rows.end() && first->first == f && r < Size(f); ++r) {
            if (rows.contains({f, Format(f).rows[Index(r)].serial})) {
                gone[Index(f)].insert(r);
                keys[Index(f)].insert(Number(f, kKey, r));
            }
        }
    }
    for (std::int32_t owner = 0; owner < Formats(); ++owner) {
        for (std::int32_t field = 0; field < Fields(owner) && !Format(owner).plan->has_extension; ++field) {
            const FieldPlan& plan = Field(owner, field);
            if (LosesKeys(plan)) {
                RemoveKeys(owner, field, keys[Index(plan.field.table)]);
            } else if (plan.IsMatrix() && !plan.IsAnyList()) {
                CloseHoles(owner, field, gone);
            }
        }
    }
    for (std::int32_t f = 0; f < Formats(); ++f) {
        std::for_each(gone[Index(f)].rbegin(), gone[Index(f)].rend(), [&](std::int32_t r) { EraseRow(f, r); });
    }
}

void Twin::Clear(std::int32_t format) {
    const OnTwinSide side;
    TwinFormat& target = formats_[Index(format)];
    target.rows.clear();
    for (const std::vector<std::int32_t>& ids : target.ids) {
        for (const std::int32_t id : ids) {
            if (id != kNone) {
                matrices_[Index(id)] = {};
            }
        }
    }
}

void Twin::CopyRow(std::int32_t format, std::int32_t source, std::int32_t target) {
    const OnTwinSide side;
    const TwinRow from = Format(format).rows[Index(source)];
    TwinRow& to = formats_[Index(format)].rows[Index(target)];
    to.numbers = from.numbers;
    to.texts = from.texts;
    for (std::int32_t field = 0; field < Fields(format); ++field) {
        if (Field(format, field).IsMatrix()) {
            CopyMatrix(format, field, source, format, field, target);
        }
    }
    SetUpdate(format, target, Update(format, source));
}

void Twin::SwapRows(std::int32_t format, std::int32_t record1, std::int32_t record2) {
    const OnTwinSide side;
    std::vector<TwinRow>& rows = formats_[Index(format)].rows;
    std::swap(rows[Index(record1)], rows[Index(record2)]);
    for (std::int32_t field = 0; field < Fields(format); ++field) {
        if (Field(format, field).IsMatrix() && !Field(format, field).Has(Classes::kCommonMatrix)) {
            const std::int32_t id = IdAt(format, field, record1);
            SetId(format, field, record1, IdAt(format, field, record2));
            SetId(format, field, record2, id);
        }
    }
    const std::int32_t update = Update(format, record1);
    SetUpdate(format, record1, Update(format, record2));
    SetUpdate(format, record2, update);
}

void Twin::CopyMatrix(std::int32_t source_format, std::int32_t source_field, std::int32_t source_record,
                      std::int32_t format, std::int32_t field, std::int32_t record) {
    const OnTwinSide side;
    const FieldPlan& plan = Field(format, field);
    if (source_format == format && (plan.Has(Classes::kList) || plan.Has(Classes::kCommonMatrix))) {
        SetId(format, field, record, IdAt(source_format, source_field, source_record));
        return;
    }
    const TwinMatrix* const source = Matrix(source_format, source_field, source_record);
    if (source != nullptr && source == Matrix(format, field, record)) {
        return; // a matrix copied onto itself
    }
    std::vector<double> cells = source != nullptr ? source->Cells() : std::vector<double>();
    if (plan.Has(Classes::kStringStorage)) {
        std::ranges::replace_if(
            cells, [&](double key) { return FindKey(plan.storage, key) == kNone; }, kLostText);
    }
    SetCells(format, field, record, cells);
}

void Twin::Reorder(std::int32_t format, const std::vector<std::int32_t>& records) {
    const OnTwinSide side;
    TwinFormat& target = formats_[Index(format)];
    const TwinFormat before = target;
    target.updates.resize(std::max(target.updates.size(), records.size()));
    for (std::size_t place = 0; place < records.size(); ++place) {
        target.rows[place] = before.rows[Index(records[place])];
        target.updates[place] =
            Index(records[place]) < before.updates.size() ? before.updates[Index(records[place])] : 0;
        for (std::size_t field = 0; field < target.ids.size(); ++field) {
            if (target.plan->fields[field].IsMatrix() && !target.plan->fields[field].Has(Classes::kCommonMatrix)) {
                target.ids[field][place] = before.ids[field][Index(records[place])];
            }
        }
    }
}

} // namespace Kestrona::Model
