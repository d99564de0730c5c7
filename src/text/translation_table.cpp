// Implements: the translation table.
//
// A section keeps its entries in the order they came. The first entry of each whole text also stands in a hash map,
// which answers for the section as long as it has no entry that replaces occurrences: order matters only with those.
#include "text/copy_out.h"

#include <kestrona/process.h>
#include <kestrona/translation.h>

#include <cstddef>
#include <unordered_map>
#include <vector>

using Kestrona::TranslationEntryType;

namespace {

struct Entry {
    std::wstring text;
    std::wstring translation;
    TranslationEntryType type;
};

class Section {
public:
    void Append(Entry entry) {
        if (entry.type == TranslationEntryType::WholeText) {
            first_of_text_.try_emplace(entry.text, entries_.size());
        }
        replaces_occurrences_ = replaces_occurrences_ || entry.type == TranslationEntryType::Occurrences;
        entries_.push_back(std::move(entry));
    }

    std::wstring Translate(const std::wstring& text) const {
        if (replaces_occurrences_) {
            return ApplyInOrder(text);
        }
        const auto found = first_of_text_.find(text);
        return found != first_of_text_.end() ? entries_[found->second].translation : text;
    }

private:
    std::wstring ApplyInOrder(std::wstring text) const {
        for (const Entry& entry : entries_) {
            if (entry.type == TranslationEntryType::Occurrences) {
                text = KSDLL_TStringSubstitute(std::move(text), entry.text, entry.translation);
            } else if (entry.type == TranslationEntryType::WholeText && text == entry.text) {
                return entry.translation;
            }
        }
        return text;
    }

    std::vector<Entry> entries_;
    std::unordered_map<std::wstring, std::size_t> first_of_text_;
    bool replaces_occurrences_ = false;
};

using Table = std::unordered_map<std::wstring, Section>;

Table& TranslationTable() {
    static Table table;
    return table;
}

} // namespace

void KSDLL_SetTranslationEntry(const std::wstring& text, const std::wstring& translation, TranslationEntryType type,
                               const std::wstring& section) {
    constexpr const wchar_t* kNotFilledIn = L" ";
    TranslationTable()[section].Append({text, translation == kNotFilledIn ? text : translation, type});
}

std::wstring KSDLL_CheckTranslationEntryT(const std::wstring& text, const std::wstring& section) {
    const auto found = TranslationTable().find(section);
    return found != TranslationTable().end() ? found->second.Translate(text) : text;
}

void KSDLL_CheckTranslationEntry(wchar_t* text, const std::wstring& section) {
    if (text != nullptr) {
        Kestrona::Text::CopyOut(KSDLL_CheckTranslationEntryT(text, section), text);
    }
}

void FreeTranslationTable() {
    Table().swap(TranslationTable());
}
