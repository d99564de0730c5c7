#pragma once

#include "platform/secret_bytes.h"

#include <optional>
#include <span>
#include <vector>

// The primitives of encryption. Where one fails there is no result; `failure`, where there is one, tells why.
namespace Kestrona::Platform {

using Bytes = std::vector<unsigned char>;
using ByteView = std::span<const unsigned char>;

constexpr std::size_t kAesBlock = 16;
constexpr std::size_t kAes256Key = 32;
constexpr std::size_t kGcmNonce = 12;
constexpr std::size_t kGcmTag = 16;

enum class CipherStep {
    None,
    Algorithm, // the provider does not have it
    Memory,
    Key,
    Parameters,
    Data
};

struct CipherFailure {
    CipherStep step = CipherStep::None;
    long status = 0; // as the provider numbers it
};

// PBKDF2 with HMAC-SHA1, as long as an AES-256 key.
std::optional<SecretBytes> DeriveKey(ByteView password, ByteView salt, int rounds, CipherFailure& failure);

// AES-256 in CBC mode without padding. Requires: whole blocks, a key of kAes256Key and a vector of kAesBlock bytes.
std::optional<Bytes> EncryptCbc(const SecretBytes& key, ByteView vector, ByteView plain, CipherFailure& failure);
std::optional<SecretBytes> DecryptCbc(const SecretBytes& key, ByteView vector, ByteView cipher, CipherFailure& failure);

// AES-256 in GCM mode: the ciphertext and its tag. Requires: a key of kAes256Key and a nonce of kGcmNonce bytes that
// was never used with the key.
std::optional<Bytes> Seal(const SecretBytes& key, ByteView nonce, ByteView plain);
// Nothing for bytes that this key did not seal.
std::optional<SecretBytes> Open(const SecretBytes& key, ByteView nonce, ByteView sealed);

} // namespace Kestrona::Platform
