#pragma once

#include "platform/secret_bytes.h"

#include <string>

namespace Kestrona::Encryption {

// The bytes of a protected text as UTF-16LE, in memory that is overwritten when it is given back. Throws
// DataProtectionException.
Platform::SecretBytes UnprotectedBytes(const std::wstring& text);

} // namespace Kestrona::Encryption
