#include "configuration/compiled/definition_description.h"

#include <kestrona/unicode.h>

#include <bit>

namespace Kestrona::ConfigurationTest {

using Data::MemoryResident::MemoryResidentData;
using nlohmann::json;

namespace {

std::string Text(const wchar_t* text) {
    return text == nullptr ? std::string() : ToUtf8(text);
}

std::string Bytes(double value) {
    std::string text;
    for (auto bits = std::bit_cast<std::uint64_t>(value); text.size() < 2 * sizeof value; bits >>= 8U) {
        text += "0123456789abcdef"[bits >> 4U & 15U];
        text += "0123456789abcdef"[bits & 15U];
    }
    return text;
}

json DescribeField(MemoryResidentData& store, std::int32_t format, std::int32_t field) {
    json slots = json::array();
    for (std::int32_t slot = 0; slot < kDataSlots; ++slot) {
        slots.push_back(store.GetDbData(format, field, slot));
    }
    json classes = json::array();
    for (std::int32_t word = 0; word < kClassWords; ++word) {
        classes.push_back(store.GetDbClass(format, field, word));
    }
    return {{"name", ToUtf8(store.GetColumnName(format, field))},
            {"default", Bytes(store.GetDbDefaultValue(format, field))},
            {"type", store.GetDbType(format, field)},
            {"read_only", static_cast<int>(store.GetDbReadOnly(format, field))},
            {"classes", classes},
            {"slot0", slots[0]},
            {"table", store.GetDbTable(format, field)},
            {"level", store.GetDbDialogLevel(format, field)},
            {"class_string", Text(store.GetDbClassString(format, field))},
            {"slots", slots}};
}

} // namespace

json DescribeFormats(MemoryResidentData& store) {
    json formats = json::array();
    for (std::int32_t format = 0; format < store.GetFormatCount(); ++format) {
        json fields = json::array();
        for (std::int32_t field = 0; field < store.GetDbFields(format); ++field) {
            fields.push_back(DescribeField(store, format, field));
        }
        formats.push_back({{"name", Text(store.GetDbName(format))},
                           {"display", ToUtf8(store.GetDbDisplayName(format))},
                           {"extension", Text(store.GetDbExtension(format))},
                           {"dataset", Text(store.GetDefaultDatasetName(format))},
                           {"associated", Text(store.GetAssociatedTable(format))},
                           {"eligible", store.IsAssociatedTableEligibleCommonDataset(format) ? 1 : 0},
                           {"minimum", store.GetDbMinLength(format)},
                           {"maximum", store.GetUserMaxRecords(format)},
                           {"key", store.GetDbKey(format)},
                           {"fields", fields}});
    }
    return formats;
}

json DescribeSubstitutions(MemoryResidentData& store) {
    json pairs = json::array();
    wchar_t* from = nullptr;
    wchar_t* to = nullptr;
    for (std::int32_t i = 0; store.GetStringSubstitution(i, &from, &to), from != nullptr; ++i) {
        pairs.push_back({Text(from), Text(to)});
    }
    return pairs;
}

} // namespace Kestrona::ConfigurationTest
