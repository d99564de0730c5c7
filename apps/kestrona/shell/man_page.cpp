#include "shell/man_page.h"

#include <kestrona/version.h>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <string_view>

namespace Kestrona::Tool {
namespace {

/// A text as troff prints it letter for letter.
std::string Escaped(std::string_view text) {
    std::string escaped;
    bool begins_line = true;
    for (const char c : text) {
        if (begins_line && (c == '.' || c == '\'')) {
            escaped += "\\&";
        }
        switch (c) {
        case '\\':
            escaped += "\\e";
            break;
        case '-':
            escaped += "\\-";
            break;
        case '\'':
            escaped += "\\(aq";
            break;
        default:
            escaped += c;
        }
        begins_line = c == '\n';
    }
    return escaped;
}

std::string Bold(std::string_view text) {
    return "\\fB" + Escaped(text) + "\\fR";
}

std::string Italic(std::string_view text) {
    return text.empty() ? "" : "\\fI" + Escaped(text) + "\\fR";
}

std::string Entry(const CommandArgument& argument) {
    std::string head;
    for (const std::string& name : argument.names) {
        head += (head.empty() ? "" : ", ") + Bold(name);
    }
    head += (head.empty() || argument.word.empty() ? "" : " ") + Italic(argument.word);
    return fmt::format(".TP\n{}\n{}.\n", head, Escaped(argument.help));
}

std::string Synopsis(const CommandNode& node, const std::string& path) {
    std::string text = ".PP\n" + Bold("kestrona" + path) + " [\\fIoptions\\fR]";
    for (const CommandArgument& argument : node.arguments) {
        const std::string word = Italic(argument.word) + (argument.repeats ? "..." : "");
        text += argument.required ? ' ' + word : " [" + word + ']';
    }
    return text + '\n';
}

std::string CommandSection(const CommandNode& node, const std::string& path) {
    std::string text;
    if (node.commands.empty()) {
        text = fmt::format(".SS \"{}\"\n{}.\n", Escaped(path.substr(1)), Escaped(node.help)) + Synopsis(node, path);
        for (const auto* arguments : {&node.arguments, &node.options}) {
            for (const CommandArgument& argument : *arguments) {
                text += Entry(argument);
            }
        }
        text += node.footer.empty() ? "" : ".PP\n.nf\n" + Escaped(node.footer) + "\n.fi\n";
    }
    for (const CommandNode& command : node.commands) {
        text += CommandSection(command, path + ' ' + command.name);
    }
    return text;
}

constexpr std::string_view kFrame = R"(.TH KESTRONA 1 "" "kestrona {0}" "User Commands"
.SH NAME
kestrona \- look at plant definitions and their data
.SH SYNOPSIS
.B kestrona
.I command
[\fIoptions\fR]
.SH DESCRIPTION
Checks, draws and documents definitions, and shows, selects, calculates, compares, imports and exports the data that
belongs to them. Data goes to standard output; counts, timings and complaints go to standard error.
.SH OPTIONS
{1}.SH COMMANDS
{2}.SH EXIT STATUS
.nf
{3}
.fi
.SH ENVIRONMENT
.TP
\fBLC_ALL\fR, \fBLC_TIME\fR, \fBLANG\fR
The locale of display texts.
.TP
\fBKESTRONA_KEY_FILE\fR, \fBKESTRONA_KEY\fR
A file with the key of encrypted fields, or a pass phrase.
.TP
\fBNO_COLOR\fR
No colours unless \fB\-\-color always\fR asks for them.
)";

} // namespace

std::string ManPage(const CommandNode& tool) {
    std::string options;
    for (const CommandArgument& option : tool.options) {
        options += Entry(option);
    }
    std::string commands;
    for (const CommandNode& command : tool.commands) {
        commands += command.hidden ? "" : CommandSection(command, ' ' + command.name);
    }
    return fmt::format(kFrame, KESTRONA_VERSION, options, commands, Escaped(tool.footer));
}

} // namespace Kestrona::Tool
