#include "definition/reporter.h"

#include <kestrona/unicode.h>

#include <algorithm>
#include <tuple>

namespace Kestrona::Host::Language {

namespace {

constexpr std::size_t kLongestExcerpt = 40;

std::string Compose(const Finding& finding) {
    std::string text = finding.what + "; found " + finding.found + "; expected " + finding.expected;
    if (!finding.suggestion.empty()) {
        text += "; did you mean '" + finding.suggestion + "'?";
    }
    return text;
}

bool NeedsEscape(wchar_t c) {
    return (c >= 0 && c < 0x20) || (c >= 0x7f && c < 0xa0) || c == 0x2028 || c == 0x2029;
}

std::wstring Escape(wchar_t c) {
    constexpr std::wstring_view kDigits = L"0123456789abcdef";
    std::wstring digits;
    // NOLINTNEXTLINE(bugprone-signed-char-misuse): a wide character is no char
    for (auto rest = static_cast<std::uint32_t>(c); rest != 0 || digits.empty(); rest /= 16) {
        digits.insert(digits.begin(), kDigits[rest % 16]);
    }
    return L"\\u{" + digits + L"}";
}

auto Order(const Place& place) {
    return std::tuple(place.file, place.line, place.column);
}

Diagnostic MakeDiagnostic(Severity severity, const Place& place, const std::string& text,
                          const std::vector<std::string>& files) {
    const auto file = static_cast<std::size_t>(place.file);
    return {severity, file < files.size() ? files[file] : std::string(), place.line, place.column, text};
}

} // namespace

void Reporter::Error(const Place& place, const Finding& finding) {
    if (errors_ < kMostErrors) {
        findings_.push_back({Severity::Error, place, Compose(finding)});
    }
    ++errors_;
}

void Reporter::Warning(const Place& place, const Finding& finding) {
    if (warnings_ < kMostWarnings) {
        findings_.push_back({Severity::Warning, place, Compose(finding)});
    }
    ++warnings_;
}

std::vector<Diagnostic> Reporter::Take(const std::vector<std::string>& files) {
    std::stable_sort(findings_.begin(), findings_.end(),
                     [](const Entry& left, const Entry& right) { return Order(left.place) < Order(right.place); });
    std::vector<Diagnostic> diagnostics;
    for (const Entry& entry : findings_) {
        diagnostics.push_back(MakeDiagnostic(entry.severity, entry.place, entry.text, files));
    }
    const Place last = findings_.empty() ? Place{} : findings_.back().place;
    if (warnings_ > kMostWarnings) {
        diagnostics.push_back(MakeDiagnostic(
            Severity::Warning, last,
            Compose({"too many warnings", std::to_string(warnings_), "at most " + std::to_string(kMostWarnings), ""}),
            files));
    }
    if (errors_ >= kMostErrors) {
        diagnostics.push_back(MakeDiagnostic(
            Severity::Error, last,
            Compose({"too many errors, the rest was not examined", std::to_string(kMostErrors) + " errors or more",
                     "a definition that fits this language", ""}),
            files));
    }
    return diagnostics;
}

std::string Quoted(std::wstring_view text) {
    std::wstring shown;
    for (const wchar_t c : text.substr(0, kLongestExcerpt)) {
        shown += NeedsEscape(c) ? Escape(c) : std::wstring(1, c);
    }
    if (text.size() > kLongestExcerpt) {
        shown += L"...";
    }
    return "'" + ToUtf8(shown) + "'";
}

std::string QuotedOrEnd(std::wstring_view text) {
    return text.empty() ? "the end of the line" : Quoted(text);
}

} // namespace Kestrona::Host::Language
