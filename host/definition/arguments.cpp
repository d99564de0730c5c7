#include "definition/arguments.h"

#include "definition/argument_reader.h"
#include "definition/characters.h"
#include "definition/values.h"

namespace Kestrona::Host::Language {

namespace {

constexpr std::wstring_view kDigits = L"0123456789";

TargetNames ReadTarget(ArgumentReader& reader) {
    TargetNames names;
    names.format = reader.TakeUntil(L"()\"", "a format");
    reader.Take(L'(');
    names.field = reader.TakeUntil(L"()\"", "a field");
    reader.Take(L')');
    return names;
}

void ReadDatabase(ArgumentReader& reader) {
    if (reader.Sees(L'[')) {
        reader.Take(L'[');
        reader.TakeUntil(L"]", "a text of a classification");
        reader.Take(L']');
        return;
    }
    reader.Take(L'(');
    ReadTarget(reader);
    reader.Take(L')');
}

void ReadBracketed(ArgumentReader& reader, const char* expected) {
    reader.Take(L'(');
    reader.TakeUntil(L"()", expected);
    reader.Take(L')');
}

TargetNames ReadAxis(ArgumentReader& reader) {
    reader.TakeUntil(L",()\"", "a label");
    reader.Take(L',');
    return ReadTarget(reader);
}

AxisNames ReadAxes(ArgumentReader& reader) {
    AxisNames names;
    reader.Take(L'(');
    names.x = ReadAxis(reader);
    reader.Take(L',');
    names.y = ReadAxis(reader);
    reader.Take(L')');
    return names;
}

void ReadInteger(ArgumentReader& reader) {
    reader.Take(L'(');
    if (reader.Sees(L'-')) {
        reader.Take(L'-');
    }
    const std::wstring_view digits = reader.TakeSpan(kDigits, "a whole number");
    if (!digits.empty() && !ParseWhole(digits, 0, 0x7fffffff)) {
        reader.Fail("a number of at most 2147483647");
    }
    reader.Take(L')');
}

void ReadNumberFormat(ArgumentReader& reader) {
    constexpr std::wstring_view kMaximum = L"MAX";
    reader.Take(L'(');
    if (reader.Sees(kMaximum.front())) {
        if (reader.TakeSpan(kMaximum, "MAX") != kMaximum) {
            reader.Fail("MAX");
        }
        if (reader.Sees(L')')) {
            reader.Take(L')');
            return;
        }
        reader.Write(L" ");
    }
    reader.TakeSpan(L"0123456789.-+lf", "a number format such as 8.2");
    reader.Take(L')');
}

void ReadQuoted(ArgumentReader& reader) {
    reader.Write(L" ");
    reader.TakeQuoted(false);
}

void ReadLabel(ArgumentReader& reader) {
    if (reader.Sees(L'(')) {
        ReadBracketed(reader, "a text");
        return;
    }
    ReadQuoted(reader);
}

void ReadValuePair(ArgumentReader& reader) {
    reader.Take(L'(');
    if (reader.Sees(L'-')) {
        reader.Take(L'-');
    }
    reader.TakeSpan(kDigits, "a number");
    if (reader.Sees(L'.')) {
        reader.Take(L'.');
        if (!reader.Sees(L'-')) {
            reader.TakeSpan(kDigits, "a digit");
        }
    }
    reader.Take(L'-');
    reader.Take(L'>');
    reader.TakeQuoted(true);
    reader.Take(L')');
}

// The target stands inside the quotes.
Arguments ReadQuotedTarget(std::wstring_view text) {
    ArgumentReader outer(text);
    outer.Write(L" ");
    outer.TakeQuoted(false);
    Arguments arguments = outer.Finish();
    if (arguments.problem) {
        return arguments;
    }
    const std::size_t start = text.find(L'"') + 1;
    ArgumentReader inner(text.substr(start, text.find(L'"', start) - start));
    ReadTarget(inner);
    Arguments target = inner.Finish();
    if (target.problem) {
        return {std::wstring(text), ArgumentProblem{start + target.problem->offset, target.problem->expected}};
    }
    return {L" \"" + target.canonical + L"\"", std::nullopt};
}

void ReadShape(Shape shape, ArgumentReader& reader) {
    switch (shape) {
    case Shape::Nothing:
    case Shape::QuotedTarget:
        return;
    case Shape::Target:
        reader.Take(L'(');
        ReadTarget(reader);
        reader.Take(L')');
        return;
    case Shape::DatabaseTarget:
        ReadDatabase(reader);
        return;
    case Shape::LookupField:
        if (reader.AtEnd()) {
            return;
        }
        [[fallthrough]];
    case Shape::OwnField:
    case Shape::OwnFieldColon:
    case Shape::ParentField:
    case Shape::AxisField:
        ReadBracketed(reader, "a field");
        return;
    case Shape::Axes:
        ReadAxes(reader);
        return;
    case Shape::BracketText:
        ReadBracketed(reader, "a text");
        return;
    case Shape::OptionalOrder:
        if (!reader.AtEnd()) {
            ReadInteger(reader);
        }
        return;
    case Shape::Integer:
        ReadInteger(reader);
        return;
    case Shape::NumberFormat:
        ReadNumberFormat(reader);
        return;
    case Shape::QuotedText:
        ReadQuoted(reader);
        return;
    case Shape::Label:
        ReadLabel(reader);
        return;
    case Shape::ValuePair:
        ReadValuePair(reader);
        return;
    }
}

} // namespace

Arguments ReadArguments(Shape shape, std::wstring_view text) {
    if (shape == Shape::QuotedTarget) {
        return ReadQuotedTarget(text);
    }
    ArgumentReader reader(text);
    ReadShape(shape, reader);
    return reader.Finish();
}

std::optional<TargetNames> FindTargetNames(std::wstring_view arguments) {
    arguments = Trim(arguments);
    if (arguments.size() < 2 || (arguments.front() != L'(' && arguments.front() != L'"')) {
        return std::nullopt;
    }
    ArgumentReader reader(arguments.substr(1, arguments.size() - 2));
    const TargetNames names = ReadTarget(reader);
    return reader.Finish().problem ? std::nullopt : std::optional(names);
}

std::wstring_view FindFieldName(std::wstring_view arguments, bool ends_at_colon) {
    ArgumentReader reader(arguments);
    reader.Take(L'(');
    return reader.TakeUntil(ends_at_colon ? L"():" : L"()", "a field");
}

std::optional<AxisNames> FindAxisNames(std::wstring_view arguments) {
    ArgumentReader reader(arguments);
    const AxisNames names = ReadAxes(reader);
    return reader.Finish().problem ? std::nullopt : std::optional(names);
}

} // namespace Kestrona::Host::Language
