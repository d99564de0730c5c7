#include "commands/record_source.h"

#include "data/display_text.h"
#include "data/matrix_text.h"
#include "encryption.h"

#include <kestrona/unicode.h>

#include <utility>

namespace Kestrona::Tool {
namespace {

using Data::MemoryResident::IMemoryResidentData;

CellKind KindOf(IMemoryResidentData& store, std::int32_t format, std::int32_t field, CellStyle style) {
    if (KeepsMatrices(store, format, field)) {
        return CellKind::Matrix;
    }
    if (style == CellStyle::Shown) {
        return ShowsNumbers(store, format, field) ? CellKind::Number : CellKind::Text;
    }
    const ValueForm form = FormOfField(store, format, field);
    return form == ValueForm::Text || form == ValueForm::Date ? CellKind::Text : CellKind::Number;
}

} // namespace

CellStyle StyleFor(OutputForm form, bool raw, bool text) {
    if (raw || text) {
        return raw ? CellStyle::Stored : CellStyle::Shown;
    }
    return form == OutputForm::Table || form == OutputForm::Markdown ? CellStyle::Shown : CellStyle::Stored;
}

RecordSource::RecordSource(IMemoryResidentData& store, const std::vector<FollowedField>& fields,
                           std::vector<std::int32_t> records, CellStyle style)
    : store_(store),
      style_(style),
      records_(std::move(records)) {
    for (const FollowedField& place : fields) {
        const ValueForm form = FormOfField(store, place.format, place.field);
        const bool matrix = KeepsMatrices(store, place.format, place.field);
        IndexReferences(store, place);
        fields_.push_back({place, form, matrix});
        columns_.push_back({place.name, KindOf(store, place.format, place.field, style)});
    }
}

std::string RecordSource::Cell(std::size_t row, std::size_t column) const {
    const auto& [place, form, matrix] = fields_[column];
    const std::int32_t record = FollowReferences(store_, place, records_[row]);
    if (record < 0) {
        return {};
    }
    if (IsEncrypted(store_, place.format, place.field)) {
        return ToUtf8(EncryptedCell(store_, place.format, place.field, record));
    }
    // Other fields can show an encrypted one, by a reference or a calculation.
    return WithoutZeros(CellOfStyle(fields_[column], record));
}

std::string RecordSource::CellOfStyle(const Field& shown, std::int32_t record) const {
    const auto& [place, form, matrix] = shown;
    if (style_ == CellStyle::Shown) {
        return matrix ? DisplayMatrix(store_, place.format, place.field, record)
                      : DisplayText(store_, place.format, place.field, record);
    }
    return matrix ? MatrixText(store_, place.format, place.field, record)
                  : CellText(store_, place.format, place.field, record, form);
}

} // namespace Kestrona::Tool
