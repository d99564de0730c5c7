#include "commands/explain_command.h"

#include "exit_codes.h"
#include "lint/rules.h"
#include "output/delimited_forms.h"
#include "output/error_codes.h"
#include "output/host_message.h"
#include "output/message.h"
#include "output/table_source.h"
#include "output/text_output.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>

namespace Kestrona::Tool {
namespace {

constexpr const char* kRefusal = "The data module cannot use the definition. The load stops at the first fault of this "
                                 "kind; 'kestrona check' shows its place.";
constexpr const char* kRefusalCause = "A slip of the pen, or a rule that docs/definition-language.md tells.";

constexpr const char* kPageHead = R"(# Error codes

Every error and warning of the tool ends its first line with a code in brackets; what to do about it stands below, behind
`hint:`. `kestrona explain CODE` prints what this page says of a code, and `kestrona explain --all` prints this page. A code
never changes its meaning.
)";

struct Explanation {
    std::string name;
    std::string title;
    std::string meaning;
    std::string cause; ///< Empty for none.
    std::string hint;
};

Explanation Explained(const CodeEntry& entry) {
    return {CodeName(entry.number), std::string(entry.title), std::string(entry.meaning), std::string(entry.cause),
            std::string(entry.hint)};
}

Explanation Explained(const MessageEntry& entry) {
    return {CodeName(entry.number), MessageTitle(entry.number), kRefusal, kRefusalCause, std::string(entry.hint)};
}

Explanation Explained(const Lint::Rule& rule) {
    return {std::string(rule.id),
            std::string(rule.title),
            fmt::format("Found by 'kestrona check', as {}; docs/lint-rules.md shows an example.",
                        Lint::SeverityName(rule.severity)),
            {},
            std::string(rule.hint)};
}

std::optional<Explanation> Find(const std::string& name) {
    for (const Lint::RuleCheck& each : Lint::AllRules()) {
        if (each.rule.id == name) {
            return Explained(each.rule);
        }
    }
    const std::optional<std::int32_t> number = CodeNumber(name);
    for (const CodeArea& area : CodeAreas()) {
        const auto found = std::ranges::find(area.entries, number, &CodeEntry::number);
        if (found != area.entries.end()) {
            return Explained(*found);
        }
    }
    const auto found = std::ranges::find(MessageEntries(), number, &MessageEntry::number);
    return found != MessageEntries().end() ? std::optional(Explained(*found)) : std::nullopt;
}

void Print(const Explanation& explanation) {
    fmt::print("{}: {}\n\nMeaning:     {}\n", explanation.name, explanation.title, explanation.meaning);
    if (!explanation.cause.empty()) {
        fmt::print("Usual cause: {}\n", explanation.cause);
    }
    fmt::print("What to do:  {}\n", explanation.hint);
}

void PrintArea(const CodeArea& area) {
    fmt::print("\n## {}\n", area.title);
    for (const CodeEntry& entry : area.entries) {
        fmt::print("\n### {}\n\n**{}** {}\n\n- Usual cause: {}\n- What to do: {}\n", CodeName(entry.number),
                   entry.title, entry.meaning, entry.cause, entry.hint);
    }
}

void PrintMessages() {
    fmt::print("\n## Messages of the data module\n\n{} {}\n\n", kRefusal, "The code is the number of the message.");
    ListSource table({{"Code"}, {"Message"}, {"What to do"}});
    for (const MessageEntry& entry : MessageEntries()) {
        table.AddRow({CodeName(entry.number), MessageTitle(entry.number), std::string(entry.hint)});
    }
    WriteMarkdown(table, stdout);
}

void PrintRules() {
    fmt::print("\n## Rules of check\n\nThe findings of `kestrona check` carry the name of a rule as their code; "
               "[lint-rules.md](lint-rules.md) shows examples. A load tells what `syntax` and `doubtful` stand for in "
               "the same form.\n\n");
    ListSource table({{"Rule"}, {"Severity"}, {"Finding"}, {"What to do"}});
    for (const Lint::RuleCheck& each : Lint::AllRules()) {
        const Lint::Rule& rule = each.rule;
        table.AddRow({std::string(rule.id), std::string(Lint::SeverityName(rule.severity)), std::string(rule.title),
                      std::string(rule.hint)});
    }
    WriteMarkdown(table, stdout);
}

void PrintAll() {
    fmt::print("{}", kPageHead);
    for (const CodeArea& area : CodeAreas()) {
        PrintArea(area);
    }
    PrintMessages();
    PrintRules();
}

int RunExplain(const std::string& name, bool all) {
    const std::optional<Explanation> explanation = all ? std::nullopt : Find(name);
    if (!all && name.empty()) {
        TellError(Code::MissingArgument, Hint{"See 'kestrona explain --help'."}, "CODE or --all is required");
        return kExitUsage;
    }
    if (!all && !explanation) {
        TellError(Code::UnknownCode, "there is no code '{}'", name);
        return kExitUsage;
    }
    if (all) {
        PrintAll();
    } else {
        Print(*explanation);
    }
    return OutputCode(std::fflush(stdout) == 0 && std::ferror(stdout) == 0);
}

} // namespace

void AddExplainCommand(CLI::App& app, int& code) {
    struct Options {
        std::string name;
        bool all = false;
    };

    const auto options = std::make_shared<Options>();
    CLI::App* const command =
        app.add_subcommand("explain", "Tell what the code of an error, a warning or a finding means");
    CLI::Option* const name =
        command->add_option("CODE", options->name, "The code as it stands in brackets behind the message");
    command->add_flag("--all", options->all, "Write a page with all codes (Markdown)")->excludes(name);
    command->callback([options, &code] { code = RunExplain(options->name, options->all); });
}

} // namespace Kestrona::Tool
