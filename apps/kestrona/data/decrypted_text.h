#pragma once

#include <string>

namespace Kestrona::Tool {

/// Tells whether `EncryptionService::Decrypt` can have given this text back for one that was encrypted with the same
/// key: one to eight zeros at the end and nowhere else, whole blocks of eight code units, no half of a surrogate pair
/// alone. A wrong key passes about once in 65000 times.
[[nodiscard]] bool IsPlausible(const std::wstring& decrypted);

} // namespace Kestrona::Tool
