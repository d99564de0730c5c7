#pragma once

#include "platform/format_text.h"

#include <kestrona/types.h>

#include <string>

namespace Kestrona::Configuration::Compiled {

// "15.0"
inline std::wstring VersionText(Version version) {
    return Platform::FormatText(L"%i.%i", version.major, version.minor);
}

} // namespace Kestrona::Configuration::Compiled
