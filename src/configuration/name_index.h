#pragma once

#include <kestrona/memory_resident_data.h>

#include <boost/unordered/unordered_flat_map.hpp>

#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

namespace Kestrona::Configuration {

// Formats and fields by exact name, for one pass over the definition.
//
// Names are views of the store's own texts, so no name or extension may change and no format or field may come or go
// while the index is in use. The fields of a format are entered when one of them is first asked for.
class NameIndex {
public:
    explicit NameIndex(Data::MemoryResident::IMemoryResidentData& store);

    // The first format of this name, -1 for none.
    std::int32_t FormatNamed(std::wstring_view name) const;
    // The next format of the same name, -1 for none.
    std::int32_t NextOfSameName(std::int32_t format) const;

    // Whether the format has an extension, so that it belongs to a dataset.
    // Requires: a format that was found by its name.
    bool HasExtension(std::int32_t format) const;

    // The first field of this name, -1 for none or for a format out of range.
    std::int32_t FieldNamed(std::int32_t format, std::wstring_view name);

private:
    using ByName = boost::unordered_flat_map<std::wstring_view, std::int32_t, std::hash<std::wstring_view>>;

    struct Format {
        std::int32_t next_of_same_name = -1;
        bool has_extension = false;
        bool entered = false;
        ByName fields;
    };

    void EnterFormats();
    const ByName& FieldsOf(std::int32_t number);

    Data::MemoryResident::IMemoryResidentData& store_;
    ByName by_name_;
    std::vector<Format> formats_;
};

} // namespace Kestrona::Configuration
