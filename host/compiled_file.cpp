#include "compiled_file.h"

#include "file_handle.h"
#include "resolve.h"

#include <kestrona/binary_strings.h>
#include <kestrona/compiled_configuration.h>
#include <kestrona/host_settings.h>
#include <kestrona/services.h>
#include <kestrona/table_definition_stream.h>
#include <kestrona/unicode.h>

#include <cstdint>
#include <cstdlib>
#include <memory>

namespace Kestrona::Host {

namespace {

using namespace Configuration::Compiled;
using Data::MemoryResident::MemoryResidentData;

constexpr const wchar_t* kIdentity = L"Kestrona Compiled Configuration";

// The source type that a file with this type word is read with. What was compiled as `Oem` is read as `Runtime`, and
// the other way round: see `CompilationState::set_SourceType`.
ConfigurationSourceType SourceTypeOfWord(std::uint32_t word) {
    switch (static_cast<ConfigurationSourceType>(word)) {
    case ConfigurationSourceType::Cnf:
        return ConfigurationSourceType::Cnf;
    case ConfigurationSourceType::Runtime:
        return ConfigurationSourceType::Oem;
    case ConfigurationSourceType::Oem:
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
    const std::unique_ptr<wchar_t, decltype(&std::free)> owned(read, &std::free);
    text = read != nullptr ? read : L"";
    return is_text;
}

// The reports of the data module do not name the file, and none tells the place.
FileProblem StoppedReading(std::FILE* file, const std::string& path) {
    const std::int64_t place = std::ftell(file);
    if (std::feof(file) != 0) {
        return {FileFault::Truncated, path, place, "its end", "more of the definition"};
    }
    return {FileFault::Damaged, path, place, "reading stopped there", ""};
}

FileProblem ReadIdentity(std::FILE* file, const Head& head, const std::string& path) {
    std::wstring first;
    std::wstring second;
    bool is_read = true;
    switch (head.type) {
    case ConfigurationSourceType::Cnf:
    case ConfigurationSourceType::Oem:
        is_read = ReadText(file, head.wide, first) && ReadText(file, head.wide, second);
        break;
    case ConfigurationSourceType::Runtime:
        is_read = ReadText(file, head.wide, first);
        if (is_read && first != kIdentity) {
            return {FileFault::WrongMarker, path, {}, "'" + ToUtf8(first) + "'", "'" + ToUtf8(kIdentity) + "'"};
        }
        break;
    case ConfigurationSourceType::None:
        break;
    }
    return is_read ? FileProblem() : StoppedReading(file, path);
}

// Reads what stands behind the type word.
FileProblem ReadBody(std::FILE* file, const Head& head, const std::string& path, MemoryResidentData& store,
                     IOleServerManager& ole_servers) {
    if (FileProblem problem = ReadIdentity(file, head, path); problem.fault != FileFault::None) {
        return problem;
    }
    std::uint32_t flags = 0; // they belong to the definition of the process
    const bool is_read =
        ReadWord(file, flags) && ReadTableDefinitionFromStream(store, file, nullptr, head.wide, true, false,
                                                               FromUtf8(path), GetMessageCaption(), &ole_servers);
    return is_read ? FileProblem() : StoppedReading(file, path);
}

} // namespace

ConfigurationSourceType SourceTypeOf(const std::string& path) {
    const FileHandle file = OpenRegularFile(path);
    return file != nullptr ? ReadHead(file.get()).type : ConfigurationSourceType::None;
}

LoadOutcome FillFromCompiled(const std::string& path, MemoryResidentData& store, IInformationFeedback* feedback,
                             IOleServerManager& ole_servers, FileProblem& problem) {
    const std::wstring name = FromUtf8(path);
    const FileHandle file = OpenRegularFile(path);
    if (file == nullptr) {
        problem = {FileFault::CannotOpen, path, {}, "", ""};
        CommonCompiledConfigFunctions::DisplayUnableToOpenCompiledFileMessage(name);
        return LoadOutcome::Unreadable;
    }
    KSDLL_ResetChecksum();
    const Head head = ReadHead(file.get());
    if (head.check != VersionCheckResult::Current) {
        problem = {FileFault::WrongVersion, path, {}, "", ""};
        CommonCompiledConfigFunctions::DisplayCompiledVersionMessages(nullptr, name, GetMessageCaption(), head.version,
                                                                      head.check);
        return LoadOutcome::Findings;
    }
    problem = ReadBody(file.get(), head, path, store, ole_servers);
    if (problem.fault != FileFault::None) {
        MessageManager::getInstance()->ShowMessage(nullptr, FromUtf8(problem.ToString()), GetMessageCaption(),
                                                   kMessageStyleError);
        return LoadOutcome::Findings;
    }
    return ResolveRead(store, feedback) ? LoadOutcome::Ok : LoadOutcome::Findings;
}

} // namespace Kestrona::Host
