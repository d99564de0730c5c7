#pragma once

#include <kestrona/memory_resident_data.h>

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

// The fields that an expression may name.
namespace Kestrona::Expressions {

using Data::MemoryResident::IMemoryResidentData;

// Who names the fields of a format: the expression of a matrix field, or any other. Only the fields of the same
// associated group are open to the former, and no matrix field at all to the latter.
struct NamingContext {
    bool matrix = false;
    std::int32_t group = -1;

    friend auto operator<=>(const NamingContext&, const NamingContext&) = default; // NOLINT(*-use-nullptr): misread
};

// `field` is -1 for an expression that belongs to no field.
NamingContext ContextOf(IMemoryResidentData& store, std::int32_t format, std::int32_t field);

// The names of one format as one context sees them. Of several fields with one name the first counts.
class FieldNames {
public:
    FieldNames() = default;
    FieldNames(IMemoryResidentData& store, std::int32_t format, NamingContext context);

    // The field with the longest name that the text begins with, -1 for none. Moves `first` behind the name.
    std::int32_t FindPrefix(const wchar_t*& first, const wchar_t* last) const;

    // Why a field of this name is closed to the expression; null when there is no such field.
    const wchar_t* RefusalOf(std::wstring_view name) const;

private:
    struct Entry {
        std::wstring name;
        std::int32_t field;
        // The longest other name that this one begins with, as an index; -1 for none.
        std::int32_t shorter = -1;
    };

    struct Refusal {
        std::wstring name;
        const wchar_t* reason;
    };

    void LinkShorterNames();

    std::vector<Entry> allowed_;   // by name
    std::vector<Refusal> refused_; // by name
};

// The names of a store for many parses, each table made at its first use. Field names and classes of the store must not
// change while it lives.
class FieldNameTables {
public:
    explicit FieldNameTables(IMemoryResidentData& store) : store_(store) {}

    // Valid as long as this object. Empty for the format -1.
    const FieldNames& For(std::int32_t format, std::int32_t field);

private:
    IMemoryResidentData& store_;
    std::map<std::tuple<std::int32_t, NamingContext>, FieldNames> tables_;
};

} // namespace Kestrona::Expressions
