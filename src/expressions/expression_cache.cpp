// Implements: expressions that are compiled once for the process. Unguarded, like all process state.
#include "expressions/parse_expression.h"

#include <boost/container_hash/hash.hpp>
#include <boost/unordered_map.hpp>

#include <cstddef>
#include <utility>

namespace Kestrona::Expressions {

namespace {

// Stores can live side by side, and an expression holds the field numbers of one.
struct CacheKey {
    const IMemoryResidentData* store;
    std::wstring text;
    std::int32_t format;
    bool is_string;

    friend bool operator==(const CacheKey&, const CacheKey&) = default;

    friend std::size_t hash_value(const CacheKey& key) {
        std::size_t seed = 0;
        boost::hash_combine(seed, key.store);
        boost::hash_combine(seed, key.text);
        boost::hash_combine(seed, key.format);
        boost::hash_combine(seed, key.is_string);
        return seed;
    }
};

using Cache = boost::unordered_map<CacheKey, std::unique_ptr<INativeExpression>>;

Cache& TheCache() {
    static Cache cache{};
    return cache;
}

INativeExpression* CompileOnce(IMemoryResidentData& store, std::int32_t format, const std::wstring& text,
                               bool is_string) {
    CacheKey key{&store, text, format, is_string};
    const auto known = TheCache().find(key);
    if (known != TheCache().end() && known->second != nullptr) {
        return known->second.get();
    }
    FieldNameTables tables(store);
    auto compiled = CompileExpression(store, tables, {.format = format, .text = text, .is_string = is_string}, nullptr);
    return (TheCache()[std::move(key)] = std::move(compiled)).get();
}

} // namespace

} // namespace Kestrona::Expressions

INativeExpression* KSDLL_CreateExpressionFromCache(Kestrona::Data::MemoryResident::IMemoryResidentData& store,
                                                   std::int32_t format, const std::wstring& text, bool is_string,
                                                   ExpressionErrorCallback) {
    return Kestrona::Expressions::CompileOnce(store, format, text, is_string);
}

void KSDLL_FreeExpressionCache() {
    Kestrona::Expressions::TheCache().clear();
}
