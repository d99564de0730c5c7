#pragma once

#include "platform/secret_bytes.h"

#include <optional>
#include <string>

namespace Kestrona::Platform {

// A key that this user alone can read, made at the first need: 32 random bytes in "kestrona/user.key" under the user's
// data folder (XDG_DATA_HOME, or .local/share in the home folder), a file of mode 0600. Read once in a process for each
// place; several threads may ask at once. Nothing, and `error` in the system's words, when the file cannot be made or
// read, belongs to somebody else or can be read by others.
std::optional<SecretBytes> UserKey(std::string& error);

// Forgets the keys that were read. For tests that change the place of the key.
void ForgetUserKeys();

} // namespace Kestrona::Platform
