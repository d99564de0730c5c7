#include "compiled_file.h"

#include "open_file.h"
#include "resolve.h"

#include <kestrona/binary_strings.h>
#include <kestrona/compiled_configuration.h>
#include <kestrona/host_settings.h>
#include <kestrona/services.h>
#include <kestrona/table_definition_stream.h>
#include <kestrona/unicode.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>

namespace Kestrona::Host {

namespace {

using namespace Configuration::Compiled;
using Data::MemoryResident::MemoryResidentData;

constexpr const wchar_t* kIdentity = L"Kestrona Compiled Configuration";

OpenFile OpenCompiled(const std::string& path) {
    std::error_code error;
    return OpenFile(std::filesystem::is_regular_file(path, error) ? std::fopen(path.c_str(), "rbe") : nullptr);
}

// The words in the file and the numbers of the source types go crosswise.
ConfigurationSourceType SourceTypeOfWord(std::uint32_t word) {
    switch (word) {
    case 1:
        return ConfigurationSourceType::Cnf;
    case 2:
        return ConfigurationSourceType::Oem;
    case 3:
        return ConfigurationSourceType::Runtime;
    default:
        return ConfigurationSourceType::None;
    }
}

struct Head {
    bool wide = false;
    CompiledVersionInfo version;
    VersionCheckResult check = VersionCheckResult::NoVersion;
    ConfigurationSourceType type = ConfigurationSourceType::None;
};

bool ReadWord(std::FILE* file, std::uint32_t& word) {
    return std::fread(&word, sizeof word, 1, file) == 1;
}

Head ReadHead(std::FILE* file) {
    Head head;
    CommonCompiledConfigFunctions::SeekHeader(file, &head.wide);
    head.version = CommonCompiledConfigFunctions::ReadVersionHeader(file);
    head.check = CommonCompiledConfigFunctions::CheckVersionInfo(head.version);
    std::uint32_t word = 0;
    if (head.check == VersionCheckResult::Current && ReadWord(file, word)) {
        head.type = SourceTypeOfWord(word);
    }
    return head;
}

// False after the data module has reported that a text is damaged.
bool ReadText(std::FILE* file, bool wide, std::wstring& text) {
    wchar_t* read = nullptr;
    const bool is_text = KSDLL_ReadBinaryString(file, &read, wide ? 1 : 0) == kBinaryStringText;
    text = read != nullptr ? read : L"";
    std::free(read);
    return is_text;
}

bool ReadIdentity(std::FILE* file, const Head& head) {
    std::wstring first;
    std::wstring second;
    switch (head.type) {
    case ConfigurationSourceType::Cnf:
    case ConfigurationSourceType::Oem:
        return ReadText(file, head.wide, first) && ReadText(file, head.wide, second);
    case ConfigurationSourceType::Runtime:
        return ReadText(file, head.wide, first) && first == kIdentity;
    case ConfigurationSourceType::None:
        break;
    }
    return true;
}

} // namespace

ConfigurationSourceType SourceTypeOf(const std::string& path) {
    const OpenFile file = OpenCompiled(path);
    return file != nullptr ? ReadHead(file.get()).type : ConfigurationSourceType::None;
}

LoadOutcome FillFromCompiled(const std::string& path, MemoryResidentData& store, IInformationFeedback* feedback,
                             IOleServerManager& ole_servers) {
    const std::wstring name = FromUtf8(path);
    const OpenFile file = OpenCompiled(path);
    if (file == nullptr) {
        CommonCompiledConfigFunctions::DisplayUnableToOpenCompiledFileMessage(name);
        return LoadOutcome::Unreadable;
    }
    KSDLL_ResetChecksum();
    const Head head = ReadHead(file.get());
    if (head.check != VersionCheckResult::Current) {
        CommonCompiledConfigFunctions::DisplayCompiledVersionMessages(nullptr, name, GetMessageCaption(), head.version,
                                                                      head.check);
        return LoadOutcome::Findings;
    }
    std::uint32_t flags = 0; // they belong to the definition of the process
    if (!ReadIdentity(file.get(), head) || !ReadWord(file.get(), flags)) {
        CommonCompiledConfigFunctions::DisplayGenericUnableToReadCompiledFileMessage(name);
        return LoadOutcome::Findings;
    }
    const bool is_filled = ReadTableDefinitionFromStream(store, file.get(), nullptr, head.wide, true, false, name,
                                                         GetMessageCaption(), &ole_servers) &&
                           ResolveRead(store, feedback);
    return is_filled ? LoadOutcome::Ok : LoadOutcome::Findings;
}

} // namespace Kestrona::Host
