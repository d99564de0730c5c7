#include "fuzz.h"
#include "platform/base64.h"

#include <kestrona/encryption.h>
#include <kestrona/unicode.h>

#include <sys/stat.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>

// Any text read as an encrypted and as a protected one: a plain text or one of the told failures. The text itself comes
// back from both. What decodes from base64 encodes to a text that decodes to the same bytes.

namespace {

using namespace Kestrona;
using namespace Kestrona::Fuzz;
using namespace Kestrona::Encryption;

// The key of the user is a fixed one, so that a corpus may hold protected texts. It is read once and kept, so its
// folder goes again.
EncryptionService& Service() {
    static EncryptionService& service = []() -> EncryptionService& {
        std::string folder = (std::filesystem::temp_directory_path() / "kestrona-fuzz-XXXXXX").string();
        Require(mkdtemp(folder.data()) != nullptr);
        const std::filesystem::path key = std::filesystem::path(folder) / "kestrona" / "user.key";
        std::filesystem::create_directories(key.parent_path());
        std::ofstream(key, std::ios::binary) << std::string(32, 'k');
        Require(chmod(key.c_str(), 0600) == 0);
        setenv("XDG_DATA_HOME", folder.c_str(), 1);
        EncryptionService& made = *EncryptionService::Instance();
        made.Initialise(DataProtection().Protect(L"phrase"), true);
        std::filesystem::remove_all(folder);
        return made;
    }();
    return service;
}

void CheckDecrypt(const std::wstring& text) {
    try {
        const std::wstring plain = Service().Decrypt(text);
        Require(text.empty() ? plain.empty() : Utf16Length(plain) % 8 == 0);
    } catch (const EncryptionException&) {
    }
}

void CheckUnprotect(const std::wstring& text) {
    try {
        const std::wstring plain = DataProtection().Unprotect(text);
        Require(DataProtection().Unprotect(DataProtection().Protect(plain)) == plain);
    } catch (const DataProtectionException&) {
    }
}

void CheckRoundTrip(const std::wstring& text) {
    const std::wstring plain = Service().Decrypt(Service().Encrypt(text));
    Require(plain.starts_with(text));
    Require(std::all_of(plain.begin() + static_cast<std::ptrdiff_t>(text.size()), plain.end(),
                        [](wchar_t c) { return c == L'\0'; }));
    Require(DataProtection().Unprotect(DataProtection().Protect(text)) == text);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::wstring text = TextOf(data, size);
    if (const auto bytes = Platform::DecodeBase64(text)) {
        Require(Platform::DecodeBase64(Platform::EncodeBase64(*bytes)) == bytes);
    }
    CheckRoundTrip(text); // which also makes the key
    CheckDecrypt(text);
    CheckUnprotect(text);
    return 0;
}
