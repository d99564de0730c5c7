// Implements: the funnel to the process's logger.
#include "store/process_state.h"

#include <kestrona/host_settings.h>
#include <kestrona/services.h>

#include <atomic>

namespace {

constexpr std::uint32_t kForceBit = 1;

constinit std::atomic<bool> debug_log_enabled = false;
constinit std::atomic<bool> extended_debug_log_enabled = false;

bool IsForced(std::uint32_t flags) {
    return (flags & kForceBit) != 0 && (Kestrona::GetDebugCategories() & flags & ~kForceBit) != 0;
}

} // namespace

void EnableDebugLogging() {
    debug_log_enabled.store(true, std::memory_order_relaxed);
}

bool IsDebugLogEnabled() {
    return debug_log_enabled.load(std::memory_order_relaxed);
}

void EnableExtendedDebugLogging() {
    extended_debug_log_enabled.store(true, std::memory_order_relaxed);
}

bool IsExtendedDebugLogEnabled() {
    return extended_debug_log_enabled.load(std::memory_order_relaxed);
}

void KSDLL_WriteDebug(const wchar_t* text) {
    LogManager::getInstance()->Write(text);
}

void KSDLL_WriteDebug(const std::wstring& text) {
    KSDLL_WriteDebug(text.c_str());
}

void KSDLL_WriteDebugEx(const wchar_t* text, std::uint32_t flags) {
    const bool forced = IsForced(flags);
    if (forced || IsExtendedDebugLogEnabled()) {
        LogManager::getInstance()->WriteEx(flags, text, forced);
    }
}

void KSDLL_WriteDebugEx(const std::wstring& text, std::uint32_t flags) {
    KSDLL_WriteDebugEx(text.c_str(), flags);
}

void CreateLogEntry(const wchar_t* first, const wchar_t* second) {
    LogManager::getInstance()->LogEntry(first, second);
}

namespace Kestrona {

void ResetDebugLog() {
    debug_log_enabled.store(false, std::memory_order_relaxed);
    extended_debug_log_enabled.store(false, std::memory_order_relaxed);
}

} // namespace Kestrona
