// Rules about keys, references, and names that nothing uses or that do not exist.
#include "lint/rules.h"
#include "schema/field_links.h"

#include <kestrona/classes.h>
#include <kestrona/classification_readers.h>
#include <kestrona/unicode.h>

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <unordered_set>

namespace Kestrona::Tool::Lint {
namespace {

// Keywords that take effect wherever their text stands, without arguments.
constexpr std::array<std::wstring_view, 18> kLooseKeywords{L"SWITCH",           L"LOOKUP UPDATE",
                                                           L"RELATED LIST",     L"AUTO RESTRICT",
                                                           L"AUTO DIMENSION",   L"MATRIX DEFAULT",
                                                           L"MATRIX MINIMUM",   L"COMMON MATRIX",
                                                           L"DATA LIST",        L"STRING_DEF",
                                                           L"TRANSLATABLE",     L"SYSTEMDB",
                                                           L"AUTO CALCULATE",   L"EXCLUDE FROM DB",
                                                           L"TIP DISPLAY",      L"ADDITIONAL REFERENCE",
                                                           L"UPDATE REFERENCE", L"FIND CLASSIFICATION STRING"};

// Tables that the data module makes itself.
constexpr std::array<std::wstring_view, 2> kBuiltInTables{L"#define_Table", L"#popup_help_Table"};

// Words by which a hidden field does something for others, or is found by them.
constexpr std::array<std::wstring_view, 18> kActingWords{
    L"DATABASE",       L"SWITCH",         L"SWITCH ON",       L"SWITCH OFF",           L"LOCAL ASSIGNMENT",
    L"LOOKUP SOURCE",  L"AUTO SPLIT",     L"MATCH FIELD",     L"MATCH DURATION FIELD", L"SETUP OVERRIDE MATCH",
    L"SOURCE ORDER",   L"ORDER MATCH",    L"EXPAND MATCH",    L"EXPAND REFERENCE",     L"SYSTEMDB",
    L"REVERSE SEARCH", L"TWO KEY TARGET", L"DISPLAY SEQUENCE"};

bool Acts(const FieldView& field) {
    return std::any_of(kActingWords.begin(), kActingWords.end(),
                       [&](std::wstring_view keyword) { return field.Has(keyword); });
}

bool IsHidden(const FieldView& field) {
    return field.Is(Classes::kHidden) || field.definition->dialog_level == kHiddenDialogLevel;
}

std::wstring_view KeywordIn(std::wstring_view name) {
    const auto* const found =
        std::find_if(kLooseKeywords.begin(), kLooseKeywords.end(),
                     [&](std::wstring_view keyword) { return name.find(keyword) != std::wstring_view::npos; });
    return found == kLooseKeywords.end() ? std::wstring_view() : *found;
}

std::string KeywordText(std::wstring_view name) {
    return fmt::format("the name '{}' holds the keyword {}", ToUtf8(name), ToUtf8(KeywordIn(name)));
}

std::vector<FieldLink> LinksOf(const LintSource& source, const FieldView& field) {
    return FieldLinks(*source.Store(), static_cast<std::int32_t>(field.format), static_cast<std::int32_t>(field.field));
}

// Gives the number of the field's popup help; false for a field without one.
bool HasPopupHelp(const LintSource& source, const FieldView& field, std::int32_t& id) {
    return ParseHELPPOPUPID(std::wstring(source.ClassString(field)).c_str(), &id);
}

// By format, whether it has to do with another one or belongs to the system.
std::vector<bool> LinkedFormats(const LintSource& source) {
    std::vector<bool> linked(source.Definition().formats.size());
    for (std::size_t f = 0; f < linked.size(); ++f) {
        const std::int32_t parent = source.Store()->GetAssociateTableNumber(static_cast<std::int32_t>(f));
        if (parent >= 0) {
            linked[f] = linked[static_cast<std::size_t>(parent)] = true;
        }
    }
    for (const FieldView& field : source.Fields()) {
        for (const FieldLink& link : LinksOf(source, field)) {
            const auto target = static_cast<std::size_t>(link.format);
            if (target != field.format) {
                linked[field.format] = linked[target] = true;
            }
        }
        linked[field.format] = linked[field.format] || field.Has(L"SYSTEMDB");
    }
    return linked;
}

} // namespace

void CheckKeyNotUnique(const LintSource& source, FindingSink& sink) {
    for (const FieldView& field : source.Fields()) {
        if (field.IsKey() && !field.Is(Classes::kUnique)) {
            sink.Add(field, fmt::format("the key of '{}' is not UNIQUE", ToUtf8(field.owner->name)));
        }
    }
}

void CheckNonUniqueReference(const LintSource& source, FindingSink& sink) {
    for (const FieldView& field : source.Fields()) {
        const WordView* const word = field.Find(L"DATABASE");
        if (word == nullptr || source.Store() == nullptr || field.Is(Classes::kAdditionalReference)) {
            continue;
        }
        auto& store = *source.Store();
        for (const FieldLink& link : LinksOf(source, field)) {
            if (link.keyword == "DATABASE" && (store.GetDbType(link.format, link.field) & TypeBit::kMatrix) == 0 &&
                !store.ClassDefined(link.format, link.field, Classes::kUnique) &&
                store.GetDbKey(link.format) != link.field) {
                sink.Add(field, word->place,
                         fmt::format("DATABASE leads to {}, which is not UNIQUE", TargetText(store, link)));
            }
        }
    }
}

void CheckIsolatedFormat(const LintSource& source, FindingSink& sink) {
    const auto& formats = source.Definition().formats;
    if (source.Store() == nullptr || formats.size() < 2) {
        return;
    }
    const std::vector<bool> linked = LinkedFormats(source);
    for (std::size_t f = 0; f < formats.size(); ++f) {
        if (!linked[f]) {
            sink.Add(formats[f], fmt::format("format '{}' stands alone", ToUtf8(formats[f].name)));
        }
    }
}

void CheckUnusedField(const LintSource& source, FindingSink& sink) {
    for (const FieldView& field : source.Fields()) {
        if (IsHidden(field) && !field.IsKey() && !field.words.empty() && !Acts(field) &&
            !source.IsMentioned(field.definition->name)) {
            sink.Add(field, fmt::format("nothing shows or names the field '{}'", ToUtf8(field.definition->name)));
        }
    }
}

void CheckUnusedTable(const LintSource& source, FindingSink& sink) {
    for (const Host::StringTableDefinition& table : source.Definition().tables) {
        if (!source.IsMentioned(table.name)) {
            sink.Add(table.place, fmt::format("no field uses the table '{}'", ToUtf8(table.name)));
        }
    }
}

void CheckUnknownTable(const LintSource& source, FindingSink& sink) {
    for (const FieldView& field : source.Fields()) {
        const WordView* const word = field.Find(L"TABLE");
        if (word == nullptr) {
            continue;
        }
        const std::wstring name(Unwrapped(word->arguments));
        if (!source.HasTable(name) &&
            std::find(kBuiltInTables.begin(), kBuiltInTables.end(), name) == kBuiltInTables.end()) {
            sink.Add(field, word->place, fmt::format("there is no table '{}'", ToUtf8(name)));
        }
    }
}

void CheckUnusedHelp(const LintSource& source, FindingSink& sink) {
    std::unordered_set<std::int32_t> shown;
    for (const FieldView& field : source.Fields()) {
        std::int32_t id = 0;
        if (HasPopupHelp(source, field, id)) {
            shown.insert(id);
        }
    }
    for (const Host::HelpDefinition& help : source.Definition().help) {
        if (!shown.contains(help.id)) {
            sink.Add(help.place, fmt::format("no field shows the help text {}", help.id));
        }
    }
}

void CheckUnknownHelp(const LintSource& source, FindingSink& sink) {
    std::unordered_set<std::int32_t> known;
    for (const Host::HelpDefinition& help : source.Definition().help) {
        known.insert(help.id);
    }
    for (const FieldView& field : source.Fields()) {
        std::int32_t id = 0;
        if (HasPopupHelp(source, field, id) && !known.contains(id)) {
            const WordView* const word = field.Find(L"HELPPOPUPID");
            sink.Add(field, word != nullptr ? word->place : field.definition->place,
                     fmt::format("there is no help text {}", id));
        }
    }
}

void CheckKeywordInName(const LintSource& source, FindingSink& sink) {
    for (const Host::FormatDefinition& format : source.Definition().formats) {
        if (!KeywordIn(format.name).empty()) {
            sink.Add(format, KeywordText(format.name));
        }
    }
    for (const FieldView& field : source.Fields()) {
        if (!KeywordIn(field.definition->name).empty()) {
            sink.Add(field, KeywordText(field.definition->name));
        }
    }
    for (const Host::StringTableDefinition& table : source.Definition().tables) {
        if (!KeywordIn(table.name).empty()) {
            sink.Add(table.place, KeywordText(table.name));
        }
    }
}

} // namespace Kestrona::Tool::Lint
