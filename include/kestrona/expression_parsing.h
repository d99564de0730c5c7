#pragma once

#include <kestrona/expression.h>

#include <cstdint>
#include <string>

/// \file
/// Expressions from their text.
///
/// An expression belongs to one format and names the fields of that format only. The entries never throw for a text,
/// whatever it is: they return null and describe the failure. An expression deeper than 128 brackets, a text of more
/// than 65536 characters and a chain of more than `kMaxTreeDepth` operators are refused. Time grows with the length of
/// the text, plus the number of the format's fields where the text names one.

/// The result of a parse.
struct ExpressionErrorInfo {
    /// The first failure. It may be filled after a parse that ended well; only `Success` tells.
    std::wstring Message;
    /// The text as it was parsed, with the delimiters that a text expression is put into.
    std::wstring Expression;
    /// Place of the failure in characters of `Expression`, -1 when none is known.
    std::int64_t Position = -1;
    std::int32_t Format = -1;
    /// -1 for an expression that belongs to no field.
    std::int32_t Field = -1;
    bool Success = false;
};

/// Is told of a failed parse; the record lives for the call only.
using ExpressionErrorCallback = void (*)(Kestrona::Data::MemoryResident::IMemoryResidentData& store,
                                         ExpressionErrorInfo* info);

/// Compiles an expression that yields a number and belongs to no field, which can name no matrix field. Returns null on
/// failure; the caller deletes the result. `info` keeps its `Format` and `Field`, which the caller sets, and a
/// `Message` that it already has.
[[nodiscard]] KS_API INativeExpression*
KSDLL_ParseAndVerifyExpression(Kestrona::Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                               const std::wstring& text, ExpressionErrorInfo& info);

/// Compiles an expression that belongs to no field. With `is_string` the whole text is the inside of a text with fields
/// in it. Returns null after a failure, of which `callback` is told if it is not null. The caller deletes the result.
[[nodiscard]] KS_API INativeExpression*
KSDLL_CreateExpression(Kestrona::Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                       const std::wstring& text, bool is_string, ExpressionErrorCallback callback);

/// Likewise for an expression of a field. That of a matrix field may name the matrix fields of the same associated
/// group, others none.
[[nodiscard]] KS_API INativeExpression*
KSDLL_CreateFieldExpression(Kestrona::Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                            std::int32_t field, const std::wstring& text, bool is_string,
                            ExpressionErrorCallback callback);

/// Returns the expression that was compiled earlier from this text for this store, format and `is_string`, or compiles
/// it like `KSDLL_CreateExpression`. The cache keeps the result, which the caller must not delete; it is valid until
/// `KSDLL_FreeExpressionCache`. The callback is never called. A failure is tried anew at the next call.
KS_API INativeExpression* KSDLL_CreateExpressionFromCache(Kestrona::Data::MemoryResident::IMemoryResidentData& store,
                                                          std::int32_t format, const std::wstring& text, bool is_string,
                                                          ExpressionErrorCallback callback);

/// Deletes all expressions of the cache, of every store. They hold field numbers, so a change of a schema calls for it.
KS_API void KSDLL_FreeExpressionCache();

/// Shows a failed parse with the names of its format and field as an error box titled "Parse Error!". It is the usual
/// callback.
KS_API void KSDLL_ReportParseErrorToMessageBox(Kestrona::Data::MemoryResident::IMemoryResidentData& store,
                                               ExpressionErrorInfo* info);
