#pragma once

#include <kestrona/export.h>
#include <kestrona/services.h>
#include <kestrona/types.h>

#include <cstdint>
#include <cstdio>
#include <string>

/// \file
/// The head of a compiled configuration file: banner, marker, version. docs/file-formats.md tells the layout.

namespace Kestrona::Configuration::Compiled {

/// Version of the format that this library writes.
inline constexpr float kFormatVersion = 12.0F;
/// Version of the configuration that this library writes, and the only one that it reads.
inline constexpr Version kConfigurationVersion{15, 0};

/// The version that stands in a file.
struct CompiledVersionInfo {
    float FormatVersion = 0.0F;
    NullValue<Version> FileVersion; ///< None where the format version is below 12.0.
};

enum class VersionCheckResult : std::int32_t {
    NoVersion = 0,    ///< The format is recent enough, but there is no version pair.
    FormatTooOld = 1, ///< The format version is below 12.0.
    Older = 2,
    Newer = 3,
    Current = 4,
};

/// What reading and writing a compiled configuration share.
class KS_API CommonCompiledConfigFunctions {
public:
    CommonCompiledConfigFunctions() = delete;

    static void WriteVersionHeader(std::FILE* file);
    /// Reads the version. A file that ends here has no version pair.
    [[nodiscard]] static CompiledVersionInfo ReadVersionHeader(std::FILE* file);
    /// The byte 26, which ends the banner.
    [[nodiscard]] static std::uint8_t get_VersionStartMarker();
    /// Reads up to the end of the banner. `*wide` tells whether it was written in 16-bit text; false in a file without
    /// a marker, which is read to its end.
    static void SeekHeader(std::FILE* file, bool* wide);
    [[nodiscard]] static VersionCheckResult CheckVersionInfo(const CompiledVersionInfo& info);
    /// Shows what is wrong with a version; nothing for `Current`. Throws the wide text (`const wchar_t*`)
    /// "Unexpected check result" for a result that is none of the five, and "Expected a valid version" for `Older` and
    /// `Newer` without a version pair.
    static void DisplayCompiledVersionMessages(WindowHandle owner, const std::wstring& file_name,
                                               const std::wstring& caption, const CompiledVersionInfo& info,
                                               VersionCheckResult result);
    /// Finds the first of "KESTRONA.KS_RT", "KESTRONA.OEM" and "KESTRONA.CNF" that is there. Returns false, with
    /// `*name` as it was, when none is.
    static bool FindInputFileEx(std::wstring* name);
    static void DisplayGenericUnableToReadCompiledFileMessage(const std::wstring& file_name);
    static void DisplayUnableToOpenCompiledFileMessage(const std::wstring& file_name);
    /// The texts are told the file's version and this one.
    static void DisplayCompiledFileIsTooOldMessage(WindowHandle owner, const std::wstring& file_name,
                                                   const std::wstring& caption, const std::wstring& file_version);
    static void DisplayCompiledFileIsNewerMessage(WindowHandle owner, const std::wstring& file_name,
                                                  const std::wstring& caption, const std::wstring& file_version);
};

} // namespace Kestrona::Configuration::Compiled
