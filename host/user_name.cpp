#include "user_name.h"

#include <kestrona/unicode.h>

#include <pwd.h>
#include <unistd.h>

#include <array>

namespace Kestrona::Host {

std::wstring UserName() {
    const uid_t user = geteuid();
    std::array<char, 16384> texts{};
    passwd entry{};
    passwd* found = nullptr;
    if (getpwuid_r(user, &entry, texts.data(), texts.size(), &found) == 0 && found != nullptr) {
        return FromUtf8(found->pw_name);
    }
    return std::to_wstring(user);
}

} // namespace Kestrona::Host
