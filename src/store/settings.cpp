// Implements: the settings that only a host makes, the module in use and the execution state.
#include "store/process_state.h"

#include <kestrona/execution_state.h>
#include <kestrona/host_settings.h>
#include <kestrona/process.h>

namespace Kestrona {

namespace {

struct Settings {
    std::wstring run_mode_name;
    bool audit_log_enabled = false;
    std::uint32_t debug_categories = 0;
    std::int32_t configuration_resource = 0;
    std::wstring message_caption;
    std::int32_t list_row_override = -1;
    std::int32_t current_list_record = 0;
    std::int32_t sequencer_order_format = -1;
    std::string legacy_code_page = "windows-1252";
};

// Never destroyed: hosts read and write settings until their own last destructor.
Settings& Current() {
    static Settings& settings = *new Settings();
    return settings;
}

constinit KestronaModule current_module = KestronaModule::None;

} // namespace

void SetRunModeName(const std::wstring& name) {
    Current().run_mode_name = name;
}

const std::wstring& GetRunModeName() {
    return Current().run_mode_name;
}

void SetAuditLogEnabled(bool enabled) {
    Current().audit_log_enabled = enabled;
}

bool IsAuditLogEnabled() {
    return Current().audit_log_enabled;
}

void SetDebugCategories(std::uint32_t mask) {
    Current().debug_categories = mask;
}

std::uint32_t GetDebugCategories() {
    return Current().debug_categories;
}

void SetConfigurationResource(std::int32_t resource) {
    Current().configuration_resource = resource;
}

std::int32_t GetConfigurationResource() {
    return Current().configuration_resource;
}

void SetMessageCaption(const std::wstring& caption) {
    Current().message_caption = caption;
}

const std::wstring& GetMessageCaption() {
    return Current().message_caption;
}

void SetListRowOverride(std::int32_t row) {
    Current().list_row_override = row;
}

std::int32_t GetListRowOverride() {
    return Current().list_row_override;
}

void SetCurrentListRecord(std::int32_t record) {
    Current().current_list_record = record;
}

std::int32_t GetCurrentListRecord() {
    return Current().current_list_record;
}

void SetSequencerOrderFormat(std::int32_t format) {
    Current().sequencer_order_format = format;
}

std::int32_t GetSequencerOrderFormat() {
    return Current().sequencer_order_format;
}

void SetLegacyCodePage(const std::string& name) {
    Current().legacy_code_page = name;
}

const std::string& GetLegacyCodePage() {
    return Current().legacy_code_page;
}

ExecutionState& ExecutionState::Instance() {
    static ExecutionState state;
    return state;
}

void ResetSettings() {
    Current() = Settings();
}

void ResetModule() {
    current_module = KestronaModule::None;
}

void ResetExecutionState() {
    ExecutionState::Instance() = ExecutionState();
}

} // namespace Kestrona

void SetCurrentModule(Kestrona::KestronaModule module) {
    Kestrona::current_module = module;
}

Kestrona::KestronaModule GetCurrentModule() {
    return Kestrona::current_module;
}

std::int32_t KSDLL_GetModuleName() {
    return static_cast<std::int32_t>(GetCurrentModule());
}
