#pragma once

#include <string>
#include <string_view>

// Texts for people: names and messages come from files, so what they hold must neither steer a terminal nor look like
// lines of our own.

namespace Kestrona::Host {

// UTF-8 in one line: control characters become "\n", "\r" or "\x1b". Tabs stay.
[[nodiscard]] std::string PrintableLine(std::wstring_view text);

// UTF-8 with the text's own line ends, each followed by `indent`. Line ends at the text's end are dropped; other
// control characters are treated as in `PrintableLine`.
[[nodiscard]] std::string PrintableLines(std::wstring_view text, std::string_view indent);

} // namespace Kestrona::Host
