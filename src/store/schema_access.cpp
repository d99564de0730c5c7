// Implements: GetDbColumn, SetDbColumn, GetDbStringArray, GetFieldInfo, GetFormatInfo, the expressions of a field,
// GetLCID.
#include "store/as_store.h"

namespace Kestrona::Data::MemoryResident {

namespace {

// Takes ownership of `expression`; without a place for it, it is freed.
void TakeOver(std::unique_ptr<INativeExpression>* place, INativeExpression* expression) {
    if (place == nullptr) {
        delete expression;
    } else if (place->get() != expression) {
        place->reset(expression);
    }
}

} // namespace

formats_info* IMemoryResidentData::GetFormatInfo(std::int32_t format) {
    return AsStore(*this).FindFormat(format);
}

field_info* IMemoryResidentData::GetFieldInfo(std::int32_t format, std::int32_t field) {
    return AsStore(*this).FindField(format, field);
}

IColumn<double>* IMemoryResidentData::GetDbColumn(std::int32_t format, std::int32_t field) {
    const field_info* const info = GetFieldInfo(format, field);
    return info != nullptr ? info->column : nullptr;
}

void IMemoryResidentData::SetDbColumn(std::int32_t format, std::int32_t field, IColumn<double>* column) {
    field_info* const info = GetFieldInfo(format, field);
    if (info != nullptr && info->column != column) {
        info->column = column;
        info->overrideTarget = nullptr;
    }
}

IColumn<std::wstring>* IMemoryResidentData::GetDbStringArray(std::int32_t format, std::int32_t field) {
    const field_info* const info = GetFieldInfo(format, field);
    return info != nullptr ? info->stringColumn : nullptr;
}

INativeExpression* MemoryResidentData::GetDbEvaluateExpression(std::int32_t format, std::int32_t field) {
    const field_info* const info = FindField(format, field);
    return info != nullptr ? info->evaluateExpression.get() : nullptr;
}

void IMemoryResidentData::SetDbEvaluateExpression(std::int32_t format, std::int32_t field,
                                                  INativeExpression* expression) {
    field_info* const info = GetFieldInfo(format, field);
    TakeOver(info != nullptr ? &info->evaluateExpression : nullptr, expression);
}

INativeExpression* IMemoryResidentData::GetDbHiddenIfExpression(std::int32_t format, std::int32_t field) {
    const field_info* const info = GetFieldInfo(format, field);
    return info != nullptr ? info->hiddenIfExpression.get() : nullptr;
}

void IMemoryResidentData::SetDbHiddenIfExpression(std::int32_t format, std::int32_t field,
                                                  INativeExpression* expression) {
    field_info* const info = GetFieldInfo(format, field);
    TakeOver(info != nullptr ? &info->hiddenIfExpression : nullptr, expression);
}

std::uint32_t IMemoryResidentData::GetLCID() {
    IGlobalizationHelper* const helper = AsStore(*this).globalization_.get();
    return helper != nullptr ? helper->GetLCID() : 0;
}

} // namespace Kestrona::Data::MemoryResident
