// Implements: the search for formats and fields by name or number, and what is asked by format number.
#include "platform/format_text.h"
#include "platform/scan_wide.h"
#include "store/as_store.h"

#include <kestrona/definition_load.h>
#include <kestrona/record_search.h>
#include <kestrona/services.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <string_view>

namespace {

using Kestrona::Data::MemoryResident::field_info;
using Kestrona::Data::MemoryResident::formats_info;
using Kestrona::Data::MemoryResident::IMemoryResidentData;

constexpr std::int32_t kNotFound = -1;
// Two halves of one text, which takes the context, the format's name and the field's text.
constexpr std::int32_t kMsgNoField = 0x6a23;
constexpr std::int32_t kMsgNoFieldTail = 0x6a24;

std::wstring_view TextOf(const wchar_t* text) {
    return text != nullptr ? std::wstring_view(text) : std::wstring_view();
}

// The number that a text begins with, decimal, octal or hexadecimal; -1 for none.
std::int32_t ReadNumber(std::wstring_view text) {
    std::int32_t number = 0;
    return Kestrona::Platform::ScanWide(text, L"%li", &number).items == 1 ? number : -1;
}

std::int32_t ZeroBased(std::int32_t number) {
    return number > std::numeric_limits<std::int32_t>::min() ? number - 1 : number;
}

std::int32_t FindFieldByName(const formats_info* format, std::wstring_view name) {
    if (format == nullptr) {
        return kNotFound;
    }
    const auto found = std::ranges::find(format->fields, name, &field_info::name);
    return found != format->fields.end() ? static_cast<std::int32_t>(found - format->fields.begin()) : kNotFound;
}

void ReportNoField(IMemoryResidentData& store, std::int32_t format, std::wstring_view name, const wchar_t* context) {
    CoreMessage* const messages = MessageManager::getInstance();
    const std::wstring text = messages->GetMessage(kMsgNoField) + messages->GetMessage(kMsgNoFieldTail);
    CompileFail(Kestrona::Platform::FormatText(text, context, store.GetDbName(format), name));
}

} // namespace

std::int32_t KSDLL_FindFormatImpl(IMemoryResidentData& store, const wchar_t* name) {
    return Kestrona::Data::MemoryResident::AsStore(store).FindFormatByName(name);
}

std::int32_t KSDLL_FindFormat(IMemoryResidentData& store, const wchar_t* name) {
    const std::int32_t format = KSDLL_FindFormatImpl(store, name);
    return format != kNotFound ? format : ZeroBased(ReadNumber(TextOf(name)));
}

std::int32_t KSDLL_FindField(IMemoryResidentData& store, std::int32_t format, const wchar_t* name,
                             const wchar_t* context) {
    const std::wstring_view text = TextOf(name);
    const std::int32_t field = FindFieldByName(store.GetFormatInfo(format), text);
    if (field != kNotFound) {
        return field;
    }
    const std::int32_t number = ReadNumber(text);
    if (context == nullptr) {
        return ZeroBased(number);
    }
    if (store.GetFieldInfo(format, number) == nullptr) {
        ReportNoField(store, format, text, context);
        return kNotFound;
    }
    return number;
}

bool KSDLL_IsLoadableTable(IMemoryResidentData& store, std::int32_t format) {
    return store.GetDbExtension(format) != nullptr;
}

std::wstring KSDLL_GetAssociatedTableTSTRING(IMemoryResidentData& store, std::int32_t format) {
    return std::wstring(TextOf(store.GetAssociatedTable(format)));
}

std::int32_t KSDLL_GetRootTable(IMemoryResidentData& store, std::int32_t format) {
    const std::int32_t parent = store.GetAssociateTableNumber(format);
    return parent != kNotFound ? parent : format;
}

std::int32_t KSDLL_GetRecordNumberFromPrimaryKey(IMemoryResidentData& store, std::int32_t format, double key) {
    return store.LookupKeyRecord(format, key);
}

double KSDLL_GetPrimaryKeyFromRecordNumber(IMemoryResidentData& store, std::int32_t format, std::int32_t record) {
    return store.GetDbKeyValue(format, record);
}
