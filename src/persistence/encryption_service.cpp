// Implements: EncryptionService.
#include "persistence/data_protection.h"
#include "persistence/utf16_bytes.h"
#include "platform/base64.h"
#include "platform/cipher.h"
#include "platform/random.h"

#include <kestrona/encryption.h>

#include <algorithm>
#include <new>
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
constexpr const char* kNoDigest = "Unable to open SHA1 provider";
constexpr const char* kNoCipher = "Unable to open AES encryption provider";
constexpr const char* kNoMemory = "Unable to allocate heap memory";
constexpr const char* kNoKey = "Unabled to generate key from supplied data";
constexpr const char* kNoParameters = "Unable to set property value";
constexpr const char* kNotDerived = "BCryptDeriveKeyPBKDF2 failed with error ";
constexpr const char* kNotEncrypted = "Encryption failed with status code ";
constexpr const char* kNotDecrypted = "Decryption failed with status code ";
constexpr const char* kTooShort = "Not enough data to decrypt text";
constexpr const char* kNoBlocks = "Invalid data supplied to decryption method";

[[noreturn]] void Fail(const CipherFailure& failure, const char* no_algorithm, const char* no_result) {
    switch (failure.step) {
    case CipherStep::Algorithm:
        throw EncryptionException(no_algorithm);
    case CipherStep::Memory:
        throw EncryptionException(kNoMemory);
    case CipherStep::Key:
        throw EncryptionException(kNoKey);
    case CipherStep::Parameters:
        throw EncryptionException(kNoParameters);
    default:
        throw EncryptionException(no_result + std::to_string(failure.status));
    }
}

// The password is the text of the pass phrase and its closing zero unit.
SecretBytes KeyFor(const std::wstring& protected_key, ByteView salt) {
    const SecretBytes phrase = UnprotectedBytes(protected_key);
    SecretBytes password(phrase.Size() + 2);
    std::copy_n(phrase.Data(), phrase.Size(), password.Data());
    CipherFailure failure;
    std::optional<SecretBytes> key = DeriveKey(password.View(), salt, kRounds, failure);
    if (!key) {
        Fail(failure, kNoDigest, kNotDerived);
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

const std::wstring EncryptionService::Encrypt(const std::wstring& text) const try {
    Bytes block(kHead);
    if (!RandomBytes(block)) {
        throw EncryptionException(kNoRandomBytes);
    }
    const SecretBytes key = KeyFor(protected_key_, ByteView(block).first(kSalt));
    const std::size_t bytes = Utf16Length(text) * 2;
    const SecretBytes plain = Utf16Bytes(text, kAesBlock - bytes % kAesBlock);
    CipherFailure failure;
    const std::optional<Bytes> cipher =
        EncryptCbc(key, ByteView(block).subspan(kSalt, kAesBlock), plain.View(), failure);
    if (!cipher) {
        Fail(failure, kNoCipher, kNotEncrypted);
    }
    block.insert(block.end(), cipher->begin(), cipher->end());
    return EncodeBase64(block);

} catch (const std::bad_alloc&) {

    throw EncryptionException(kNoMemory);
}

const std::wstring EncryptionService::Decrypt(const std::wstring& text) const try {
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
    CipherFailure failure;
    const std::optional<SecretBytes> plain =
        DecryptCbc(key, bytes.subspan(kSalt, kAesBlock), bytes.subspan(kHead), failure);
    if (!plain) {
        Fail(failure, kNoCipher, kNotDecrypted);
    }
    return TextOfUtf16(*plain);

} catch (const std::bad_alloc&) {

    throw EncryptionException(kNoMemory);
}

} // namespace Kestrona::Encryption
