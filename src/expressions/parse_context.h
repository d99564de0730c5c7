#pragma once

#include "expressions/parse_errors.h"
#include "expressions/parse_names.h"

#include <kestrona/expression_tree.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Kestrona::Expressions {

// What the rules of the grammar ask of one parse. What costs a look into the store is fetched when a rule first needs
// it.
class ParseContext {
public:
    // `field` is -1 for an expression of no field. The arguments must outlive this object.
    ParseContext(IMemoryResidentData& store, FieldNameTables& tables, std::int32_t format, std::int32_t field,
                 std::wstring_view text, ExpressionErrorInfo& info)
        : store_(store),
          tables_(tables),
          format_(format),
          field_(field),
          errors_(text, info) {}

    std::int32_t Format() const { return format_; }

    const FieldNames& Names();

    // A reference to the script variable of this name.
    KSEPVariable ScriptVariable(ExpressionFieldType type, std::wstring name);

    ErrorHandler& Errors() { return errors_; }

    // The field whose name the text at `first` begins with; null for none. Moves `first` behind the name. Valid until
    // the next call.
    std::int32_t* MatchName(const wchar_t*& first, const wchar_t* last) {
        matched_ = Names().FindPrefix(first, last);
        return matched_ >= 0 ? &matched_ : nullptr;
    }

    // Brackets that are open at the place of the parse.
    std::int32_t depth = 0;

private:
    IMemoryResidentData& store_;
    FieldNameTables& tables_;
    std::int32_t format_;
    std::int32_t field_;
    ErrorHandler errors_;
    const FieldNames* names_ = nullptr;
    std::int32_t matched_ = -1;
    std::optional<KSEPVariable> script_table_;
};

} // namespace Kestrona::Expressions
