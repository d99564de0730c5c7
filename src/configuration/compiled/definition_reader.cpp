// Implements: ReadTableDefinitionFromStream.
#include "configuration/compiled/definition_input.h"
#include "configuration/compiled/format_block.h"
#include "configuration/compiled/help_file.h"
#include "platform/wide_c_string.h"

#include <kestrona/definition_load.h>
#include <kestrona/process.h>
#include <kestrona/services.h>
#include <kestrona/table_definition_stream.h>

#include <cstdint>
#include <string>

namespace Kestrona::Configuration::Compiled {

using Data::MemoryResident::MemoryResidentData;

namespace {

constexpr std::uint32_t kTrailerTexts = 2;

bool ReadHostTexts(DefinitionInput& input, IOleServerManager* ole_servers) {
    std::wstring first;
    std::wstring second;
    if (!input.ReadShownText(first) || !input.ReadShownText(second)) {
        return false;
    }
    if (ole_servers != nullptr) {
        const bool both = !first.empty() && !second.empty();
        ole_servers->SetServerTexts(both ? first.c_str() : L"", both ? second.c_str() : L"");
    }
    return true;
}

bool ReadHelpFileName(DefinitionInput& input) {
    std::wstring name;
    if (!input.ReadShownText(name)) {
        return false;
    }
    SetHelpFileName(name);
    KSDLL_WriteDebug(L"Loaded Help File Name");
    return true;
}

bool ReadHead(DefinitionInput& input, IOleServerManager* ole_servers) {
    std::uint32_t reserved = 0;
    std::uint32_t opaque_texts = 0;
    return input.Read(reserved) && ReadHostTexts(input, ole_servers) && ReadHelpFileName(input) &&
           input.Read(opaque_texts) && input.SkipTexts(opaque_texts);
}

bool ReadFormats(MemoryResidentData& store, DefinitionInput& input, bool has_common_dataset_flag) {
    KSDLL_InitializeFormats(store);
    std::int32_t count = 0;
    if (!input.Read(count)) {
        return false;
    }
    if (count < 0 || count > kMaxFormats) {
        return input.ReportCorrupt();
    }
    store.SetFormatCount(count);
    for (std::int32_t format = 0; format < count; ++format) {
        if (!ReadFormat(store, format, has_common_dataset_flag, input)) {
            store.SetFormatCount(format); // those behind it have no names
            return false;
        }
    }
    return true;
}

// A pair whose second text is the end marker is no pair.
bool ReadSubstitutions(MemoryResidentData& store, DefinitionInput& input) {
    using TextResult = DefinitionInput::TextResult;
    store.ResetStringSubstitutions();
    std::wstring from;
    std::wstring to;
    TextResult result = TextResult::Text;
    while (result == TextResult::Text) {
        result = input.ReadListText(from);
        if (result == TextResult::Text) {
            result = input.ReadListText(to);
        }
        if (result == TextResult::Text) {
            Platform::OwnedWide owned(KSDLL_AddText(from.c_str()));
            wchar_t* const other = KSDLL_AddText(to.c_str()); // there may be no memory for it
            store.SetStringSubstitution(owned.release(), other);
        }
    }
    return result == TextResult::End;
}

} // namespace

} // namespace Kestrona::Configuration::Compiled

bool ReadTableDefinitionFromStream(Kestrona::Data::MemoryResident::MemoryResidentData& store, std::FILE* stream,
                                   ITranslationWriter* writer, bool wide, bool has_common_dataset_flag,
                                   bool has_trailer_texts, const std::wstring& file_name, const std::wstring& caption,
                                   IOleServerManager* ole_servers) {
    using namespace Kestrona::Configuration::Compiled;
    DefinitionInput input(stream, wide, file_name, writer);
    if (!ReadHead(input, ole_servers) || !ReadFormats(store, input, has_common_dataset_flag) ||
        !JoinAssociatedTables(store, caption)) {
        return false;
    }
    KSDLL_WriteDebug(L"Read Format data");
    return (!has_trailer_texts || input.SkipTexts(kTrailerTexts)) && ReadSubstitutions(store, input);
}
