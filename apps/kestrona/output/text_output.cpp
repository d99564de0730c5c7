#include "output/text_output.h"

#include "exit_codes.h"
#include "output/message.h"

#include <kestrona/safe_file.h>
#include <kestrona/unicode.h>

#include <cstdio>
#include <filesystem>
#include <system_error>

namespace Kestrona::Tool {
namespace {

bool Write(std::string_view text, std::FILE* out) {
    return std::fwrite(text.data(), 1, text.size(), out) == text.size() && std::fflush(out) == 0;
}

bool WriteThrough(std::string_view text, const std::string& path) {
    std::FILE* const out = std::fopen(path.c_str(), "wb");
    if (out == nullptr) {
        return false;
    }
    const bool written = Write(text, out);
    return std::fclose(out) == 0 && written;
}

// A file is replaced when the new one is whole; a pipe or a device takes the text as it comes.
bool WriteFile(std::string_view text, const std::string& path) {
    std::error_code failure;
    const auto kind = std::filesystem::status(path, failure).type();
    if (kind != std::filesystem::file_type::regular && kind != std::filesystem::file_type::not_found) {
        return WriteThrough(text, path);
    }
    SafeFile file(FromUtf8(path));
    return file.IsOpen() && Write(text, file.File()) && file.Commit();
}

} // namespace

int WriteText(std::string_view text, const std::string& path) {
    const bool to_stdout = path.empty() || path == "-";
    if (to_stdout ? Write(text, stdout) : WriteFile(text, path)) {
        return kExitGood;
    }
    if (!to_stdout) { // a closed pipe is no news to its reader
        TellError("'{}' cannot be written", path);
    }
    return kExitUnreadableInput;
}

} // namespace Kestrona::Tool
