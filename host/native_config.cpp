#include <kestrona/definition_load.h>
#include <kestrona/execution_state.h>
#include <kestrona/host/native_config.h>
#include <kestrona/host/translation_list.h>
#include <kestrona/host_settings.h>
#include <kestrona/services.h>
#include <kestrona/unicode.h>

#include <utility>

namespace Kestrona::Host {

namespace {

using Data::MemoryResident::MemoryResidentData;

constexpr const wchar_t* kTooManyTables = L"The definition has more string tables than a store can hold.";

void ShowError(const std::wstring& text) {
    MessageManager::getInstance()->ShowMessage(nullptr, text, GetMessageCaption(), kMessageStyleError);
}

LoadOutcome FillAndCheck(const Definition& definition, MemoryResidentData& store, IInformationFeedback* feedback) {
    if (!FillStore(definition, store)) {
        ShowError(kTooManyTables);
        return LoadOutcome::Findings;
    }
    if (ExecutionState::Instance().get_ExtractTranslations()) {
        ListDefinitionTexts(store); // before the labels that the resolution lists
    }
    return check_database_access(store, true, feedback) == 0 ? LoadOutcome::Ok : LoadOutcome::Findings;
}

} // namespace

NativeConfig::NativeConfig(IInformationFeedback* feedback, DiagnosticSink sink, FileReader reader)
    : feedback_(feedback),
      sink_(std::move(sink)),
      reader_(reader ? std::move(reader) : ReadDefinitionFile) {}

LoadOutcome NativeConfig::Load(const std::string& path, MemoryResidentData& store) {
    ParseResult parsed = ParseDefinitionFile(path, reader_);
    const bool has_errors = parsed.HasErrors();
    diagnostics_ = std::move(parsed.diagnostics);
    if (sink_) {
        for (const Diagnostic& diagnostic : diagnostics_) {
            sink_(diagnostic);
        }
    }
    if (parsed.unreadable) {
        outcome_ = LoadOutcome::Unreadable;
    } else if (has_errors) {
        outcome_ = LoadOutcome::Findings;
    } else {
        outcome_ = FillAndCheck(parsed.definition, store, feedback_);
    }
    return outcome_;
}

std::int32_t NativeConfig::LoadSource(const wchar_t* file_name, MemoryResidentData& store) {
    const std::string path = file_name == nullptr ? std::string() : ToUtf8(file_name);
    return Load(path, store) == LoadOutcome::Ok ? 0 : -1;
}

void NativeConfig::Forget() {
    diagnostics_.clear();
    outcome_ = LoadOutcome::Ok;
}

void NativeConfig::SetCompiledResource(std::int32_t resource) {
    compiled_resource_ = resource;
}

void NativeConfig::SetCompiledFile(const std::wstring& path) {
    compiled_file_ = path;
}

void NativeConfig::ReportExtractionFailed() {
    ShowError(L"The embedded configuration " + std::to_wstring(GetConfigurationResource()) + L" cannot be extracted.");
}

} // namespace Kestrona::Host
