#include "expressions/parse_errors.h"

#include "expressions/parse_context.h"

#include <cstddef>
#include <string>

namespace Kestrona::Expressions {

namespace {

constexpr const wchar_t* kExpectingExpression = L"Expecting Valid Expression";
constexpr const wchar_t* kUnexpectedSymbol = L"Unexpected symbol '";
constexpr const wchar_t* kUnresolvedFunction = L"Unresolved Function Name ";
constexpr const wchar_t* kUnknownField = L"Field does not exist within current format";

// From a function's name back to its prefix "FUNC_", counted from 1.
constexpr std::int64_t kBackToPrefix = -4;

// A closing bracket ends an expression, and a lone bracket or brace has messages of its own.
bool IsUnexpected(std::wstring_view rest) {
    constexpr std::wstring_view kMayStandAlone = L"}{(";
    if (rest.empty() || rest.front() == L')') {
        return false;
    }
    return rest.size() > 1 || kMayStandAlone.find(rest.front()) == std::wstring_view::npos;
}

} // namespace

void ErrorHandler::Report(ParseContext& context, ErrorType type, const wchar_t* start, const wchar_t* failure,
                          const wchar_t* token) {
    if (type == ErrorType::FieldName) {
        ReportFieldName(context.Names(), start, failure);
        return;
    }
    if (!info_.Message.empty()) {
        return;
    }
    const std::int64_t place = failure - text_.data();
    const std::wstring_view rest = RestFrom(start);
    switch (type) {
    case ErrorType::Symbol:
        if (IsUnexpected(rest)) {
            Set(kUnexpectedSymbol + std::wstring(1, rest.front()) + L"' ", place + 1);
        }
        break;
    case ErrorType::Function:
        if (!rest.empty()) {
            Set(kUnresolvedFunction, place + kBackToPrefix);
        }
        break;
    case ErrorType::Token:
        Set(L"'" + std::wstring(token) + L"' Missing", place + 1);
        break;
    default:
        Set(kExpectingExpression, place);
        break;
    }
}

void ErrorHandler::ReportFieldName(const FieldNames& names, const wchar_t* start, const wchar_t* failure) {
    const std::wstring_view rest = RestFrom(start);
    const std::wstring_view name = rest.substr(0, rest.find(L'}'));
    const wchar_t* const refusal = names.RefusalOf(name);
    Set(std::wstring(refusal != nullptr ? refusal : kUnknownField) + L" - '" + std::wstring(name) + L"'",
        failure - text_.data() + 1);
}

void ErrorHandler::Set(std::wstring message, std::int64_t position) {
    info_.Message = std::move(message);
    info_.Position = position;
    reported_ = true;
}

std::wstring_view ErrorHandler::RestFrom(const wchar_t* place) const {
    return text_.substr(static_cast<std::size_t>(place - text_.data()));
}

} // namespace Kestrona::Expressions
