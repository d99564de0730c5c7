#include "commands/definition_commands.h"
#include "commands/file_problems.h"
#include "commands/session.h"
#include "data/definition_reader.h"
#include "exit_codes.h"
#include "output/message.h"
#include "output/text_output.h"

#include <kestrona/execution_state.h>
#include <kestrona/host/translation_list.h>
#include <kestrona/translation.h>
#include <kestrona/translation_writer.h>
#include <kestrona/unicode.h>

#include <fmt/format.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <optional>
#include <system_error>
#include <utility>
#include <vector>

namespace Kestrona::Tool {
namespace {

namespace fs = std::filesystem;
using Host::TranslationList;
using Host::TranslationListEntry;

constexpr const char* kCommand = "translate";
constexpr const char* kDefinitionList = "KSSERVER.LST";
constexpr std::array kLists{kDefinitionList, "KS_PDB.LST"};

int TellUnwritable(const fs::path& path, const std::error_code& failure) {
    const std::string reason = failure ? failure.message() : "cannot be written";
    TellError(Code::CannotWrite, "{}: {}", path.string(), reason);
    return kExitUnreadableInput;
}

/// The load writes its lists into the current directory; this makes it another one for a while.
class CurrentFolder {
public:
    explicit CurrentFolder(const fs::path& folder) : before_(fs::current_path()) { fs::current_path(folder); }

    CurrentFolder(const CurrentFolder&) = delete;
    CurrentFolder& operator=(const CurrentFolder&) = delete;

    ~CurrentFolder() {
        std::error_code ignored;
        fs::current_path(before_, ignored);
    }

private:
    fs::path before_;
};

/// A new folder inside another one, removed at the end with what is still in it.
class ScratchFolder {
public:
    explicit ScratchFolder(const fs::path& parent) {
        std::string name = (parent / "kestrona-XXXXXX").string();
        if (::mkdtemp(name.data()) == nullptr) {
            failure_ = std::error_code(errno, std::generic_category());
        } else {
            path_ = name;
        }
    }

    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    ~ScratchFolder() {
        std::error_code ignored;
        fs::remove_all(path_, ignored);
    }

    /// Empty when the folder could not be made.
    [[nodiscard]] const fs::path& Path() const { return path_; }

    /// Why it could not be made.
    [[nodiscard]] const std::error_code& Failure() const { return failure_; }

private:
    fs::path path_;
    std::error_code failure_;
};

/// Loads the definition and leaves its lists in the folder. Returns an exit code.
int Extract(Session& session, const std::string& definition, const fs::path& folder) {
    const std::string absolute = definition == kStdin ? definition : fs::absolute(definition).string();
    int code = kExitGood;
    {
        const CurrentFolder current(folder);
        ExecutionState::Instance().set_ExtractTranslations(true);
        code = session.Load(absolute);
        ExecutionState::Instance().set_ExtractTranslations(false);
        TranslationWriter_Close();
        DBTranslationWriter_Close();
    }
    return code;
}

/// Reads a list that `Extract` left in the folder. Nothing when it was not written whole: it is missing or empty then.
std::optional<TranslationList> ReadExtracted(const fs::path& folder, const char* name) {
    std::error_code missing;
    const auto size = fs::file_size(folder / name, missing);
    return missing || size == 0 ? std::nullopt : Host::ReadTranslationListFile((folder / name).string());
}

void TellCounts(const fs::path& path, const TranslationList& list) {
    std::map<std::wstring, std::size_t> sections;
    for (const TranslationListEntry& entry : list.entries) {
        ++sections[entry.section];
    }
    fmt::print("{}: {} texts\n", path.string(), list.entries.size());
    for (const auto& [section, count] : sections) {
        fmt::print("    {}: {}\n", ToUtf8(section), count);
    }
}

/// The entries of the lists that the user gave, and where each stands.
struct GivenEntries {
    struct Place {
        std::string file;
        std::int32_t line = 0;
        bool used = false;
    };

