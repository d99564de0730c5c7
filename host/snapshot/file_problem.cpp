#include "snapshot/file_problem.h"

#include "printable.h"

#include <kestrona/unicode.h>

#include <filesystem>
#include <system_error>

namespace Kestrona::Host {

namespace {

const char* PhraseOf(FileFault fault) {
    switch (fault) {
    case FileFault::None:
        break;
    case FileFault::CannotOpen:
        return "cannot be opened";
    case FileFault::CannotRead:
        return "cannot be read";
    case FileFault::CannotWrite:
        return "cannot be written";
    case FileFault::WrongMarker:
        return "is another kind of file";
    case FileFault::WrongVersion:
        return "has a version that is not read";
    case FileFault::Truncated:
        return "ends too early";
    case FileFault::Damaged:
        return "is damaged";
    case FileFault::TooLarge:
        return "would get too large";
    }
    return "";
}

} // namespace

std::string FileProblem::ToString() const {
    if (fault == FileFault::None) {
        return {};
    }
    std::string line = "'" + path + "' " + PhraseOf(fault);
    if (offset) {
        line += " at offset " + std::to_string(*offset);
    }
    if (!expected.empty()) {
        line += ": found " + found + ", expected " + expected;
    } else if (!found.empty()) {
        line += ": " + found;
    }
    return PrintableLine(FromUtf8(line));
}

} // namespace Kestrona::Host

namespace Kestrona::Host::Snapshots {

FileProblem SystemProblem(FileFault fault, const std::string& path, int error) {
    return {fault, path, {}, error != 0 ? std::generic_category().message(error) : "", ""};
}

FileHandle OpenRegularFile(const std::string& path, FileProblem& problem) {
    std::error_code error;
    const auto kind = std::filesystem::status(path, error).type();
    if (!error && kind != std::filesystem::file_type::regular) {
        problem = {FileFault::CannotOpen, path, {}, "not a regular file", ""};
        return nullptr;
    }
    FileHandle file(std::fopen(path.c_str(), "rbe"));
    if (file == nullptr) {
        problem = SystemProblem(FileFault::CannotOpen, path);
    }
    return file;
}

std::string Bytes(std::int64_t count) {
    return std::to_string(count) + (count == 1 ? " byte" : " bytes");
}

std::string QuotedBytes(std::string_view bytes) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string text = "'";
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte >= ' ' && byte <= '~') {
            text += c;
        } else {
            text += {'\\', 'x', kDigits[byte / 16U], kDigits[byte % 16U]};
        }
    }
    return text + "'";
}

} // namespace Kestrona::Host::Snapshots
