#include "fuzz.h"
#include "platform/base64.h"
#include "platform/user_key.h"

#include <kestrona/encryption.h>
#include <kestrona/unicode.h>

#include <cstdlib>
#include <filesystem>
#include <optional>

// Any text read as an encrypted and as a protected one: a plain text or one of the told failures. What decodes from
// base64 encodes to a text that decodes to the same bytes.

namespace {

using namespace Kestrona;
using namespace Kestrona::Fuzz;
using namespace Kestrona::Encryption;

EncryptionService& Service() {
    static EncryptionService& service = [&]() -> EncryptionService& {
        const auto folder = std::filesystem::temp_directory_path() / "kestrona-fuzz-key";
        setenv("XDG_DATA_HOME", folder.c_str(), 1);
        EncryptionService& made = *EncryptionService::Instance();
        made.Initialise(DataProtection().Protect(L"phrase"), true);
        return made;
    }();
    return service;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::wstring text = TextOf(data, size);
    const auto bytes = Platform::DecodeBase64(text);
    if (bytes) {
        Require(Platform::DecodeBase64(Platform::EncodeBase64(*bytes)) == bytes);
    }
    try {
        const std::wstring plain = Service().Decrypt(text);
        Require(text.empty() ? plain.empty() : Utf16Length(plain) % 8 == 0);
    } catch (const EncryptionException&) {
    }
    try {
        (void)DataProtection().Unprotect(text);
    } catch (const DataProtectionException&) {
    }
    return 0;
}
