// Implements: Tooltips, MarkingAttribute.
#include "platform/numbers.h"

#include <kestrona/classes.h>
#include <kestrona/classification_parsers.h>
#include <kestrona/definition_model.h>

#include <algorithm>
#include <limits>
#include <utility>

namespace Kestrona::Configuration {

using Data::MemoryResident::IMemoryResidentData;

namespace {

constexpr const wchar_t* kUnresolvedPath = L"Path has not been resolved";
constexpr const wchar_t* kNegativeTable = L"Expected a valid table index";
constexpr const wchar_t* kOrderKey = L"ORDER";

// Where a rank stands among the others: -1 behind every number.
std::int64_t Position(std::int32_t rank) {
    return rank == -1 ? std::numeric_limits<std::int64_t>::max() : rank;
}

} // namespace

MarkingAttribute::~MarkingAttribute() = default;

std::int32_t Tooltips::GetToolTipRank(const wchar_t* classification) {
    const Parsers::ClassificationMatch match =
        Parsers::ClassificationParser_TIP_DISPLAY().MatchFirst(classification != nullptr ? classification : L"");
    const auto order = match.Values.find(kOrderKey);
    if (!match.Matched || order == match.Values.end()) {
        return -1;
    }
    return Platform::ParseInt32(order->second);
}

std::vector<std::int32_t> Tooltips::GetRankedListOfTooltipFields(IMemoryResidentData& store, std::int32_t format,
                                                                 std::int32_t except_field) {
    if (format < 0) {
        throw kNegativeTable;
    }
    std::vector<std::pair<std::int64_t, std::int32_t>> ranked;
    const std::int32_t count = store.GetDbFields(format);
    for (std::int32_t field = 0; field < count; ++field) {
        if (field != except_field && store.ClassDefined(format, field, Classes::kShowTooltip)) {
            ranked.emplace_back(Position(GetToolTipRank(store.GetDbClassString(format, field))), field);
        }
    }
    std::sort(ranked.begin(), ranked.end());
    std::vector<std::int32_t> fields;
    fields.reserve(ranked.size());
    for (const auto& [position, field] : ranked) {
        fields.push_back(field);
    }
    return fields;
}

std::vector<std::int32_t> Tooltips::GetRankedListOfTooltipFields(IMemoryResidentData& store,
                                                                 const MarkingAttribute* attribute) {
    const TableColumn end = attribute != nullptr ? attribute->get_PathEnd() : TableColumn{};
    if (end.format < 0 || end.field < 0) {
        throw kUnresolvedPath;
    }
    return GetRankedListOfTooltipFields(store, end.format, end.field);
}

} // namespace Kestrona::Configuration
