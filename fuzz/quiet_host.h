#pragma once

#include <kestrona/host/default_host.h>
#include <kestrona/matrices.h>
#include <kestrona/value_text.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <utility>

namespace Kestrona::Fuzz {

using Data::MemoryResident::MemoryResidentData;

// A host that says nothing.
inline std::unique_ptr<Host::DefaultHost> MakeQuietHost(Host::FileReader reader = {}) {
    Host::DefaultHostOptions options;
    options.output = [](std::string_view) {
    };
    options.reader = std::move(reader);
    options.locale = {"C", "C"};
    return std::make_unique<Host::DefaultHost>(std::move(options));
}

// Shows the cells of the first records and the first entries of their matrices. Returns the number of characters.
inline std::size_t ShowCells(MemoryResidentData& store) {
    constexpr std::int32_t kMost = 4;
    std::size_t characters = 0;
    for (std::int32_t format = 0; format < store.GetFormatCount(); ++format) {
        for (std::int32_t record = 0; record < std::min(kMost, store.GetCurrentDbSize(format)); ++record) {
            for (std::int32_t field = 0; field < store.GetDbFields(format); ++field) {
                characters += KSDLL_FieldToTString(store, format, field, record).size();
                characters += store.GetDbString(format, field, record).size();
                const std::int32_t entries = KSDLL_GetMatrixSize(KSDLL_GetDbMatrix(store, format, field, record));
                for (std::int32_t entry = 0; entry < std::min(kMost, entries); ++entry) {
                    const double value =
                        KSDLL_GetMatrixValue(store, format, field, record, static_cast<std::uint32_t>(entry));
                    characters += KSDLL_ValueToTString(store, format, field, record, value, entry).size();
                }
            }
        }
    }
    return characters;
}

} // namespace Kestrona::Fuzz
