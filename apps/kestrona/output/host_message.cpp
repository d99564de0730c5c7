#include "output/host_message.h"

#include "output/message.h"

#include <kestrona/host/message_catalogue.h>
#include <kestrona/host/snapshot.h>
#include <kestrona/unicode.h>

#include <regex>
#include <utility>
#include <vector>

namespace Kestrona::Tool {
namespace {

using Host::FileFault;

constexpr std::string_view kParseError = "Parse Error!: ";
constexpr std::string_view kIndentedLine = "\n    ";

/// Sentences without a number.
constexpr std::pair<std::string_view, Code> kSentences[] = {
    {" cannot be read: it is damaged, or no configuration.", Code::Damaged},
    {" Configuration file is corrupt!", Code::Damaged},
    {" cannot be opened", Code::CannotOpen},
    {" cannot be read", Code::CannotRead},
    {" cannot be written", Code::CannotWrite},
    {" is another kind of file", Code::WrongKind},
    {" has a version that is not read", Code::WrongVersion},
    {" ends too early", Code::Truncated},
    {" is damaged", Code::Damaged},
    {" would get too large", Code::TooLarge},
};

std::string Replaced(std::string text, std::string_view from, std::string_view to) {
    for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
        text.replace(at, from.size(), to);
    }
    return text;
}

const std::regex& Placeholder() {
    static const std::regex placeholder("%s|%[0-9]+%");
    return placeholder;
}

/// A message as what stands between its placeholders.
struct Pattern {
    const MessageEntry* entry = nullptr;
    std::vector<std::string> pieces;
    std::size_t letters = 0;

    [[nodiscard]] bool Fits(std::string_view text) const {
        std::size_t place = 0;
        for (const std::string& piece : pieces) {
            place = text.find(piece, place);
            if (place == std::string_view::npos) {
                return false;
            }
            place += piece.size();
        }
        return true;
    }
};

std::vector<Pattern> MakePatterns() {
    std::vector<Pattern> patterns;
    for (const MessageEntry& entry : MessageEntries()) {
        std::string text = ToUtf8(Host::MessageText(entry.number));
        text.erase(text.find_last_not_of('\n') + 1);
        Pattern pattern{&entry, {std::sregex_token_iterator(text.begin(), text.end(), Placeholder(), -1), {}}};
        for (const std::string& piece : pattern.pieces) {
            pattern.letters += piece.size();
        }
        patterns.push_back(std::move(pattern));
    }
    return patterns;
}

/// Messages quote each other; the one with the most words of its own is meant.
const MessageEntry* FindEntry(std::string_view text) {
    static const std::vector<Pattern> patterns = MakePatterns();
    const Pattern* best = nullptr;
    for (const Pattern& pattern : patterns) {
        if ((best == nullptr || pattern.letters > best->letters) && pattern.Fits(text)) {
            best = &pattern;
        }
    }
    return best == nullptr ? nullptr : best->entry;
}

MessageCode Named(Code code) {
    return {CodeName(code), EntryOf(code).hint};
}

} // namespace

MessageCode CodeOfMessage(std::string_view text) {
    if (text.starts_with(kParseError)) {
        return Named(Code::BadExpression);
    }
    if (const MessageEntry* const entry = FindEntry(text)) {
        return {CodeName(entry->number), entry->hint};
    }
    for (const auto& [sentence, code] : kSentences) {
        if (text.find(sentence) != std::string_view::npos) {
            return Named(code);
        }
    }
    return Named(Code::BadDefinition);
}

void TellHostLines(std::string_view lines) {
    for (const std::string_view head : {"kestrona: error: ", "kestrona: warning: "}) {
        if (lines.starts_with(head)) {
            std::string_view what = lines.substr(head.size());
            what = what.substr(0, what.find_last_not_of('\n') + 1);
            const MessageCode code = CodeOfMessage(Replaced(std::string(what), kIndentedLine, "\n"));
            TellCoded(head, what, code.name, code.hint);
            return;
        }
    }
    TellLines(lines);
}

std::string MessageTitle(std::int32_t number) {
    std::string text = ToUtf8(Host::MessageText(number));
    text.erase(text.find_last_not_of("\n ") + 1);
    text = Replaced(std::regex_replace(text, Placeholder(), "..."), "\n", " ");
    return text + (text.ends_with(',') || text.ends_with("'") ? " ..." : "");
}

} // namespace Kestrona::Tool
