#pragma once

#include <kestrona/expression_tree.h>
#include <kestrona/memory_resident_data.h>

#include <cstddef>
#include <cstdint>
#include <vector>

// What the expressions of calculated fields refer to. Trees are read one at a time and chains of fields are followed
// with a stack of their own, so that a chain may be as long as a format has fields.
namespace Kestrona::Expressions {

struct Reference {
    bool is_script = false;
    FieldReference field; // unset for a script variable
};

// In the order of a walk over the tree, repeats included. Empty for a field without a compiled expression.
std::vector<Reference> ReferencesOf(IMemoryResidentData& store, std::int32_t format, std::int32_t field);

bool IsCalculated(IMemoryResidentData& store, std::int32_t format, std::int32_t field);

// A field on the way, and how far its references are dealt with.
struct WalkFrame {
    std::int32_t format;
    std::int32_t field;
    std::vector<Reference> references;
    std::size_t next = 0;

    bool IsDone() const { return next == references.size(); }
};

// One number for a field of a store.
inline std::uint64_t FieldKey(std::int32_t format, std::int32_t field) {
    return (std::uint64_t{static_cast<std::uint32_t>(format)} << 32U) | static_cast<std::uint32_t>(field);
}

} // namespace Kestrona::Expressions
