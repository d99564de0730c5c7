#pragma once

#include <kestrona/expression_parsing.h>

#include <cstdint>
#include <string_view>

// What a failed rule of the grammar says. Rules report while other alternatives are still to be tried, so a parse may
// end well with a message on record.
namespace Kestrona::Expressions {

class FieldNames;
class ParseContext;

enum class ErrorType : std::int32_t {
    Expression = 0,
    FieldName = 1,
    Symbol = 2,
    Function = 3,
    Token = 4,
};

// Fills the record of one parse. The first message stays, but one about a field name replaces any other.
class ErrorHandler {
public:
    // `text` must outlive this object.
    ErrorHandler(std::wstring_view text, ExpressionErrorInfo& info) : text_(text), info_(info) {}

    // `start` is where the rule began, before blanks, `failure` where what it expected is missing.
    void Report(ParseContext& context, ErrorType type, const wchar_t* start, const wchar_t* failure,
                const wchar_t* token);

    // Whether a report has left a message.
    bool HasReported() const { return reported_; }

private:
    void ReportFieldName(const FieldNames& names, const wchar_t* start, const wchar_t* failure);
    void Set(std::wstring message, std::int64_t position);
    std::wstring_view RestFrom(const wchar_t* place) const;

    std::wstring_view text_;
    ExpressionErrorInfo& info_;
    bool reported_ = false;
};

} // namespace Kestrona::Expressions
