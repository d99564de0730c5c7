#include "platform/cipher.h"

#include <openssl/err.h>
#include <openssl/evp.h>

#include <cassert>
#include <limits>
#include <memory>

namespace Kestrona::Platform {

namespace {

struct ContextDeleter {
    void operator()(EVP_CIPHER_CTX* context) const { EVP_CIPHER_CTX_free(context); }
};

using Context = std::unique_ptr<EVP_CIPHER_CTX, ContextDeleter>;

struct AlgorithmDeleter {
    void operator()(EVP_CIPHER* cipher) const { EVP_CIPHER_free(cipher); }

    void operator()(EVP_MD* digest) const { EVP_MD_free(digest); }
};

using Cipher = std::unique_ptr<EVP_CIPHER, AlgorithmDeleter>;
using Digest = std::unique_ptr<EVP_MD, AlgorithmDeleter>;

// The provider counts in int; a block more may come out than goes in.
bool Fits(ByteView bytes) {
    return bytes.size() <= static_cast<std::size_t>(std::numeric_limits<int>::max()) - kAesBlock;
}

int Size(ByteView bytes) {
    return static_cast<int>(bytes.size());
}

CipherFailure FailedAt(CipherStep step) {
    const auto status = static_cast<long>(ERR_peek_last_error());
    ERR_clear_error();
    return {step, status};
}

enum class Direction {
    Decrypt = 0,
    Encrypt = 1
};

// Runs all of `in` through the cipher. The context has its tag where it needs one.
bool Run(EVP_CIPHER_CTX* context, ByteView in, unsigned char* out) {
    int written = 0;
    int rest = 0;
    return EVP_CipherUpdate(context, out, &written, in.data(), Size(in)) == 1 &&
           EVP_CipherFinal_ex(context, out + written, &rest) == 1 &&
           static_cast<std::size_t>(written) + static_cast<std::size_t>(rest) == in.size();
}

// The step at which it failed; `None` for success.
CipherStep RunCbc(Direction direction, const SecretBytes& key, ByteView vector, ByteView in, unsigned char* out) {
    assert(key.Size() == kAes256Key && vector.size() == kAesBlock && in.size() % kAesBlock == 0);
    const Cipher cipher(EVP_CIPHER_fetch(nullptr, "AES-256-CBC", nullptr));
    if (!cipher) {
        return CipherStep::Algorithm;
    }
    const Context context(EVP_CIPHER_CTX_new());
    if (!context) {
        return CipherStep::Memory;
    }
    if (EVP_CipherInit_ex2(context.get(), cipher.get(), key.Data(), vector.data(), static_cast<int>(direction),
                           nullptr) != 1) {
        return CipherStep::Key;
    }
    if (EVP_CIPHER_CTX_set_padding(context.get(), 0) != 1) {
        return CipherStep::Parameters;
    }
    return Fits(in) && Run(context.get(), in, out) ? CipherStep::None : CipherStep::Data;
}

Context GcmContext(Direction direction, const SecretBytes& key, ByteView nonce) {
    assert(key.Size() == kAes256Key && nonce.size() == kGcmNonce);
    Context context(EVP_CIPHER_CTX_new());
    if (!context || EVP_CipherInit_ex(context.get(), EVP_aes_256_gcm(), nullptr, key.Data(), nonce.data(),
                                      static_cast<int>(direction)) != 1) {
        return nullptr;
    }
    return context;
}

} // namespace

std::optional<SecretBytes> DeriveKey(ByteView password, ByteView salt, int rounds, CipherFailure& failure) {
    const Digest digest(EVP_MD_fetch(nullptr, "SHA1", nullptr));
    if (!digest) {
        failure = FailedAt(CipherStep::Algorithm);
        return std::nullopt;
    }
    SecretBytes key(kAes256Key);
    if (!Fits(password) || !Fits(salt) ||
        PKCS5_PBKDF2_HMAC(reinterpret_cast<const char*>(password.data()), Size(password), salt.data(), Size(salt),
                          rounds, digest.get(), static_cast<int>(kAes256Key), key.Data()) != 1) {
        failure = FailedAt(CipherStep::Data);
        return std::nullopt;
    }
    return key;
}

std::optional<Bytes> EncryptCbc(const SecretBytes& key, ByteView vector, ByteView plain, CipherFailure& failure) {
    Bytes cipher(plain.size() + kAesBlock);
    if (const CipherStep step = RunCbc(Direction::Encrypt, key, vector, plain, cipher.data());
        step != CipherStep::None) {
        failure = FailedAt(step);
        return std::nullopt;
    }
    cipher.resize(plain.size());
    return cipher;
}

std::optional<SecretBytes> DecryptCbc(const SecretBytes& key, ByteView vector, ByteView cipher,
                                      CipherFailure& failure) {
    SecretBytes plain(cipher.size() + kAesBlock);
    if (const CipherStep step = RunCbc(Direction::Decrypt, key, vector, cipher, plain.Data());
        step != CipherStep::None) {
        failure = FailedAt(step);
        return std::nullopt;
    }
    return SecretBytes(plain.View().first(cipher.size()));
}

std::optional<Bytes> Seal(const SecretBytes& key, ByteView nonce, ByteView plain) {
    const Context context = GcmContext(Direction::Encrypt, key, nonce);
    Bytes sealed(plain.size() + kGcmTag);
    if (!context || !Fits(plain) || !Run(context.get(), plain, sealed.data()) ||
        EVP_CIPHER_CTX_ctrl(context.get(), EVP_CTRL_GCM_GET_TAG, static_cast<int>(kGcmTag),
                            sealed.data() + plain.size()) != 1) {
        ERR_clear_error();
        return std::nullopt;
    }
    return sealed;
}

std::optional<SecretBytes> Open(const SecretBytes& key, ByteView nonce, ByteView sealed) {
    if (sealed.size() < kGcmTag || !Fits(sealed)) {
        return std::nullopt;
    }
    const ByteView cipher = sealed.first(sealed.size() - kGcmTag);
    Bytes tag(sealed.end() - static_cast<std::ptrdiff_t>(kGcmTag), sealed.end());
    const Context context = GcmContext(Direction::Decrypt, key, nonce);
    SecretBytes plain(cipher.size());
    if (!context ||
        EVP_CIPHER_CTX_ctrl(context.get(), EVP_CTRL_GCM_SET_TAG, static_cast<int>(kGcmTag), tag.data()) != 1 ||
        !Run(context.get(), cipher, plain.Data())) {
        ERR_clear_error();
        return std::nullopt;
    }
    return plain;
}

} // namespace Kestrona::Platform
