#include "lint/lint_source.h"

#include <kestrona/classes.h>
#include <kestrona/unicode.h>

#include <algorithm>
#include <utility>

namespace Kestrona::Tool::Lint {
namespace {

constexpr std::wstring_view kBlanks = L" \t\r\n";
// What divides names from each other in arguments and expressions. '#', '$' and '.' may also stand inside a name.
constexpr std::wstring_view kDividers = L"()[]{}\",:|";
constexpr std::wstring_view kSigils = L"#$";

std::wstring_view Trimmed(std::wstring_view text) {
    const std::size_t start = text.find_first_not_of(kBlanks);
    return start == std::wstring_view::npos ? std::wstring_view()
                                            : text.substr(start, text.find_last_not_of(kBlanks) + 1 - start);
}

WordView ViewOf(const Host::ClassificationWord& word) {
    const std::wstring_view text = word.text;
    const std::size_t end = std::min(text.find_first_of(L"([\""), text.size());
    return {Trimmed(text.substr(0, end)), text.substr(end), word.place};
}

void AddMentions(std::wstring_view text, std::unordered_set<std::wstring>& mentioned) {
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find_first_of(kDividers, at), text.size());
        const std::wstring_view name = Trimmed(text.substr(at, end - at));
        if (!name.empty()) {
            mentioned.emplace(name);
            mentioned.emplace(Trimmed(name.substr(std::min(name.find_first_not_of(kSigils), name.size()))));
        }
        at = end + 1;
    }
}

} // namespace

const WordView* FieldView::Find(std::wstring_view keyword) const {
    const auto found =
        std::find_if(words.begin(), words.end(), [&](const WordView& word) { return word.keyword == keyword; });
    return found == words.end() ? nullptr : &*found;
}

bool FieldView::Is(Class c) const {
    return (definition->classes[static_cast<std::size_t>(c.word)] & c.mask) == c.mask;
}

bool FieldView::IsMatrix() const {
    return (definition->type & TypeBit::kMatrix) != 0;
}

bool FieldView::IsKey() const {
    return owner->key >= 0 && static_cast<std::size_t>(owner->key) == field;
}

LintSource::LintSource(const Host::Definition& definition, Data::MemoryResident::IMemoryResidentData* store)
    : definition_(definition),
      store_(store) {
    for (std::size_t f = 0; f < definition.formats.size(); ++f) {
        const Host::FormatDefinition& format = definition.formats[f];
        for (std::size_t i = 0; i < format.fields.size(); ++i) {
            FieldView view{f, i, &format, &format.fields[i], {}};
            for (const Host::ClassificationWord& word : format.fields[i].words) {
                view.words.push_back(ViewOf(word));
            }
            fields_.push_back(std::move(view));
        }
    }
    for (const FieldView& field : fields_) {
        AddMentions(ClassString(field), mentioned_);
    }
    for (const Host::StringTableDefinition& table : definition.tables) {
        tables_.insert(table.name);
    }
}

std::wstring_view LintSource::ClassString(const FieldView& field) const {
    return store_ == nullptr ? std::wstring_view(field.definition->classification)
                             : store_->GetDbClassString(static_cast<std::int32_t>(field.format),
                                                        static_cast<std::int32_t>(field.field));
}

bool LintSource::HasTable(const std::wstring& name) const {
    return tables_.contains(name);
}

void FindingSink::Add(const FieldView& field, std::string message) {
    Add(field, field.definition->place, std::move(message));
}

void FindingSink::Add(const FieldView& field, const Host::Place& place, std::string message) {
    Finding& finding = Append(place, std::move(message));
    finding.format = ToUtf8(field.owner->name);
    finding.field = ToUtf8(field.definition->name);
}

void FindingSink::Add(const Host::FormatDefinition& format, std::string message) {
    // cppcheck-suppress accessMoved ; moved once
    Append(format.place, std::move(message)).format = ToUtf8(format.name);
}

void FindingSink::Add(const Host::Place& place, std::string message) {
    Append(place, std::move(message));
}

Finding& FindingSink::Append(const Host::Place& place, std::string message) {
    Finding& finding = findings_.emplace_back();
    finding.rule = &rule_;
    finding.file = source_.Definition().files[static_cast<std::size_t>(place.file)];
    finding.line = place.line;
    finding.column = place.column;
    finding.message = std::move(message);
    return finding;
}

std::wstring_view Unwrapped(std::wstring_view arguments) {
    const std::wstring_view text = Trimmed(arguments);
    return text.size() < 2 ? std::wstring_view() : Trimmed(text.substr(1, text.size() - 2));
}

} // namespace Kestrona::Tool::Lint
