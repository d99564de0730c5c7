#include "data/exact_cell.h"

#include "data/matrix_text.h"
#include "encryption.h"

#include <kestrona/classes.h>
#include <kestrona/unicode.h>

#include <fmt/format.h>

#include <cmath>

namespace Kestrona::Tool {
namespace {

using Data::MemoryResident::IMemoryResidentData;

constexpr double kSecondsPerDay = 86400.0;
/// Ten decimals tell all times from one another whose days have three digits or more.
constexpr int kMostDecimals = 10;

/// A time whose seconds have this many decimals; "" where it would round up to the next minute.
std::string DateWithDecimals(double days, int decimals) {
    const double whole = std::trunc(days);
    const double seconds = std::abs(days - whole) * kSecondsPerDay;
    const double minutes = std::floor(seconds / 60.0);
    const std::string rest = fmt::format("{:0{}.{}f}", seconds - minutes * 60.0, decimals + 3, decimals);
    if (rest.starts_with("60")) {
        return {};
    }
    return fmt::format("{} {:02.0f}:{:02.0f}:{}", IsoDate(whole), std::floor(minutes / 60.0), std::fmod(minutes, 60.0),
                       rest);
}

std::string ExactDate(double days) {
    std::string text = IsoDate(days);
    for (int decimals = 1; decimals <= kMostDecimals && ParseIsoDate(text) != days; ++decimals) {
        text = DateWithDecimals(days, decimals);
    }
    return ParseIsoDate(text) == days ? text : ValueText(days, ValueForm::Number);
}

/// An unset entry is told, so that a list of one such entry is no empty list.
std::string ExactMatrix(IMemoryResidentData& store, const ExactField& field, std::int32_t record) {
    if (field.common && record != 0) {
        return {};
    }
    return JoinMatrix(store, field.format, field.field, record, [&field](double value, std::int32_t) {
        return value == kUnset ? ValueText(value, ValueForm::Number) : ExactText(value, field.form);
    });
}

} // namespace

ExactField DescribeField(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    ExactField result{format, field};
    result.matrix = KeepsMatrices(store, format, field);
    result.form = result.matrix ? FormOfElement(store, format, field) : FormOfField(store, format, field);
    result.common = result.matrix && store.ClassDefined(format, field, Classes::kCommonMatrix);
    result.encrypted = IsEncrypted(store, format, field);
    return result;
}

std::string ExactText(double value, ValueForm form) {
    const bool is_date = form == ValueForm::Date && value != kUnset;
    return is_date ? ExactDate(value) : ValueText(value, form);
}

std::string ExactCell(IMemoryResidentData& store, const ExactField& field, std::int32_t record) {
    if (field.matrix) {
        return ExactMatrix(store, field, record);
    }
    if (field.encrypted) {
        return ToUtf8(EncryptedCell(store, field.format, field.field, record));
    }
    if (field.form == ValueForm::Text) {
        // A calculated text can show an encrypted one.
        return ToUtf8(WithoutZeros(store.GetDbString(field.format, field.field, record)));
    }
    return ExactText(store.GetDbValue(field.format, field.field, record), field.form);
}

} // namespace Kestrona::Tool
