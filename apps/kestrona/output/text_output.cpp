#include "output/text_output.h"

#include "exit_codes.h"
#include "output/message.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace Kestrona::Tool {
namespace {

bool Write(std::string_view text, std::FILE* out) {
    return std::fwrite(text.data(), 1, text.size(), out) == text.size() && std::fflush(out) == 0;
}

bool WriteFile(std::string_view text, const std::string& path) {
    std::FILE* const out = std::fopen(path.c_str(), "wb");
    if (out == nullptr) {
        return false;
    }
    const bool written = Write(text, out);
    return std::fclose(out) == 0 && written;
}

} // namespace

int WriteText(std::string_view text, const std::string& path) {
    const bool to_stdout = path.empty() || path == "-";
    if (to_stdout) {
        return OutputCode(Write(text, stdout));
    }
    if (WriteFile(text, path)) {
        return kExitGood;
    }
    TellError(Code::CannotWrite, "'{}' cannot be written: {}", path, std::strerror(errno));
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
