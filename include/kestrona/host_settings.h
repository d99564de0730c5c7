#pragma once

#include <kestrona/export.h>
#include <kestrona/services.h>

#include <cstdint>
#include <string>

/// \file
/// Settings that only a host makes, one setter each. All are process-wide and unguarded.
///
/// The process services are installed with `LogManager::setInstance`, `MessageManager::setInstance` and
/// `ProgressManager::setInstance` (services.h).

namespace Kestrona {

/// Name of the run mode, which "{MODE}" in a text stands for.
KS_API void SetRunModeName(const std::wstring& name);
[[nodiscard]] KS_API const std::wstring& GetRunModeName();

/// Turns the audit log on or off.
KS_API void SetAuditLogEnabled(bool enabled);
[[nodiscard]] KS_API bool IsAuditLogEnabled();

/// Categories that a forced line of the extended log must share.
KS_API void SetDebugCategories(std::uint32_t mask);
[[nodiscard]] KS_API std::uint32_t GetDebugCategories();

/// Number of the resource that holds an embedded configuration, 0 for none.
KS_API void SetConfigurationResource(std::int32_t resource);
[[nodiscard]] KS_API std::int32_t GetConfigurationResource();

/// Caption of the messages of the definition load. Empty at first.
KS_API void SetMessageCaption(const std::wstring& caption);
[[nodiscard]] KS_API const std::wstring& GetMessageCaption();

/// Row that stands for the record in the second dimension of a tracked list; negative for the record itself.
KS_API void SetListRowOverride(std::int32_t row);
[[nodiscard]] KS_API std::int32_t GetListRowOverride();

/// Record that a list entry's text is shown for.
KS_API void SetCurrentListRecord(std::int32_t record);
[[nodiscard]] KS_API std::int32_t GetCurrentListRecord();

/// Format of the sequencer's orders; -1 leaves the question to the hook `IsTableUsedBySequencer`.
KS_API void SetSequencerOrderFormat(std::int32_t format);
[[nodiscard]] KS_API std::int32_t GetSequencerOrderFormat();

/// Code page of 8-bit texts in old files; "windows-1252" at first.
KS_API void SetLegacyCodePage(const std::string& name);
[[nodiscard]] KS_API const std::string& GetLegacyCodePage();

/// What `KSDLL_GetPointerSv(36)` answers.
KS_API void SetSpecialPointer36(void* value);
/// What `KSDLL_GetPointerSv(176)` answers.
KS_API void SetSpecialPointer176(void* value);

} // namespace Kestrona
