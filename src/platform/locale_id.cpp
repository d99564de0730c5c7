#include "platform/locale_id.h"

#include <kestrona/unicode.h>

#include <unicode/uloc.h>

#include <array>

namespace Kestrona {

namespace {

// "C", "C.UTF-8" and "POSIX" stand for no locale at all; ICU takes them for language codes.
bool IsInvariantName(std::string_view name) {
    const std::string_view language = name.substr(0, name.find_first_of(".@"));
    return language.empty() || language == "C" || language == "POSIX";
}

} // namespace

std::uint32_t LocaleIdFromName(std::string_view name) {
    if (IsInvariantName(name)) {
        return Platform::kInvariantLocale;
    }
    std::array<char, ULOC_FULLNAME_CAPACITY> canonical{};
    UErrorCode error = U_ZERO_ERROR;
    uloc_canonicalize(std::string(name).c_str(), canonical.data(), ULOC_FULLNAME_CAPACITY, &error);
    // A warning that the closing 0 did not fit counts as failure too.
    return error == U_ZERO_ERROR ? uloc_getLCID(canonical.data()) : 0;
}

} // namespace Kestrona
