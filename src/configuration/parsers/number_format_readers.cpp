// Implements: MatchFormat, KSDLL_GetNumberFormat.
#include "configuration/parsers/field_caches.h"

#include <kestrona/classification_readers.h>

#include <utility>

using Kestrona::NumberFormat;
using Kestrona::Data::MemoryResident::field_info;
using Kestrona::Data::MemoryResident::IMemoryResidentData;
using namespace Kestrona::Configuration::Parsers;

NumberFormat MatchFormat(const std::wstring& classification) {
    const ClassificationParser_FORMAT parser;
    ClassificationMatch match = parser.MatchFirst(classification);
    NumberFormat format;
    if (match.Matched) {
        format.Specified = true;
        format.Format = std::move(match.Values[parser.get_FirstKey()]);
        format.Maximum = match.Values.contains(parser.get_SecondKey());
    }
    return format;
}

NumberFormat KSDLL_GetNumberFormat(const std::wstring& classification) {
    return MatchFormat(classification);
}

NumberFormat KSDLL_GetNumberFormat(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    field_info* const info = store.GetFieldInfo(format, field);
    return info != nullptr ? KeptNumberFormat(*info) : NumberFormat();
}
