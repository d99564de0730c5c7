#include "expressions/validation_references.h"

#include <kestrona/classes.h>

#include <utility>

namespace Kestrona::Expressions {

namespace {

class ReferenceCollector final : public Visitor {
public:
    void VisitScriptVariable(KSEPVariable&) override { references_.push_back({.is_script = true, .field = {}}); }

    void VisitFieldReference(FieldReference& reference) override {
        references_.push_back({.is_script = false, .field = reference});
    }

    std::vector<Reference> Take() { return std::move(references_); }

private:
    std::vector<Reference> references_;
};

} // namespace

std::vector<Reference> ReferencesOf(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    ReferenceCollector collector;
    // A host may have put an expression of its own there, which has no tree to walk.
    if (auto* const expression = dynamic_cast<Expression*>(store.GetDbEvaluateExpression(format, field))) {
        expression->Accept(collector);
    }
    return collector.Take();
}

bool IsCalculated(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    return store.ClassDefined(format, field, Classes::kEvaluate);
}

} // namespace Kestrona::Expressions
