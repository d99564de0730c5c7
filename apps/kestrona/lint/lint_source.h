#pragma once

#include "lint/finding.h"

#include <kestrona/host/definition.h>
#include <kestrona/memory_resident_data.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

/// \file
/// The definition as rules see it: what stands in the source, and what resolution made of it.

namespace Kestrona::Tool::Lint {

/// One word of a classification: its keyword and what stands behind it, brackets and quotes included.
struct WordView {
    std::wstring_view keyword;
    std::wstring_view arguments;
    Host::Place place;
};

/// A field with its words. Fields whose classification is given as an exact text have none.
struct FieldView {
    std::size_t format = 0;
    std::size_t field = 0;
    const Host::FormatDefinition* owner = nullptr;
    const Host::FieldDefinition* definition = nullptr;
    std::vector<WordView> words;

    /// Returns the first word with this keyword, null for none.
    [[nodiscard]] const WordView* Find(std::wstring_view keyword) const;

    [[nodiscard]] bool Has(std::wstring_view keyword) const { return Find(keyword) != nullptr; }

    /// Tells whether the words of the field set the class.
    [[nodiscard]] bool Is(Class c) const;
    [[nodiscard]] bool IsMatrix() const;
    [[nodiscard]] bool IsKey() const;
};

class LintSource {
public:
    /// `store` is null when the definition could not be resolved. Both are borrowed.
    LintSource(const Host::Definition& definition, Data::MemoryResident::IMemoryResidentData* store);

    [[nodiscard]] const Host::Definition& Definition() const { return definition_; }

    /// The resolved store, whose formats and fields have the numbers of the definition; may be null.
    [[nodiscard]] Data::MemoryResident::IMemoryResidentData* Store() const { return store_; }

    /// All fields, format by format.
    [[nodiscard]] const std::vector<FieldView>& Fields() const { return fields_; }

    /// Returns the field's classification string, with what resolution made of it.
    [[nodiscard]] std::wstring_view ClassString(const FieldView& field) const;

    /// Tells whether a name stands by itself, as an argument or in an expression, in any classification.
    [[nodiscard]] bool IsMentioned(const std::wstring& name) const { return mentioned_.contains(name); }

    [[nodiscard]] bool HasTable(const std::wstring& name) const;

private:
    const Host::Definition& definition_;
    Data::MemoryResident::IMemoryResidentData* store_;
    std::vector<FieldView> fields_;
    std::unordered_set<std::wstring> mentioned_;
    std::unordered_set<std::wstring> tables_;
};

/// Collects the findings of one rule.
class FindingSink {
public:
    FindingSink(const LintSource& source, const Rule& rule, std::vector<Finding>& findings)
        : source_(source),
          rule_(rule),
          findings_(findings) {}

    /// At the field's own line.
    void Add(const FieldView& field, std::string message);
    /// At one of the field's words.
    void Add(const FieldView& field, const Host::Place& place, std::string message);
    void Add(const Host::FormatDefinition& format, std::string message);
    /// For what belongs to no format.
    void Add(const Host::Place& place, std::string message);

private:
    Finding& Append(const Host::Place& place, std::string message);

    const LintSource& source_;
    const Rule& rule_;
    std::vector<Finding>& findings_;
};

/// Returns the text without its brackets or quotes and the blanks inside: "A(B)" of "(A(B))", "x" of "\"x\"".
[[nodiscard]] std::wstring_view Unwrapped(std::wstring_view arguments);

} // namespace Kestrona::Tool::Lint
