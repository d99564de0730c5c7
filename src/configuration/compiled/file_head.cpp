#include "configuration/compiled/file_head.h"

#include "configuration/compiled/identity.h"
#include "configuration/compiled/numbers.h"
#include "configuration/compiled/version_text.h"
#include "platform/format_text.h"

#include <kestrona/binary_strings.h>
#include <kestrona/compiled_configuration.h>
#include <kestrona/process.h>
#include <kestrona/unicode.h>

#include <cstdint>
#include <string>

namespace Kestrona::Configuration::Compiled {

namespace {

constexpr const wchar_t* kBannerTitle = L"Compiled configuration of Kestrona\n\r"; // readers take no notice of it
constexpr const wchar_t* kBannerVersion = L"Version %s Compiled with Build %li\n\r\n\r%c";
constexpr std::int32_t kBuild = 59698; // part of the form; no build of this library has the number

// The banner is 16-bit text, as all texts of the file; its zero bytes tell the reader so.
void WriteBanner(std::FILE* file) {
    const auto marker = static_cast<wchar_t>(CommonCompiledConfigFunctions::get_VersionStartMarker());
    const std::u16string banner = ToUtf16(
        kBannerTitle + Platform::FormatText(kBannerVersion, VersionText(kConfigurationVersion), kBuild, marker));
    std::fwrite(banner.data(), sizeof banner[0], banner.size(), file);
}

void WriteIdentity(ConfigurationCompileType compile_type, std::FILE* file) {
    if (compile_type == ConfigurationCompileType::Oem) {
        KSDLL_WriteBinaryString(file, kIdentity);
    } else {
        KSDLL_WriteBinaryString(file, L"");
        KSDLL_WriteBinaryString(file, L"");
    }
}

} // namespace

void WriteFileHead(const CompilationState& compilation, std::FILE* file) {
    const auto source_type = static_cast<std::uint32_t>(compilation.ResolveSourceType());
    WriteBanner(file);
    CommonCompiledConfigFunctions::WriteVersionHeader(file);
    WriteNumber(file, source_type);
    WriteIdentity(compilation.get_CompileType(), file);
    WriteNumber(file, KSDLL_GetLongSv(kSvFlagWord));
}

} // namespace Kestrona::Configuration::Compiled
