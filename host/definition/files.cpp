#include "definition/files.h"

#include "definition/lexer.h"
#include "definition/statements.h"

#include <kestrona/unicode.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

namespace Kestrona::Host {

std::optional<std::string> ReadDefinitionFile(const std::string& path) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error)) {
        return std::nullopt;
    }
    std::ifstream file(path, std::ios::binary);
    std::string bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    return file.is_open() && !file.bad() ? std::optional(std::move(bytes)) : std::nullopt;
}

} // namespace Kestrona::Host

namespace Kestrona::Host::Language {

namespace {

constexpr std::string_view kByteOrderMark = "\xef\xbb\xbf";

std::string HexByte(char c) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    const auto byte = static_cast<unsigned char>(c);
    return std::string("byte 0x") + kDigits[byte / 16] + kDigits[byte % 16];
}

// One spelling for each path, so that a file that includes itself is known again.
std::string Normalized(const std::filesystem::path& path) {
    return path.lexically_normal().generic_string();
}

std::string PathOf(const std::string& including, std::wstring_view name) {
    return Normalized(std::filesystem::path(including).parent_path() / ToUtf8(name));
}

// The end of the line that begins at `start`, its line feed included.
std::size_t LineEnd(std::string_view bytes, std::size_t start) {
    const std::size_t end = bytes.find('\n', start);
    return end == std::string_view::npos ? bytes.size() : end + 1;
}

void ReportBytes(std::string_view line, std::size_t bad, const Place& start, Reporter& reporter) {
    const auto column = static_cast<std::int32_t>(FromUtf8(line.substr(0, bad)).size());
    reporter.Error({start.file, start.line, start.column + column}, {"no UTF-8", HexByte(line[bad]), "UTF-8 text", ""});
}

bool IsOpen(const ParseContext& context, const std::string& path) {
    return std::find(context.open_files.begin(), context.open_files.end(), path) != context.open_files.end();
}

// Whether there is room for one more file. If not, it has been reported.
bool MayInclude(ParseContext& context, const std::string& path, std::wstring_view name, const Place& place) {
    const auto refuse = [&](const std::string& what, const std::string& expected) {
        context.reporter.Error(place, {what, Quoted(name), expected, ""});
        return false;
    };
    if (IsOpen(context, path)) {
        return refuse("include leads back to itself", "a file that does not include this one");
    }
    if (context.open_files.size() >= kDeepestInclude) {
        return refuse("include too deep", "at most " + std::to_string(kDeepestInclude) + " files inside each other");
    }
    if (context.definition.files.size() >= kMostFiles) {
        return refuse("too many files", "at most " + std::to_string(kMostFiles));
    }
    return true;
}

} // namespace

std::wstring DecodeText(std::string_view bytes, std::int32_t file, Reporter& reporter) {
    if (bytes.starts_with(kByteOrderMark)) {
        bytes.remove_prefix(kByteOrderMark.size());
    }
    if (!IsValidUtf8(bytes)) {
        std::int32_t number = 1;
        for (std::size_t start = 0; start < bytes.size() && !reporter.IsFull(); ++number) {
            const std::string_view line = bytes.substr(start, LineEnd(bytes, start) - start);
            std::size_t bad = 0;
            if (!IsValidUtf8(line, &bad)) {
                ReportBytes(line, bad, {file, number, 1}, reporter);
            }
            start += line.size();
        }
    }
    return FromUtf8(bytes);
}

void ParseFile(ParseContext& context, std::string_view bytes, const std::string& path) {
    const auto file = static_cast<std::int32_t>(context.definition.files.size());
    context.definition.files.push_back(path);
    context.open_files.push_back(Normalized(path));
    context.read_files.insert(context.open_files.back());
    const std::wstring text = DecodeText(bytes, file, context.reporter);
    Lexer lexer(text, file, context.reporter);
    ParseStatements(context, lexer);
    context.open_files.pop_back();
}

void ParseInclude(ParseContext& context, std::wstring_view name, const Place& place) {
    const std::string path = PathOf(context.open_files.back(), name);
    const bool is_known = !IsOpen(context, path) && context.read_files.contains(path);
    if (is_known || !MayInclude(context, path, name, place)) {
        return;
    }
    const auto bytes = context.reader ? context.reader(path) : std::nullopt;
    if (!bytes) {
        context.unreadable = true;
        context.reporter.Error(place, {"include cannot be read", Quoted(name), "a file that can be read", ""});
        return;
    }
    ParseFile(context, *bytes, path);
}

} // namespace Kestrona::Host::Language
