// Implements: EncryptionService.
#include "persistence/data_protection.h"
#include "persistence/utf16_bytes.h"
#include "platform/base64.h"
#include "platform/cipher.h"
#include "platform/random.h"

#include <kestrona/encryption.h>

#include <algorithm>
#include <string>

namespace Kestrona::Encryption {

namespace {

using namespace Platform;

// The form: salt, vector, ciphertext.
constexpr std::size_t kSalt = 16;
constexpr std::size_t kHead = kSalt + kAesBlock;
constexpr int kRounds = 100;

// Some of these texts are misspelt; hosts know them so.
constexpr const char* kNoRandomBytes = "Unabled to generate intialization vector";
constexpr const char* kNoKey = "BCryptDeriveKeyPBKDF2 failed with error ";
constexpr const char* kNotEncrypted = "Encryption failed with status code ";
constexpr const char* kNotDecrypted = "Decryption failed with status code ";
constexpr const char* kTooShort = "Not enough data to decrypt text";
constexpr const char* kNoBlocks = "Invalid data supplied to decryption method";

[[noreturn]] void Fail(const char* text, CipherStatus status) {
    throw EncryptionException(text + std::to_string(status));
}

// The password is the text of the pass phrase and its closing zero unit.
SecretBytes KeyFor(const std::wstring& protected_key, ByteView salt) {
    const SecretBytes phrase = UnprotectedBytes(protected_key);
    SecretBytes password(phrase.Size() + 2);
    std::copy_n(phrase.Data(), phrase.Size(), password.Data());
    CipherStatus status = 0;
    std::optional<SecretBytes> key = DeriveKey(password.View(), salt, kRounds, status);
    if (!key) {
        Fail(kNoKey, status);
    }
    return std::move(*key);
}

} // namespace

EncryptionService* EncryptionService::Instance() {
    static EncryptionService service;
    return &service;
}

void EncryptionService::Initialise(const std::wstring& protected_key, bool fully_enabled) {
    protected_key_ = protected_key;
    fully_enabled_ = fully_enabled;
}

void EncryptionService::Initialise() {
    Initialise({}, false);
}

const std::wstring EncryptionService::Encrypt(const std::wstring& text) const {
    Bytes block(kHead);
    if (!RandomBytes(block)) {
        throw EncryptionException(kNoRandomBytes);
    }
    const SecretBytes key = KeyFor(protected_key_, ByteView(block).first(kSalt));
    const std::size_t bytes = Utf16Length(text) * 2;
    const SecretBytes plain = Utf16Bytes(text, kAesBlock - bytes % kAesBlock);
    CipherStatus status = 0;
    const std::optional<Bytes> cipher =
        EncryptCbc(key, ByteView(block).subspan(kSalt, kAesBlock), plain.View(), status);
    if (!cipher) {
        Fail(kNotEncrypted, status);
    }
    block.insert(block.end(), cipher->begin(), cipher->end());
    return EncodeBase64(block);
}

const std::wstring EncryptionService::Decrypt(const std::wstring& text) const {
    if (text.empty()) {
        return {};
    }
    const Bytes block = DecodeBase64(text).value_or(Bytes());
    if (block.size() < kSalt) {
        throw EncryptionException(kTooShort);
    }
    const ByteView bytes(block);
    const SecretBytes key = KeyFor(protected_key_, bytes.first(kSalt));
    if (block.size() < kHead || (block.size() - kHead) % kAesBlock != 0) {
        throw EncryptionException(kNoBlocks);
    }
    CipherStatus status = 0;
    const std::optional<SecretBytes> plain =
        DecryptCbc(key, bytes.subspan(kSalt, kAesBlock), bytes.subspan(kHead), status);
    if (!plain) {
        Fail(kNotDecrypted, status);
    }
    return TextOfUtf16(*plain);
}

} // namespace Kestrona::Encryption
