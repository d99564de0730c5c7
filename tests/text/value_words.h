#pragma once

#include "fixtures/schema.h"
#include "text/date_words.h"

#include <kestrona/store.h>
#include <kestrona/value_text.h>

#include <limits>
#include <memory>

namespace Kestrona::Testing {

inline Fixtures::Field Of(std::uint32_t type, std::vector<Class> classes = {},
                          const std::wstring& classification = {}) {
    return {.name = L"Field", .type = type, .classes = std::move(classes), .classification = classification};
}

// A store, and a host with a word for everything that a value can be shown as.
class ValueWords : public DateWords {
protected:
    using MemoryResidentData = Data::MemoryResident::MemoryResidentData;

    ValueWords() {
        messages.texts[0x697d] = L"Ja";
        messages.texts[0x697e] = L"Nein";
        messages.texts[0x69a6] = L"Keine";
        messages.texts[0x6a03] = L"Niemand";
    }

    // A format with this one field behind its key, and one record.
    std::int32_t AddField(Fixtures::Field field) {
        return Fixtures::AddTable(store, L"Format", {Fixtures::Number(L"Key", -1.0), std::move(field)}, 1);
    }

    // A format of keys 100, 101 ... with these texts.
    std::int32_t AddTexts(const std::vector<std::wstring>& texts) {
        const std::int32_t format =
            Fixtures::AddTable(store, L"Texts", {Fixtures::Number(L"Key", -1.0), Fixtures::Text(L"Text")},
                               static_cast<std::int32_t>(texts.size()));
        for (std::int32_t record = 0; record < store.GetCurrentDbSize(format); ++record) {
            store.SetDbValue(format, 0, record, 100.0 + record);
            store.SetDbString(format, 1, record, texts[static_cast<std::size_t>(record)]);
        }
        return format;
    }

    std::wstring Shown(Fixtures::Field field, double value, std::int32_t list_index = -1) {
        return KSDLL_ValueToTString(store, AddField(std::move(field)), 1, 0, value, list_index);
    }

    std::unique_ptr<MemoryResidentData> owner = Data::MemoryResident::CreateMemoryResidentData();
    MemoryResidentData& store = *owner;
    DatesOf user{DateLayout::YearMonthDay};
};

} // namespace Kestrona::Testing
