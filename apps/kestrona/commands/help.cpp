#include "commands/help.h"

#include <CLI/CLI.hpp>

#include <string>
#include <string_view>
#include <utility>

namespace Kestrona::Tool {
namespace {

constexpr const char* kFooter = R"(Exit codes:
  0  good
  1  findings: errors in a definition, rejected rows, differences
  2  the command line is wrong
  3  input cannot be read or is of another kind, or output cannot be written
  4  input is damaged
  5  the key of encrypted fields is wrong or missing

'kestrona COMMAND --help' shows the options of a command, with examples.
'kestrona explain CODE' tells about the code of a message.)";

/// Of each command, in the order in which they can be tried.
constexpr std::pair<std::string_view, std::string_view> kExamples[] = {
    {"check", R"(check plant.ksdef)"},
    {"check", R"(check plant.ksdef --strict)"},
    {"check", R"(check plant.ksdef -o json)"},
    {"schema", R"(schema plant.ksdef)"},
    {"schema", R"(schema plant.ksdef Orders -o csv)"},
    {"schema", R"(schema plant.ksdef Orders Product)"},
    {"graph", R"(graph plant.ksdef -f plant.svg)"},
    {"graph", R"(graph plant.ksdef --dot)"},
    {"docs", R"(docs plant.ksdef -f plant.md)"},
    {"docs", R"(docs plant.ksdef)"},
    {"translate extract", R"(translate extract plant.ksdef -o lists)"},
    {"translate extract", R"(translate extract plant.ksdef)"},
    {"translate apply", R"(translate apply plant.ksdef german.lst)"},
    {"translate apply", R"(translate apply plant.ksdef german.lst -o csv)"},
    {"show", R"(show plant.ksdef --data data Orders)"},
    {"show", R"(show plant.ksdef --data data Orders --where "Quantity>200" --order "Due date:desc" --limit 5)"},
    {"show", R"(show plant.ksdef --data data Operations --columns "Number,Order.Product.Colour" -o csv)"},
    {"eval", R"(eval plant.ksdef --data data Orders "{#Quantity} * 2")"},
    {"eval", R"(eval plant.ksdef --data data Orders --text "Order {#Number}" --limit 3)"},
    {"eval", R"(eval plant.ksdef --data data Orders -o json -- "-{#Quantity}")"},
    {"track", R"(track plant.ksdef Operations Products.Colour)"},
    {"track", R"(track plant.ksdef --data data Operations Products.Colour --limit 5)"},
    {"compile", R"(compile plant.ksdef -o plant.cnf)"},
    {"compile", R"(compile plant.ksdef -o plant.cnf --color never)"},
    {"import", R"(import plant.ksdef --data data -o plant.kes --keep-going)"},
    {"import", R"(import plant.ksdef --data data --encoding windows-1252 -o plant.kes)"},
    {"import", R"(import plant.ksdef --data data --dataset tuesday=edited -o plant.kes --compress)"},
    {"info", R"(info plant.kes)"},
    {"info", R"(info plant.kes --tables -o csv)"},
    {"info", R"(info plant.cnf -o json)"},
    {"export", R"(export plant.kes -f csv -o folder)"},
    {"export", R"(export plant.kes -f json -o - --table Orders)"},
    {"export", R"(export plant.ksdef --data data -f json -o plant.json)"},
    {"diff", R"(diff old.kes new.kes)"},
    {"diff", R"(diff old.kes new.kes --summary)"},
    {"diff", R"(diff plant.ksdef plant.ksdef --data-old data --data-new edited -o json)"},
    {"compress", R"(compress notes.txt notes.z)"},
    {"compress", R"(compress plant.cnf plant.cnf.z)"},
    {"decompress", R"(decompress notes.z notes.txt)"},
    {"decompress", R"(decompress plant.cnf.z plant.cnf)"},
    {"protect-key", R"(protect-key -o plant.key --force)"},
    {"protect-key", R"(protect-key)"},
    {"encrypt", R"(encrypt --key-file plant.key < texts.txt)"},
    {"encrypt", R"(encrypt --key-file plant.key "a text")"},
    {"decrypt", R"(decrypt --key-file plant.key < encrypted.txt)"},
    {"decrypt", R"(decrypt --key-file plant.key < encrypted.txt > texts.txt)"},
    {"audit show", R"(audit show Audit.log)"},
    {"audit show", R"(audit show Audit.log -o csv)"},
    {"explain", R"(explain KES-0104)"},
    {"explain", R"(explain unused-field)"},
    {"completion", R"(completion bash)"},
    {"completion", R"(completion zsh -f _kestrona)"},
    {"completion", R"(completion fish -f kestrona.fish)"},
    {"man", R"(man)"},
    {"man", R"(man -f kestrona.1)"},
};

std::string Examples(std::string_view path) {
    std::string text;
    for (const auto& [command, example] : kExamples) {
        if (command == path) {
            text.append(text.empty() ? "Examples:" : "").append("\n  kestrona ").append(example);
        }
    }
    return text;
}

void AddExamples(CLI::App& command, const std::string& path) {
    command.footer(Examples(path));
    for (CLI::App* const inner : command.get_subcommands({})) {
        AddExamples(*inner, path + ' ' + inner->get_name());
    }
}

} // namespace

void AddHelp(CLI::App& app) {
    for (CLI::App* const command : app.get_subcommands({})) {
        AddExamples(*command, command->get_name());
    }
    app.footer(kFooter);
}

} // namespace Kestrona::Tool
