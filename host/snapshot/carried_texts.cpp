#include "snapshot/carried_texts.h"

#include "definition/fill_tables.h"
#include "definition/print_tables.h"

#include <kestrona/host/definition.h>
#include <kestrona/host_settings.h>
#include <kestrona/services.h>
#include <kestrona/unicode.h>

#include <optional>
#include <string_view>

namespace Kestrona::Host {

namespace {

// Stands between the host's text and ours. Both texts have it, since a reader takes two texts or none. No line of our
// text looks like it.
constexpr std::wstring_view kMark = L"\n# string tables of the definition\n";
constexpr const char* kFileName = "string tables";

// Takes what stands behind the mark off the text; nothing where there is no mark.
std::optional<std::wstring> TakeCarried(std::wstring& text) {
    const std::size_t mark = text.rfind(kMark);
    if (mark == std::wstring::npos) {
        return std::nullopt;
    }
    std::wstring carried = text.substr(mark + kMark.size());
    text.resize(mark);
    return carried;
}

void Warn(const std::wstring& text) {
    MessageManager::getInstance()->ShowMessage(nullptr, L"The string tables are left out. " + text, GetMessageCaption(),
                                               kMessageStyleWarning);
}

void FillFrom(const std::wstring& text, Data::MemoryResident::IMemoryResidentData& store) {
    const auto no_files = [](const std::string&) -> std::optional<std::string> {
        return std::nullopt;
    };
    const ParseResult parsed = ParseDefinition(ToUtf8(text), kFileName, no_files, {false});
    for (const Diagnostic& diagnostic : parsed.diagnostics) {
        if (diagnostic.severity == Severity::Error) {
            Warn(FromUtf8(diagnostic.ToString()));
            return;
        }
    }
    if (!Language::FillTables(parsed.definition, store)) {
        Warn(L"There are more than a store can hold.");
    }
}

} // namespace

void CarriedTexts::GetServerTexts(std::wstring& first, std::wstring& second) {
    first.clear();
    second.clear();
    if (host_ != nullptr) {
        host_->GetServerTexts(first, second);
    }
    const std::wstring tables = FromUtf8(Language::PrintTables(store_));
    if (!tables.empty()) {
        first += kMark;
        second += std::wstring(kMark) + tables;
    }
}

void CarriedTexts::SetServerTexts(const wchar_t* first, const wchar_t* second) {
    std::wstring host_first = first == nullptr ? L"" : first;
    std::wstring host_second = second == nullptr ? L"" : second;
    TakeCarried(host_first);
    const std::optional<std::wstring> tables = TakeCarried(host_second);
    if (host_ != nullptr) {
        host_->SetServerTexts(host_first.c_str(), host_second.c_str());
    }
    if (tables) {
        FillFrom(*tables, store_);
    }
}

} // namespace Kestrona::Host
