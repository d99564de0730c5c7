#pragma once

#include <kestrona/host_interfaces.h>

#include <cstdint>
#include <string>

/// \file
/// The user's language and locale.

namespace Kestrona::Host {

/// Names of the user's locales, such as "de_DE.UTF-8"; empty, "C" and "POSIX" mean none.
struct LocaleNames {
    std::string formats;  ///< Dates, times and the order of texts.
    std::string language; ///< Texts and file names.
};

/// Reads the environment: LC_ALL before LC_TIME before LANG for `formats`, LC_ALL before LC_MESSAGES before LANG for
/// `language`. A variable that is empty counts as not set.
[[nodiscard]] LocaleNames LocaleNamesFromEnvironment();

/// Locale identity and language forms of file names.
class Globalization : public IGlobalizationHelper {
public:
    explicit Globalization(const LocaleNames& names = LocaleNamesFromEnvironment());

    /// Puts the language before the extension: "doc/help.txt" becomes "doc/help.de.txt". Returns null when there is no
    /// language, and for null.
    wchar_t* LocalizeFileName(const wchar_t* file_name) override;
    /// Returns the identity of `LocaleNames::formats`, 0 for an unknown one.
    std::uint32_t GetLCID() override;

    /// Returns the language code in lower case, "" for none.
    [[nodiscard]] const std::wstring& Language() const { return language_; }

private:
    std::wstring language_;
    std::uint32_t identity_;
};

} // namespace Kestrona::Host
