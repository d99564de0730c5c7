#pragma once

#include <kestrona/export.h>

#include <cstddef>
#include <cstdint>
#include <string>

/// \file
/// Process-wide services: logging, messages, progress. The module runs without any of them being installed.
///
/// Threads: none of this is guarded; install services before the first use and call them from one thread at a time.

/// Opaque window handle. The library passes null and never looks into one.
using WindowHandle = void*;

/// Receives what the module logs. The base class drops everything.
class KS_API DefaultLogger {
public:
    /// Writes to the extended log. `forced` is true when the text passes the category mask.
    virtual void WriteEx(std::uint32_t flags, const wchar_t* text, bool forced);
    virtual void LogEntry(const wchar_t* first, const wchar_t* second);
    /// Writes one debug line.
    virtual void Write(const wchar_t* text);
    virtual ~DefaultLogger() = default;
};

/// Slot for the host's progress object. The module keeps and frees it and calls nothing on it.
class KS_API BaseProgressManager {
public:
    virtual ~BaseProgressManager() = default;
};

/// Style of an error box.
inline constexpr std::int32_t kMessageStyleError = 16;
/// Style of a warning box.
inline constexpr std::int32_t kMessageStyleWarning = 48;

/// The host's message service. The base class shows nothing and answers with an empty text.
class KS_API CoreMessage {
public:
    virtual ~CoreMessage() = default;
    virtual void ShowMessage(const wchar_t* text, const wchar_t* caption, std::int32_t style);
    virtual void ShowMessage(WindowHandle owner, const std::wstring& text, const std::wstring& caption,
                             std::int32_t style);
    virtual void ShowMessage(WindowHandle owner, const wchar_t* text, const wchar_t* caption, std::int32_t style);
    /// Writes the text of a number into `buffer`, at most `size` characters with the terminator. The base class takes
    /// it from `GetMessage`.
    virtual void GetMessageText(std::int32_t id, wchar_t* buffer, std::size_t size);
    /// Returns the text of a number: a format string with positional or printf-style placeholders.
    virtual std::wstring GetMessage(std::int32_t id);
    /// Reserved.
    virtual void Reserved6();
    virtual void DisplayGenericUnableToRead(const std::wstring& file_name);
    virtual void DisplayUnableToOpen(const std::wstring& file_name);
};

/// The process's logger.
class KS_API LogManager {
public:
    /// Returns the logger; makes and keeps a `DefaultLogger` when none is installed. Never null. Valid until the next
    /// `setInstance` or `MemoryResidentData::FreeDbMemory`.
    static DefaultLogger* getInstance();
    /// Installs a logger and frees the former one. Takes ownership; null goes back to the default at the next use.
    static void setInstance(DefaultLogger* owned);
};

/// The process's progress object.
class KS_API ProgressManager {
public:
    /// See `LogManager::getInstance`.
    static BaseProgressManager* getInstance();
    /// See `LogManager::setInstance`.
    static void setInstance(BaseProgressManager* owned);
};

/// The process's message service.
class KS_API MessageManager {
public:
    /// See `LogManager::getInstance`.
    static CoreMessage* getInstance();
    /// See `LogManager::setInstance`.
    static void setInstance(CoreMessage* owned);
};

/// Lets callers know that debug lines are wanted. There is no way back within a process. `KSDLL_WriteDebug` itself
/// writes whether or not this was called; code with costly texts asks `IsDebugLogEnabled` first.
KS_API void EnableDebugLogging();
KS_API bool IsDebugLogEnabled();
/// Opens the extended log for every category.
KS_API void EnableExtendedDebugLogging();
KS_API bool IsExtendedDebugLogEnabled();

/// Writes one line to the process's logger.
KS_API void KSDLL_WriteDebug(const wchar_t* text);
KS_API void KSDLL_WriteDebug(const std::wstring& text);
/// Writes to the extended log when it is enabled, or when bit 0 of `flags` is set and the debug categories share
/// another bit with `flags`.
KS_API void KSDLL_WriteDebugEx(const wchar_t* text, std::uint32_t flags);
KS_API void KSDLL_WriteDebugEx(const std::wstring& text, std::uint32_t flags);
KS_API void CreateLogEntry(const wchar_t* first, const wchar_t* second);
