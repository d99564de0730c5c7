#include "definition/check.h"

#include "definition/arguments.h"
#include "definition/classification.h"
#include "definition/field_types.h"
#include "definition/format_block.h"
#include "definition/schema_index.h"
#include "definition/string_tables.h"
#include "definition/suggestion.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <unordered_map>
#include <unordered_set>

namespace Kestrona::Host::Language {

namespace {

// The characters that end a name in some readers of classifications or expressions.
constexpr std::wstring_view kAwkwardInFieldNames = L":{}~";

std::string AtPlace(const Definition& definition, const Place& place) {
    return definition.files[static_cast<std::size_t>(place.file)] + ":" + std::to_string(place.line) + ":" +
           std::to_string(place.column);
}

class DefinitionCheck {
public:
    DefinitionCheck(Definition& definition, Reporter& reporter) : definition_(definition), reporter_(reporter) {}

    void Run() {
        CheckNames(definition_.formats, "format");
        CheckNames(definition_.tables, "table");
        CheckCount(definition_.formats, kMaxFormats, "formats");
        CheckCount(definition_.constants, kMaxStringTableEntries, "constants");
        CheckCount(definition_.help, kMaxStringTableEntries, "help texts");
        CheckCount(definition_.substitutions, kMaxStringSubstitutions, "substitutions");
        for (FormatDefinition& format : definition_.formats) {
            CheckFormat(format);
        }
        CheckTables();
        CheckHelp();
        CheckSubstitutions();
        CheckParents();
    }

private:
    template <typename Named>
    void CheckNames(const std::vector<Named>& items, const std::string& kind) {
        std::unordered_map<std::wstring_view, const Named*> first;
        for (const Named& item : items) {
            const auto [found, is_new] = first.emplace(item.name, &item);
            if (!is_new) {
                reporter_.Error(item.place, {kind + " is defined twice", Quoted(item.name),
                                             "a name other than at " + AtPlace(definition_, found->second->place), ""});
            }
        }
    }

    template <typename Item>
    void CheckCount(const std::vector<Item>& items, std::int32_t most, const std::string& kind) {
        const auto limit = static_cast<std::size_t>(most);
        if (items.size() > limit) {
            reporter_.Error(items[limit].place,
                            {"too many " + kind, std::to_string(items.size()), "at most " + std::to_string(most), ""});
        }
    }

    void CheckFormat(FormatDefinition& format) {
        if (format.fields.empty()) {
            reporter_.Error(format.place, {"format without fields", Quoted(format.name), "at least one field", ""});
        }
        CheckNames(format.fields, "field");
        FindKey(format);
        for (std::size_t i = 0; i < format.fields.size(); ++i) {
            FieldDefinition& field = format.fields[i];
            if (!field.has_default) {
                field.default_value = ImpliedDefault(field, static_cast<std::int32_t>(i) == format.key);
            }
            CheckDefault(field, reporter_);
            CheckFieldName(field);
        }
    }

    void CheckFieldName(const FieldDefinition& field) {
        const std::size_t awkward = field.name.find_first_of(kAwkwardInFieldNames);
        if (awkward != std::wstring::npos) {
            reporter_.Warning(field.place,
                              {"field cannot be named everywhere", Quoted(field.name), "a name without : { } ~", ""});
        }
    }

    void FindKey(FormatDefinition& format) {
        if (format.key_name.empty()) {
            reporter_.Warning(format.place, {"format " + Quoted(format.name) + " has no key", "no key line",
                                             "key and the name of a field", ""});
            return;
        }
        Suggestion suggestion(reporter_.IsFull() ? std::wstring() : format.key_name);
        for (std::size_t i = 0; i < format.fields.size() && format.key < 0; ++i) {
            suggestion.Offer(format.fields[i].name);
            format.key = format.fields[i].name == format.key_name ? static_cast<std::int32_t>(i) : -1;
        }
        if (format.key < 0) {
            reporter_.Error(format.key_place, {"key is no field of format " + Quoted(format.name),
                                               Quoted(format.key_name), "the name of a field", suggestion.Best()});
        }
    }

    void CheckTables() {
        CheckCount(definition_.tables, kMaxStringTables - static_cast<std::int32_t>(kReservedTables.size()), "tables");
        for (const StringTableDefinition& table : definition_.tables) {
            if (std::find(kReservedTables.begin(), kReservedTables.end(), table.name) != kReservedTables.end()) {
                reporter_.Error(table.place, {"reserved name of a table", Quoted(table.name), "another name", ""});
            }
            if (table.entries.size() > static_cast<std::size_t>(kMaxStringTableEntries)) {
                reporter_.Error(table.place, {"too many entries in table " + Quoted(table.name),
                                              std::to_string(table.entries.size()),
                                              "at most " + std::to_string(kMaxStringTableEntries), ""});
            }
        }
    }

    void CheckHelp() {
        std::unordered_set<std::int32_t> numbers;
        for (const HelpDefinition& help : definition_.help) {
            if (!numbers.insert(help.id).second) {
                reporter_.Warning(help.place, {"help text is defined twice, the first one counts",
                                               std::to_string(help.id), "a new number", ""});
            }
        }
    }

    void CheckSubstitutions() {
        for (const SubstitutionDefinition& substitution : definition_.substitutions) {
            if (substitution.from.empty()) {
                reporter_.Error(substitution.place, {"empty text to replace", "'\"\"'", "a text", ""});
            }
        }
    }

    void CheckParents() {
        const SchemaIndex index(definition_);
        const std::vector<std::int32_t> parents = FindParents(definition_, index);
        for (std::size_t f = 0; f < definition_.formats.size(); ++f) {
            if (!definition_.formats[f].associated_table.empty()) {
                CheckParent(definition_.formats[f], parents[f]);
            }
        }
    }

    void CheckParent(const FormatDefinition& format, std::int32_t parent) {
        if (parent < 0) {
            ReportNoParent(format);
            return;
        }
        const FormatDefinition& root = definition_.formats[static_cast<std::size_t>(parent)];
        if (root.name == format.name) {
            reporter_.Error(format.associated_place, {"format is associated with itself", Quoted(format.name),
                                                      "the name of another format", ""});
        } else if (!root.associated_table.empty()) {
            reporter_.Warning(format.associated_place, {"associated table is no root format", Quoted(root.name),
                                                        "a format without an associated table", ""});
        }
        if (!root.extension && format.extension) {
            reporter_.Error(format.extension_place,
                            {"extension on a child of " + Quoted(root.name) + ", which has none",
                             Quoted(*format.extension), "no extension line", ""});
        }
    }

    void ReportNoParent(const FormatDefinition& format) {
        if (IsParentByClassification(format)) {
            const Arguments arguments = ReadArguments(Shape::BracketText, ArgumentsOf(format.associated_table));
            if (arguments.problem) {
                reporter_.Error(format.associated_place,
                                {"wrong arguments of BY CLASSIFICATION", Quoted(format.associated_table),
                                 "BY CLASSIFICATION(text)", ""});
            }
            return;
        }
        Suggestion suggestion(reporter_.IsFull() ? std::wstring() : format.associated_table);
        for (const FormatDefinition& other : definition_.formats) {
            suggestion.Offer(other.name);
        }
        reporter_.Error(format.associated_place, {"unknown associated table", Quoted(format.associated_table),
                                                  "the name of a format", suggestion.Best()});
    }

    Definition& definition_;
    Reporter& reporter_;
};

} // namespace

void CheckDefinition(Definition& definition, Reporter& reporter) {
    DefinitionCheck(definition, reporter).Run();
}

} // namespace Kestrona::Host::Language
