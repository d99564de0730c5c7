#include "expressions/validation.h"

#include "expressions/existing_fields.h"
#include "expressions/field_reads.h"
#include "platform/format_text.h"
#include "platform/wide_c_string.h"

#include <kestrona/classes.h>
#include <kestrona/classification_readers.h>
#include <kestrona/expression_validation.h>

#include <string_view>
#include <unordered_set>
#include <utility>

namespace Kestrona::Expressions {

using Platform::FormatText;

namespace {

constexpr const wchar_t* kScriptVariable = L"An Evaluate expression, cannot reference a KSEP Variable.";
constexpr const wchar_t* kCyclic = L"This field cannot reference %s due to cyclic dependencies.";
constexpr const wchar_t* kTranslatable = L"This expression cannot reference field '%s' as a string as it is a database "
                                         L"reference to a translatable table.";
constexpr std::wstring_view kTranslatableKeyword = L"TRANSLATABLE";

std::wstring_view ClassStringOf(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    const wchar_t* const text = store.GetDbClassString(format, field);
    return text == nullptr ? std::wstring_view() : std::wstring_view(text);
}

std::wstring EvaluateText(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    const Platform::OwnedWide text(Parse_EVALUATE(store.GetDbClassString(format, field)));
    return text == nullptr ? std::wstring() : std::wstring(text.get());
}

// Whether a chain of database references passes a table whose key is translatable. A ring of them ends the search.
bool LeadsToTranslatable(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    std::unordered_set<std::uint64_t> seen;
    while (store.ClassDefined(format, field, Classes::kDatabase) && seen.insert(FieldKey(format, field)).second) {
        const std::int32_t table = store.GetDbTable(format, field);
        const std::int32_t source = store.GetDbSource(format, field);
        const std::wstring_view key = ClassStringOf(store, table, store.GetDbKey(table));
        if (key.find(kTranslatableKeyword) != std::wstring_view::npos) {
            return true;
        }
        format = table;
        field = source;
    }
    return false;
}

} // namespace

bool ExpressionValidator::Validate(std::int32_t format, std::int32_t field) {
    if (marks_.contains(FieldKey(format, field))) {
        return true;
    }
    error_found_ = false;
    Enter(format, field);
    while (!stack_.empty()) {
        if (!stack_.back().IsDone()) {
            Step(stack_.back());
            continue;
        }
        Leave();
        // The reference that led to the field that was left has its own text to answer for.
        if (!stack_.empty()) {
            const WalkFrame& frame = stack_.back();
            CheckText(frame.references[frame.next - 1].field);
        }
    }
    return !error_found_;
}

void ExpressionValidator::Enter(std::int32_t format, std::int32_t field) {
    StartRecord(format, field);
    marks_[FieldKey(format, field)].on_stack = true;
    stack_.push_back({.format = format, .field = field, .references = ReferencesOf(store_, format, field)});
}

void ExpressionValidator::Leave() {
    const auto mark = marks_.find(FieldKey(stack_.back().format, stack_.back().field));
    if (error_found_) {
        marks_.erase(mark);
    } else {
        mark->second = {.on_stack = false, .last_entered = error_.Field};
    }
    stack_.pop_back();
}

void ExpressionValidator::Step(WalkFrame& frame) {
    const Reference reference = frame.references[frame.next++];
    if (reference.is_script) {
        Fault(kScriptVariable);
    } else if (!Descend(reference.field)) {
        CheckText(reference.field);
    }
}

// Whether the walk goes on in the field's own expression.
bool ExpressionValidator::Descend(const FieldReference& reference) {
    if (!IsCalculated(store_, reference.format, reference.field)) {
        return false;
    }
    const auto known = marks_.find(FieldKey(reference.format, reference.field));
    if (known != marks_.end() && known->second.on_stack) {
        Fault(FormatText(kCyclic, store_.GetColumnName(reference.format, reference.field)));
        return false;
    }
    if (error_found_) {
        return false;
    }
    if (known != marks_.end()) {
        StartRecord(reference.format, known->second.last_entered);
        return false;
    }
    Enter(reference.format, reference.field);
    return true;
}

// The text of a translatable table differs between installations, so no calculation may rest on it.
void ExpressionValidator::CheckText(const FieldReference& reference) {
    if (ReadsText(store_, reference) && LeadsToTranslatable(store_, reference.format, reference.field)) {
        Fault(FormatText(kTranslatable, store_.GetColumnName(reference.format, reference.field)));
    }
}

void ExpressionValidator::StartRecord(std::int32_t format, std::int32_t field) {
    error_ = {};
    error_.Format = format;
    error_.Field = field;
}

void ExpressionValidator::Fault(std::wstring message) {
    error_found_ = true;
    error_.Message = std::move(message);
    error_.Expression = EvaluateText(store_, error_.Format, error_.Field);
}

} // namespace Kestrona::Expressions

bool KSDLL_ValidateExpressions(Kestrona::Data::MemoryResident::IMemoryResidentData& store) {
    Kestrona::Expressions::ExpressionValidator validator(store);
    const std::int32_t formats = store.GetFormatCount();
    for (std::int32_t format = 0; format < formats; ++format) {
        const std::int32_t fields = Kestrona::Expressions::ExistingFields(store, format);
        for (std::int32_t field = 0; field < fields; ++field) {
            if (Kestrona::Expressions::IsCalculated(store, format, field) && !validator.Validate(format, field)) {
                KSDLL_ReportParseErrorToMessageBox(store, &validator.Error());
                store.SetDbEvaluateExpression(format, field, nullptr);
                return false;
            }
        }
    }
    return true;
}