    /// By section and text. The first entry of a text is in force.
    std::map<std::pair<std::wstring, std::wstring>, Place> places;
    std::size_t open = 0;
    bool sound = true;
};

std::string PlaceText(const GivenEntries::Place& place) {
    return fmt::format("{}:{}", place.file, place.line);
}

void TakeList(const std::string& file, const TranslationList& list, GivenEntries& given) {
    for (const Host::Diagnostic& diagnostic : list.diagnostics) {
        TellError(Problem{Code::BadTranslation, diagnostic.text},
                  fmt::format("{}:{}:{}", diagnostic.file, diagnostic.line, diagnostic.column));
        given.sound = false;
    }
    for (const TranslationListEntry& entry : list.entries) {
        if (!entry.IsFilledIn()) {
            ++given.open;
            continue;
        }
        const auto [first, is_new] =
            given.places.try_emplace({entry.section, entry.text}, GivenEntries::Place{file, entry.line});
        if (!is_new) {
            TellWarning(Problem{Code::UnusedTranslation, fmt::format("unused: '{}' has its translation at {}",
                                                                     ToUtf8(entry.text), PlaceText(first->second))},
                        fmt::format("{}:{}", file, entry.line));
        }
    }
    Host::ApplyTranslationList(list);
}

/// Reads and applies the lists. Nothing when one cannot be read.
std::optional<GivenEntries> TakeLists(const std::vector<std::string>& files) {
    GivenEntries given;
    for (const std::string& file : files) {
        const auto list = Host::ReadTranslationListFile(file);
        if (!list) {
            TellError(Code::CannotRead, "{}: cannot be read", file);
            return std::nullopt;
        }
        TakeList(file, *list, given);
    }
    return given;
}

/// Fills the table with the definition's texts and what the applied lists make of them.
void Translate(const TranslationList& texts, GivenEntries& given, ListSource& table) {
    for (const TranslationListEntry& entry : texts.entries) {
        const auto found = given.places.find({entry.section, entry.text});
        const bool applies = found != given.places.end();
        if (applies) {
            found->second.used = true;
        }
        table.AddRow({ToUtf8(entry.section), ToUtf8(entry.text),
                      ToUtf8(KSDLL_CheckTranslationEntryT(entry.text, entry.section)),
                      applies ? PlaceText(found->second) : ""});
    }
}

void TellUnused(const GivenEntries& given) {
    std::size_t used = 0;
    for (const auto& [key, place] : given.places) {
        used += place.used ? 1 : 0;
        if (!place.used) {
            TellWarning(Problem{Code::UnusedTranslation,
                                fmt::format("unused: the definition has no text '{}' in the section '{}'",
                                            ToUtf8(key.second), ToUtf8(key.first))},
                        PlaceText(place));
        }
    }
    fmt::print(stderr, "{} entries apply, {} are unused, {} are not filled in\n", used, given.places.size() - used,
               given.open);
}

} // namespace

int RunTranslateExtract(const TranslateExtractOptions& options) {
    if (const int code = RefuseCompiled(options.definition, kCommand); code != kExitGood) {
        return code;
    }
    const fs::path folder = fs::absolute(options.folder);
    std::error_code failure;
    if (!fs::is_directory(folder, failure)) {
        return TellUnwritable(folder, failure ? failure : std::make_error_code(std::errc::not_a_directory));
    }
    const ScratchFolder scratch(folder);
    if (scratch.Path().empty()) {
        return TellUnwritable(folder, scratch.Failure());
    }
    Session session;
    if (const int code = Extract(session, options.definition, scratch.Path()); code != kExitGood) {
        return code;
    }
    std::vector<TranslationList> lists;
    for (const char* name : kLists) {
        auto list = ReadExtracted(scratch.Path(), name);
        if (!list) {
            return TellUnwritable(folder / name, {});
        }
        lists.push_back(std::move(*list));
    }
    for (const char* name : kLists) {
        fs::rename(scratch.Path() / name, folder / name, failure);
        if (failure) {
            return TellUnwritable(folder / name, failure);
        }
    }
    for (std::size_t i = 0; i < kLists.size(); ++i) {
        TellCounts(fs::path(options.folder) / kLists.at(i), lists[i]);
    }
    return kExitGood;
}

int RunTranslateApply(const TranslateApplyOptions& options) {
    if (const int code = RefuseCompiled(options.definition, kCommand); code != kExitGood) {
        return code;
    }
    const ScratchFolder scratch(fs::temp_directory_path());
    if (scratch.Path().empty()) {
        return TellUnwritable(fs::temp_directory_path(), scratch.Failure());
    }
    Session session;
    if (const int code = Extract(session, options.definition, scratch.Path()); code != kExitGood) {
        return code;
    }
    const auto texts = ReadExtracted(scratch.Path(), kDefinitionList);
    if (!texts) {
        return TellUnwritable(scratch.Path() / kDefinitionList, {});
    }
    auto given = TakeLists(options.lists);
    if (!given) {
        return kExitUnreadableInput;
    }
    ListSource table({{"Section"}, {"Text"}, {"Translation"}, {"Entry"}});
    Translate(*texts, *given, table);
    if (const int code = OutputCode(WriteTable(table, options.form, stdout)); code != kExitGood) {
        return code;
    }
    TellUnused(*given);
    return given->sound ? kExitGood : kExitFindings;
}

} // namespace Kestrona::Tool
