#pragma once

#include <kestrona/schema_records.h>

#include <boost/unordered/unordered_flat_map.hpp>

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>

namespace Kestrona::Data::MemoryResident {

// Format numbers by name, built when first asked for. Where names repeat, the lowest number counts.
class FormatNames {
public:
    // A name, or the number of formats, has changed.
    void Forget() { valid_ = false; }

    // The format with exactly this name, -1 for none. `formats` is the whole array; `count` says how many of its
    // entries count even behind a hole.
    [[nodiscard]] std::int32_t Find(std::span<const formats_info> formats, std::int32_t count, std::wstring_view name);

private:
    struct Hash {
        using is_transparent = void;

        std::size_t operator()(std::wstring_view text) const { return std::hash<std::wstring_view>()(text); }
    };

    void Build(std::span<const formats_info> formats, std::int32_t count);

    boost::unordered_flat_map<std::wstring, std::int32_t, Hash, std::equal_to<>> numbers_;
    bool valid_ = false;
};

} // namespace Kestrona::Data::MemoryResident
