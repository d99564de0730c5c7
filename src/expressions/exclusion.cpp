// Implements: whether a calculated field depends on what is not saved.
#include "expressions/validation_references.h"

#include <kestrona/classes.h>
#include <kestrona/expression_validation.h>

#include <unordered_map>

namespace Kestrona::Expressions {

namespace {

constexpr const wchar_t* kNotCalculated = L"Expected an evaluted column";
constexpr const wchar_t* kCyclic = L"Cyclic dependency found.";

// Follows references depth first, in the order of the expressions, until an excluded field is found. A calculated field
// is walked once.
class ExcludeFromDatabaseExpressionVisitor {
public:
    explicit ExcludeFromDatabaseExpressionVisitor(IMemoryResidentData& store) : store_(store) {}

    bool FindsExcluded(std::int32_t format, std::int32_t field) {
        Enter(format, field);
        while (!stack_.empty()) {
            WalkFrame& frame = stack_.back();
            if (frame.IsDone()) {
                Leave();
            } else if (Visit(frame.references[frame.next++])) {
                return true;
            }
        }
        return false;
    }

private:
    void Enter(std::int32_t format, std::int32_t field) {
        on_stack_[FieldKey(format, field)] = true;
        stack_.push_back({.format = format, .field = field, .references = ReferencesOf(store_, format, field)});
    }

    void Leave() {
        on_stack_[FieldKey(stack_.back().format, stack_.back().field)] = false;
        stack_.pop_back();
    }

    // Whether the reference is to an excluded field. A copy of it, since Enter moves the stack.
    bool Visit(Reference reference) {
        const auto [type, format, field] = reference.field;
        if (reference.is_script) {
            return false;
        }
        if (store_.ClassDefined(format, field, Classes::kExcludeFromDb)) {
            return true;
        }
        if (IsCalculated(store_, format, field)) {
            VisitCalculated(format, field);
        }
        return false;
    }

    void VisitCalculated(std::int32_t format, std::int32_t field) {
        const auto known = on_stack_.find(FieldKey(format, field));
        if (known == on_stack_.end()) {
            Enter(format, field);
        } else if (known->second) {
            throw kCyclic;
        }
    }

    IMemoryResidentData& store_;
    std::vector<WalkFrame> stack_;
    // Every calculated field met, by FieldKey.
    std::unordered_map<std::uint64_t, bool> on_stack_;
};

} // namespace

} // namespace Kestrona::Expressions

bool KSDLL_RequiresExclusionFromDB(Kestrona::Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                                   std::int32_t field) {
    using namespace Kestrona::Expressions;
    if (!IsCalculated(store, format, field)) {
        throw kNotCalculated;
    }
    return ExcludeFromDatabaseExpressionVisitor(store).FindsExcluded(format, field);
}
