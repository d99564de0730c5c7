#pragma once

#include "expressions/validation_references.h"

#include <kestrona/expression_parsing.h>

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

namespace Kestrona::Expressions {

// Follows the references of calculated fields and finds rings, script variables and translatable texts. A field found
// sound is not walked again: only the field that its walk entered last is remembered, since an error that comes behind
// it is laid to that field.
class ExpressionValidator {
public:
    explicit ExpressionValidator(IMemoryResidentData& store) : store_(store) {}

    // Whether the expression of a calculated field is sound.
    bool Validate(std::int32_t format, std::int32_t field);

    // The fault that Validate found. Of several in one walk the last one counts.
    ExpressionErrorInfo& Error() { return error_; }

private:
    struct Mark {
        bool on_stack = false;
        std::int32_t last_entered = -1; // of a sound field
    };

    void Enter(std::int32_t format, std::int32_t field);
    void Leave();
    void Step(WalkFrame& frame);
    bool Descend(const FieldReference& reference);
    void CheckText(const FieldReference& reference);
    void StartRecord(std::int32_t format, std::int32_t field);
    void Fault(std::wstring message);

    IMemoryResidentData& store_;
    ExpressionErrorInfo error_;
    bool error_found_ = false;
    std::vector<WalkFrame> stack_;
    // Fields on the stack and sound fields, by FieldKey.
    std::unordered_map<std::uint64_t, Mark> marks_;
};

} // namespace Kestrona::Expressions
