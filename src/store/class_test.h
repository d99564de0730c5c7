#pragma once

#include <kestrona/schema_records.h>
#include <kestrona/types.h>

#include <cstddef>
#include <cstdint>

namespace Kestrona::Data::MemoryResident {

inline bool IsClassWord(std::int32_t word) {
    return word >= 0 && word < kClassWords;
}

// A word that does not exist has no bits, so that a class with a mask is not defined there.
inline std::uint32_t ClassWord(const field_info& field, std::int32_t word) {
    return IsClassWord(word) ? field.current.classWords[static_cast<std::size_t>(word)] : 0;
}

// Whether all bits of the class are set. A class in a word that does not exist is not, whatever its mask.
inline bool HasClass(const field_info& field, Class c) {
    return IsClassWord(c.word) && (ClassWord(field, c.word) & c.mask) == c.mask;
}

} // namespace Kestrona::Data::MemoryResident
