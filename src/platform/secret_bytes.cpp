#include "platform/secret_bytes.h"

#include <openssl/crypto.h>

namespace Kestrona::Platform {

void Cleanse(void* memory, std::size_t size) {
    OPENSSL_cleanse(memory, size);
}

} // namespace Kestrona::Platform
