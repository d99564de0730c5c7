#include <kestrona/host/globalization.h>
#include <kestrona/process.h>
#include <kestrona/unicode.h>

#include <cstdlib>
#include <initializer_list>
#include <string_view>

namespace Kestrona::Host {

namespace {

std::string FirstSet(std::initializer_list<const char*> variables) {
    for (const char* variable : variables) {
        const char* value = std::getenv(variable);
        if (value != nullptr && *value != '\0') {
            return value;
        }
    }
    return {};
}

// The language becomes part of file names, so nothing but letters may pass.
std::wstring LanguageOf(std::string_view locale) {
    constexpr std::size_t kShortest = 2; // "C" is no language
    constexpr std::size_t kLongest = 8;
    const std::string_view code = locale.substr(0, locale.find_first_of("_-.@"));
    if (code.size() < kShortest || code.size() > kLongest || code == "POSIX") {
        return {};
    }
    std::wstring language;
    for (const char c : code) {
        const char lower = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
        if (lower < 'a' || lower > 'z') {
            return {};
        }
        language += static_cast<wchar_t>(lower);
    }
    return language;
}

// Where the extension of a file name begins. The dot of a hidden file begins none.
std::size_t ExtensionStart(std::wstring_view path) {
    const std::size_t slash = path.rfind(L'/');
    const std::size_t name = slash == std::wstring_view::npos ? 0 : slash + 1;
    const std::size_t dot = path.rfind(L'.');
    return dot == std::wstring_view::npos || dot <= name ? path.size() : dot;
}

} // namespace

LocaleNames LocaleNamesFromEnvironment() {
    return {FirstSet({"LC_ALL", "LC_TIME", "LANG"}), FirstSet({"LC_ALL", "LC_MESSAGES", "LANG"})};
}

Globalization::Globalization(const LocaleNames& names)
    : language_(LanguageOf(names.language)),
      identity_(LocaleIdFromName(names.formats)) {}

wchar_t* Globalization::LocalizeFileName(const wchar_t* file_name) {
    if (file_name == nullptr || language_.empty()) {
        return nullptr;
    }
    std::wstring path(file_name);
    path.insert(ExtensionStart(path), L"." + language_);
    return KSDLL_AddText(path.c_str());
}

std::uint32_t Globalization::GetLCID() {
    return identity_;
}

} // namespace Kestrona::Host
