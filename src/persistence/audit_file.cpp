#include "persistence/audit_file.h"

#include "platform/files.h"

#include <kestrona/unicode.h>

#include <cstdio>
#include <string>

namespace Kestrona::Persistence {

namespace {

constexpr const wchar_t* kName = L"Audit.log";
constexpr wchar_t kByteOrderMark = 0xFEFF;

Platform::FileHandle& OpenedFile() {
    static Platform::FileHandle file;
    return file;
}

// In UTF-16, low byte first.
void Write(std::FILE* file, std::wstring_view text) {
    std::string bytes;
    for (const char16_t unit : ToUtf16(text)) {
        bytes += static_cast<char>(unit & 0xFF);
        bytes += static_cast<char>(unit >> 8);
    }
    std::fwrite(bytes.data(), 1, bytes.size(), file);
}

// An empty file gets a byte order mark.
void Open(Platform::FileHandle& file) {
    file.reset(Platform::OpenFile(kName, "ab"));
    if (file != nullptr && std::fseek(file.get(), 0, SEEK_END) == 0 && std::ftell(file.get()) == 0) {
        Write(file.get(), std::wstring_view(&kByteOrderMark, 1));
    }
}

} // namespace

void AppendToAuditFile(std::wstring_view text) {
    Platform::FileHandle& file = OpenedFile();
    if (file == nullptr) {
        Open(file);
    }
    if (file != nullptr) {
        Write(file.get(), text);
    }
}

void CloseAuditFile() {
    OpenedFile().reset();
}

} // namespace Kestrona::Persistence
