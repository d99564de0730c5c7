// Implements: DataProtection.
#include "persistence/data_protection.h"

#include "persistence/utf16_bytes.h"
#include "platform/base64.h"
#include "platform/cipher.h"
#include "platform/random.h"
#include "platform/user_key.h"

#include <kestrona/encryption.h>

#include <cerrno>
#include <cstring>

namespace Kestrona::Encryption {

namespace {

using namespace Platform;

// The form: this byte, the nonce, the ciphertext, the tag.
constexpr unsigned char kForm = 1;
constexpr std::size_t kHead = 1 + kGcmNonce;

[[noreturn]] void Fail(int error) {
    throw DataProtectionException(std::strerror(error));
}

SecretBytes KeyOfUser() {
    std::string error;
    std::optional<SecretBytes> key = UserKey(error);
    if (!key) {
        throw DataProtectionException(error);
    }
    return std::move(*key);
}

} // namespace

SecretBytes UnprotectedBytes(const std::wstring& text) {
    const std::optional<Bytes> block = DecodeBase64(text);
    if (!block || block->size() < kHead + kGcmTag || block->front() != kForm) {
        Fail(EINVAL);
    }
    const ByteView bytes(*block);
    std::optional<SecretBytes> plain = Open(KeyOfUser(), bytes.subspan(1, kGcmNonce), bytes.subspan(kHead));
    if (!plain) {
        Fail(EBADMSG);
    }
    return SecretBytes(plain->View().first(plain->Size() / 2 * 2));
}

std::wstring DataProtection::Protect(const std::wstring& text) const {
    Bytes block(kHead);
    block.front() = kForm;
    if (!RandomBytes(std::span(block).subspan(1))) {
        Fail(EIO);
    }
    // The form has a zero byte behind the text, which `UnprotectedBytes` drops.
    const SecretBytes plain = Utf16Bytes(text, 1);
    const std::optional<Bytes> sealed = Seal(KeyOfUser(), ByteView(block).subspan(1), plain.View());
    if (!sealed) {
        Fail(EIO);
    }
    block.insert(block.end(), sealed->begin(), sealed->end());
    return EncodeBase64(block);
}

std::wstring DataProtection::Unprotect(const std::wstring& text) const {
    return TextOfUtf16(UnprotectedBytes(text));
}

} // namespace Kestrona::Encryption
