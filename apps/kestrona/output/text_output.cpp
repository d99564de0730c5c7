#include "output/text_output.h"

#include "exit_codes.h"
#include "output/message.h"

#include <kestrona/safe_file.h>
#include <kestrona/unicode.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <system_error>

namespace Kestrona::Tool {
namespace {

bool Write(std::string_view text, std::FILE* out) {
    return std::fwrite(text.data(), 1, text.size(), out) == text.size() && std::fflush(out) == 0;
}

// The functions below give the reason of a failure, or nothing.

std::string WriteThrough(std::string_view text, const std::string& path) {
    std::FILE* const out = std::fopen(path.c_str(), "wb");
    if (out == nullptr) {
        return std::strerror(errno);
    }
    const bool written = Write(text, out);
    const int reason = errno;
    if (std::fclose(out) == 0 && written) {
        return {};
    }
    return std::strerror(written ? errno : reason);
}

// A file is replaced when the new one is whole; a pipe or a device takes the text as it comes.
std::string WriteFile(std::string_view text, const std::string& path) {
    std::error_code failure;
    const auto kind = std::filesystem::status(path, failure).type();
    if (kind != std::filesystem::file_type::regular && kind != std::filesystem::file_type::not_found) {
        return WriteThrough(text, path);
    }
    SafeFile file(FromUtf8(path));
    if (file.IsOpen()) {
        Write(text, file.File()); // a failed write makes the commit fail, which knows the reason
        if (file.Commit()) {
            return {};
        }
    }
    return ToUtf8(file.Error());
}

} // namespace

int WriteText(std::string_view text, const std::string& path) {
    const bool to_stdout = path.empty() || path == kStdout;
    if (to_stdout) {
        return OutputCode(Write(text, stdout));
    }
    const std::string reason = WriteFile(text, path);
    if (reason.empty()) {
        return kExitGood;
    }
    TellError(Code::CannotWrite, "'{}' cannot be written: {}", path, reason);
    return kExitUnreadableInput;
}

int OutputCode(bool written) {
    if (written) {
        return kExitGood;
    }
    if (errno != EPIPE) {
        TellError(Code::OutputFailed, "the output cannot be written");
    }
    return kExitUnreadableInput;
}

} // namespace Kestrona::Tool
