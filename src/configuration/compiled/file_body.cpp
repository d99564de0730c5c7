#include "configuration/compiled/file_body.h"

#include "configuration/compiled/definition_input.h"
#include "configuration/compiled/identity.h"
#include "platform/format_text.h"
#include "text/translation_writers.h"

#include <kestrona/compilation_state.h>
#include <kestrona/host_settings.h>
#include <kestrona/process.h>
#include <kestrona/services.h>
#include <kestrona/table_definition_stream.h>

#include <cstdint>

namespace Kestrona::Configuration::Compiled {

namespace {

constexpr std::int32_t kMsgForeignIdentity = 19063; // identity, file

// From here on the formats tell whether they may use the common dataset; one opaque text has gone.
constexpr Version kCommonDatasetVersion{14, 3};

constexpr std::uint32_t kOpaqueIdentityTexts = 2;
constexpr std::uint32_t kOpaqueOldTexts = 1;
constexpr std::int32_t kFlagged = 1;
constexpr std::int32_t kFlaggedTableMode = 2;

bool CheckIdentity(DefinitionInput& input, const std::wstring& path) {
    std::wstring identity;
    if (!input.ReadText(identity)) {
        return false;
    }
    if (identity == kIdentity) {
        return true;
    }
    CoreMessage* const messages = MessageManager::getInstance();
    messages->ShowMessage(nullptr, Platform::FormatText(messages->GetMessage(kMsgForeignIdentity), identity, path),
                          GetMessageCaption(), kMessageStyleWarning);
    return false;
}

// What the file holds depends on the kind of file that its writer made, which its own type word does not tell: the
// reader has to know it.
bool ReadIdentity(DefinitionInput& input, const std::wstring& path) {
    switch (CompilationState::Instance().get_SourceType()) {
    case ConfigurationSourceType::Runtime:
        return CheckIdentity(input, path);
    case ConfigurationSourceType::Cnf:
    case ConfigurationSourceType::Oem:
        return input.SkipTexts(kOpaqueIdentityTexts);
    case ConfigurationSourceType::None:
        break;
    }
    return true;
}

bool ReadFlagWord(DefinitionInput& input) {
    std::int32_t flag_word = 0;
    if (!input.Read(flag_word)) {
        return false;
    }
    KSDLL_SetLongSv(kSvFlagWord, flag_word);
    if (flag_word == kFlagged) {
        KSDLL_SetLongSv(kSvAssociatedTableMode, kFlaggedTableMode);
    }
    return true;
}

} // namespace

bool ReadFileBody(Data::MemoryResident::MemoryResidentData& store, std::FILE* file, bool wide, Version version,
                  const std::wstring& path, IOleServerManager* ole_servers) {
    DefinitionInput input(file, wide, path, nullptr);
    const bool is_old = version < kCommonDatasetVersion;
    std::uint32_t configuration_type = 0; // whatever it says
    return input.Read(configuration_type) && ReadIdentity(input, path) &&
           (!is_old || input.SkipTexts(kOpaqueOldTexts)) && ReadFlagWord(input) &&
           ReadTableDefinitionFromStream(store, file, &Text::DefinitionTexts(), wide, !is_old, false, path,
                                         GetMessageCaption(), ole_servers);
}

} // namespace Kestrona::Configuration::Compiled
