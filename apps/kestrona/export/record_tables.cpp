#include "export/record_tables.h"

#include "data/field_names.h"
#include "data/matrix_text.h"
#include "data/reference_texts.h"

#include <kestrona/unicode.h>

#include <algorithm>
#include <numeric>

namespace Kestrona::Tool {
namespace {

using Data::MemoryResident::IMemoryResidentData;

std::vector<std::int32_t> ChooseFields(IMemoryResidentData& store, std::int32_t format, ExportFields which) {
    std::vector<std::int32_t> fields;
    for (std::int32_t field = 0; field < store.GetDbFields(format); ++field) {
        const bool is_wanted =
            which == ExportFields::Kept ? KeepsValues(store, format, field) : HasValues(store, format, field);
        if (is_wanted) {
            fields.push_back(field);
        }
    }
    return fields;
}

CellKind KindOf(const ExactField& field) {
    if (field.matrix) {
        return CellKind::Matrix;
    }
    return field.form == ValueForm::Text || field.form == ValueForm::Date ? CellKind::Text : CellKind::Number;
}

/// A key that is not of whole numbers by its type may be any number.
ExportType TypeOf(const ExactField& field, bool is_key) {
    if (field.matrix) {
        return ExportType::Text;
    }
    switch (field.form) {
    case ValueForm::Integer:
    case ValueForm::Toggle:
        return ExportType::Integer;
    case ValueForm::Reference:
        return is_key ? ExportType::Real : ExportType::Integer;
    case ValueForm::Number:
    case ValueForm::Duration:
        return ExportType::Real;
    case ValueForm::Date:
        return ExportType::Date;
    case ValueForm::Text:
        break;
    }
    return ExportType::Text;
}

void DescribeStored(IMemoryResidentData& store, const std::vector<std::int32_t>& formats, std::int32_t format,
                    const std::vector<std::int32_t>& fields, ExportTable& table) {
    for (const std::int32_t field : fields) {
        const ExactField exact = DescribeField(store, format, field);
        const bool is_key = field == store.GetDbKey(format);
        ExportColumn& column = table.columns.emplace_back();
        column.type = TypeOf(exact, is_key);
        if (is_key && !exact.matrix) {
            table.key = table.columns.size() - 1;
        }
        const auto target = exact.matrix ? std::nullopt : TargetOf(store, format, field);
        if (target) {
            const auto place = std::ranges::find(formats, target->format);
            column.target = place == formats.end() ? std::nullopt : std::optional<std::size_t>(place - formats.begin());
        }
    }
}

void DescribeShown(ExportTable& table) {
    for (const OutputColumn& column : table.source->Columns()) {
        table.columns.push_back({column.kind == CellKind::Number ? ExportType::Real : ExportType::Text, std::nullopt});
    }
}

std::unique_ptr<TableSource> ShownSource(IMemoryResidentData& store, std::int32_t format,
                                         const std::vector<std::int32_t>& fields) {
    std::vector<FollowedField> followed;
    followed.reserve(fields.size());
    for (const std::int32_t field : fields) {
        followed.push_back(OwnField(store, format, field));
    }
    std::vector<std::int32_t> records(static_cast<std::size_t>(std::max(0, store.GetCurrentDbSize(format))));
    std::iota(records.begin(), records.end(), 0);
    return std::make_unique<RecordSource>(store, followed, std::move(records), CellStyle::Shown);
}

} // namespace

StoredSource::StoredSource(IMemoryResidentData& store, std::int32_t format, const std::vector<std::int32_t>& fields)
    : store_(store),
      rows_(static_cast<std::size_t>(std::max(0, store.GetCurrentDbSize(format)))) {
    for (const std::int32_t field : fields) {
        fields_.push_back(DescribeField(store, format, field));
        columns_.push_back({ToUtf8(store.GetColumnName(format, field)), KindOf(fields_.back())});
    }
}

std::string StoredSource::Cell(std::size_t row, std::size_t column) const {
    return ExactCell(store_, fields_[column], static_cast<std::int32_t>(row));
}

std::vector<ExportTable> TablesOf(IMemoryResidentData& store, const std::vector<std::int32_t>& formats,
                                  ExportFields fields, CellStyle style) {
    std::vector<ExportTable> tables;
    for (const std::int32_t format : formats) {
        const std::vector<std::int32_t> chosen = ChooseFields(store, format, fields);
        ExportTable& table = tables.emplace_back();
        table.name = FormatName(store, format);
        if (style == CellStyle::Shown) {
            table.source = ShownSource(store, format, chosen);
            DescribeShown(table);
        } else {
            table.source = std::make_unique<StoredSource>(store, format, chosen);
            DescribeStored(store, formats, format, chosen, table);
        }
    }
    return tables;
}

} // namespace Kestrona::Tool
