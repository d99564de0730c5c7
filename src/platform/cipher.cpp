#include "platform/cipher.h"

#include <openssl/crypto.h>
#include <openssl/err.h>
#include <openssl/evp.h>

#include <cassert>
#include <limits>
#include <memory>

namespace Kestrona::Platform {

namespace {

struct FreeContext {
    void operator()(EVP_CIPHER_CTX* context) const { EVP_CIPHER_CTX_free(context); }
};

using Context = std::unique_ptr<EVP_CIPHER_CTX, FreeContext>;

// The provider counts in int; a block more may come out than goes in.
bool Fits(ByteView bytes) {
    return bytes.size() <= static_cast<std::size_t>(std::numeric_limits<int>::max()) - kAesBlock;
}

int Size(ByteView bytes) {
    return static_cast<int>(bytes.size());
}

CipherStatus LastError() {
    const auto error = static_cast<CipherStatus>(ERR_peek_last_error());
    ERR_clear_error();
    return error;
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

bool RunCbc(Direction direction, const SecretBytes& key, ByteView vector, ByteView in, unsigned char* out,
            CipherStatus& status) {
    assert(key.Size() == kAes256Key && vector.size() == kAesBlock && in.size() % kAesBlock == 0);
    const Context context(EVP_CIPHER_CTX_new());
    const bool good = context && Fits(in) &&
                      EVP_CipherInit_ex(context.get(), EVP_aes_256_cbc(), nullptr, key.Data(), vector.data(),
                                        static_cast<int>(direction)) == 1 &&
                      EVP_CIPHER_CTX_set_padding(context.get(), 0) == 1 && Run(context.get(), in, out);
    status = good ? 0 : LastError();
    return good;
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

void Cleanse(void* memory, std::size_t size) {
    OPENSSL_cleanse(memory, size);
}

std::optional<SecretBytes> DeriveKey(ByteView password, ByteView salt, int rounds, CipherStatus& status) {
    SecretBytes key(kAes256Key);
    const bool good = Fits(password) && Fits(salt) &&
                      PKCS5_PBKDF2_HMAC(reinterpret_cast<const char*>(password.data()), Size(password), salt.data(),
                                        Size(salt), rounds, EVP_sha1(), static_cast<int>(kAes256Key), key.Data()) == 1;
    status = good ? 0 : LastError();
    return good ? std::optional(std::move(key)) : std::nullopt;
}

std::optional<Bytes> EncryptCbc(const SecretBytes& key, ByteView vector, ByteView plain, CipherStatus& status) {
    Bytes cipher(plain.size() + kAesBlock);
    if (!RunCbc(Direction::Encrypt, key, vector, plain, cipher.data(), status)) {
        return std::nullopt;
    }
    cipher.resize(plain.size());
    return cipher;
}

std::optional<SecretBytes> DecryptCbc(const SecretBytes& key, ByteView vector, ByteView cipher, CipherStatus& status) {
    SecretBytes plain(cipher.size() + kAesBlock);
    if (!RunCbc(Direction::Decrypt, key, vector, cipher, plain.Data(), status)) {
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
