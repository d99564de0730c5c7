// Implements: the head of a compiled configuration file.
#include "configuration/compiled/numbers.h"
#include "platform/files.h"

#include <kestrona/compiled_configuration.h>

#include <cstdio>

namespace Kestrona::Configuration::Compiled {

namespace {

constexpr std::uint8_t kStartMarker = 26;

constexpr const wchar_t* kInputFiles[] = {L"KESTRONA.KS_RT", L"KESTRONA.OEM", L"KESTRONA.CNF"};

// Below the format's version, or no number.
bool IsTooOld(float format_version) {
    return !(format_version >= kFormatVersion);
}

} // namespace

void CommonCompiledConfigFunctions::WriteVersionHeader(std::FILE* file) {
    WriteNumber(file, kFormatVersion);
    WriteNumber(file, kConfigurationVersion.major);
    WriteNumber(file, kConfigurationVersion.minor);
}

CompiledVersionInfo CommonCompiledConfigFunctions::ReadVersionHeader(std::FILE* file) {
    CompiledVersionInfo info{kFormatVersion, {}};
    Version version;
    if (ReadNumber(file, info.FormatVersion) && !IsTooOld(info.FormatVersion) && ReadNumber(file, version.major) &&
        ReadNumber(file, version.minor)) {
        info.FileVersion = version;
    }
    return info;
}

std::uint8_t CommonCompiledConfigFunctions::get_VersionStartMarker() {
    return kStartMarker;
}

void CommonCompiledConfigFunctions::SeekHeader(std::FILE* file, bool* wide) {
    bool has_zero = false;
    int byte = std::getc(file);
    for (; byte != EOF && byte != kStartMarker; byte = std::getc(file)) {
        has_zero = has_zero || byte == 0;
    }
    *wide = has_zero && byte == kStartMarker;
    if (*wide) {
        std::getc(file); // the other half of the marker
    }
}

VersionCheckResult CommonCompiledConfigFunctions::CheckVersionInfo(const CompiledVersionInfo& info) {
    if (IsTooOld(info.FormatVersion)) {
        return VersionCheckResult::FormatTooOld;
    }
    if (!info.FileVersion.HasValue()) {
        return VersionCheckResult::NoVersion;
    }
    const Version version = info.FileVersion.get_Value();
    if (version == kConfigurationVersion) {
        return VersionCheckResult::Current;
    }
    return version < kConfigurationVersion ? VersionCheckResult::Older : VersionCheckResult::Newer;
}

bool CommonCompiledConfigFunctions::FindInputFileEx(std::wstring* name) {
    for (const wchar_t* file : kInputFiles) {
        if (Platform::FileExists(file)) {
            *name = file;
            return true;
        }
    }
    return false;
}

} // namespace Kestrona::Configuration::Compiled
