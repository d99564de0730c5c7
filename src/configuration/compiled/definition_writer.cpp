// Implements: WriteTableDefinitionToStream.
#include "configuration/compiled/format_block.h"
#include "configuration/compiled/help_file.h"
#include "configuration/compiled/numbers.h"

#include <kestrona/binary_strings.h>
#include <kestrona/table_definition_stream.h>

#include <cstdint>
#include <string>

namespace Kestrona::Configuration::Compiled {

using Data::MemoryResident::MemoryResidentData;

namespace {

constexpr std::uint32_t kReserved = 0;
constexpr std::uint32_t kNoOpaqueTexts = 0;
constexpr std::uint32_t kEndMarker = 0xFFFFFFFF;

void WriteHostTexts(IOleServerManager* ole_servers, std::FILE* file) {
    std::wstring first;
    std::wstring second;
    if (ole_servers != nullptr) {
        ole_servers->GetServerTexts(first, second);
    }
    KSDLL_WriteBinaryString(file, first.c_str());
    KSDLL_WriteBinaryString(file, second.c_str());
}

void WriteFormats(MemoryResidentData& store, std::FILE* file) {
    const std::int32_t count = store.GetFormatCount();
    WriteNumber(file, count);
    for (std::int32_t format = 0; format < count; ++format) {
        WriteFormat(store, format, file);
    }
}

void WriteSubstitutions(MemoryResidentData& store, std::FILE* file) {
    for (std::int32_t index = 0; index < kMaxStringSubstitutions; ++index) {
        wchar_t* from = nullptr;
        wchar_t* to = nullptr;
        store.GetStringSubstitution(index, &from, &to);
        if (from == nullptr) {
            break;
        }
        KSDLL_WriteBinaryString(file, from);
        KSDLL_WriteBinaryString(file, to);
    }
    WriteNumber(file, kEndMarker);
}

void WriteUnlessNull(const wchar_t* text, std::FILE* file) {
    if (text != nullptr) {
        KSDLL_WriteBinaryString(file, text);
    }
}

} // namespace

} // namespace Kestrona::Configuration::Compiled

void WriteTableDefinitionToStream(Kestrona::Data::MemoryResident::MemoryResidentData& store, const wchar_t* text1,
                                  const wchar_t* text2, std::FILE* stream, IOleServerManager* ole_servers) {
    using namespace Kestrona::Configuration;
    Compiled::WriteNumber(stream, Compiled::kReserved);
    Compiled::WriteHostTexts(ole_servers, stream);
    KSDLL_WriteBinaryString(stream, HelpFileName());
    Compiled::WriteNumber(stream, Compiled::kNoOpaqueTexts);
    Compiled::WriteFormats(store, stream);
    Compiled::WriteUnlessNull(text1, stream);
    Compiled::WriteUnlessNull(text2, stream);
    Compiled::WriteSubstitutions(store, stream);
}
