#pragma once

#include <kestrona/export.h>

#include <cstdint>
#include <string>

/// \file
/// The interfaces that a host implements. Operations with a default body need no implementation.

namespace Kestrona::Data::MemoryResident {
class MemoryResidentData;
}

/// Language and locale of the host.
class KS_API IGlobalizationHelper {
public:
    /// Returns the language's form of a file name as a text from `malloc`, which the caller frees; null for none.
    virtual wchar_t* LocalizeFileName(const wchar_t* file_name) = 0;

    /// Reserved.
    virtual void Reserved1() {}

    /// Returns the locale identity.
    virtual std::uint32_t GetLCID() = 0;
    virtual ~IGlobalizationHelper() = default;
};

/// Hears of formats that come and go as duplicates.
class KS_API IDuplicateFormatHandler {
public:
    /// `copy` was made from `source`.
    virtual void FormatDuplicated(std::int32_t source, std::int32_t copy) = 0;
    /// The format has gone.
    virtual void FormatDestroyed(std::int32_t format) = 0;
    virtual ~IDuplicateFormatHandler() = default;
};

/// Shows the stages of a load.
class KS_API IInformationFeedback {
public:
    /// A new stage begins; `message` is the number of its text.
    virtual void SetStage(std::int32_t message) = 0;
    /// Percentage of the load.
    virtual void SetProgress(std::int32_t percent) = 0;
    virtual ~IInformationFeedback() = default;
};

/// Parses the source of a definition and hears where a compiled one came from.
class KS_API INativeConfigWrapper {
public:
    virtual ~INativeConfigWrapper() = default;
    /// The compiled configuration comes from this resource.
    virtual void SetCompiledResource(std::int32_t resource) = 0;
    /// The compiled configuration comes from this file.
    virtual void SetCompiledFile(const std::wstring& path) = 0;
    /// The embedded configuration could not be had.
    virtual void ReportExtractionFailed() = 0;

    /// Reserved.
    virtual void Reserved4() {}

    /// Fills the store from a definition source and resolves it (`check_database_access`). Returns -1 after reporting
    /// a failure, 0 otherwise.
    virtual std::int32_t LoadSource(const wchar_t* file_name,
                                    Kestrona::Data::MemoryResident::MemoryResidentData& store) = 0;
};

/// Hands out resources of the host's program.
class KS_API IResourceHandler {
public:
    /// Extracts an embedded configuration to a file and stores its path. Returns false when it cannot be had.
    virtual bool ExtractConfiguration(std::int32_t resource, std::wstring& path) = 0;
    virtual ~IResourceHandler() = default;
};

/// Keeps two texts of the host that travel with a compiled configuration.
class KS_API IOleServerManager {
public:
    virtual void GetServerTexts(std::wstring& first, std::wstring& second) = 0;

    /// Reserved.
    virtual void Reserved1() {}

    virtual void SetServerTexts(const wchar_t* first, const wchar_t* second) = 0;
    virtual ~IOleServerManager() = default;
};
