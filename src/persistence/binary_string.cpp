// Implements: KSDLL_ResetChecksum, KSDLL_WriteBinaryString, KSDLL_ReadBinaryString.
#include "platform/code_page.h"
#include "platform/file_reading.h"

#include <kestrona/binary_strings.h>
#include <kestrona/host_settings.h>
#include <kestrona/process.h>
#include <kestrona/unicode.h>

#include <bit>
#include <cassert>
#include <optional>
#include <string>
#include <string_view>

namespace Kestrona::Persistence {

namespace {

constexpr std::uint8_t kFirstChainByte = 0x5C;
constexpr std::int16_t kTextsPerChecksum = 8;
constexpr std::int32_t kEndMarker = -1;

constexpr const wchar_t* kWrongLength = L"Data block length is incorrect. Configuration file is corrupt!";
constexpr const wchar_t* kWrongChecksum = L"Checksum is incorrect. Configuration file is corrupt!";

static_assert(std::endian::native == std::endian::little, "texts and numbers are written as they lie in memory");

// Runs through all texts of a file, in either direction. Each scrambled byte depends on the one before it.
struct Scrambling {
    std::uint8_t chain_byte = kFirstChainByte;
    std::uint64_t checksum = 0;
    std::int16_t texts = 0; // since the last checksum; also how far bytes are rotated

    void Scramble(std::string& bytes) {
        checksum += bytes.size();
        for (char& byte : bytes) {
            const auto plain = static_cast<std::uint8_t>(byte);
            checksum += plain;
            chain_byte = std::rotl(static_cast<std::uint8_t>(chain_byte ^ plain), texts);
            byte = static_cast<char>(chain_byte);
        }
    }

    void Unscramble(std::string& bytes) {
        checksum += bytes.size();
        for (char& byte : bytes) {
            const auto scrambled = static_cast<std::uint8_t>(byte);
            const auto plain = static_cast<std::uint8_t>(std::rotr(scrambled, texts) ^ chain_byte);
            chain_byte = scrambled;
            checksum += plain;
            byte = static_cast<char>(plain);
        }
    }

    // Whether a checksum stands behind the text that has just been handled.
    bool CountText() {
        texts = static_cast<std::int16_t>((texts + 1) % kTextsPerChecksum);
        return texts == 0;
    }
};

Scrambling& ProcessScrambling() {
    static Scrambling scrambling;
    return scrambling;
}

std::int32_t ReportBad(WindowHandle owner, const wchar_t* text) {
    MessageManager::getInstance()->ShowMessage(owner, text, L"", kMessageStyleWarning);
    return kBinaryStringBad;
}

std::wstring_view UpToZero(std::wstring_view text) {
    return text.substr(0, text.find(L'\0'));
}

// An odd byte at the end is half a unit; its other half counts as 0.
std::wstring DecodeWide(const std::string& bytes) {
    std::u16string units((bytes.size() + 1) / 2, u'\0');
    bytes.copy(reinterpret_cast<char*>(units.data()), bytes.size()); // NOLINT(*-reinterpret-cast): raw units
    return FromUtf16(units);
}

bool ChecksumFits(std::FILE* file) {
    Scrambling& scrambling = ProcessScrambling();
    if (!scrambling.CountText()) {
        return true;
    }
    std::uint64_t stored = 0;
    return std::fread(&stored, sizeof stored, 1, file) == 1 && stored == scrambling.checksum;
}

std::int32_t ReadText(std::FILE* file, std::optional<std::wstring>& text, WindowHandle owner, bool wide) {
    std::int32_t size = 0;
    if (std::fread(&size, sizeof size, 1, file) != 1 || size < kEndMarker) {
        return ReportBad(owner, kWrongLength);
    }
    if (size == kEndMarker || size == 0) {
        return size == 0 ? kBinaryStringText : kBinaryStringEnd;
    }
    std::string bytes;
    if (!Platform::ReadBytes(file, static_cast<std::size_t>(size), bytes)) {
        return ReportBad(owner, kWrongLength);
    }
    ProcessScrambling().Unscramble(bytes);
    if (!ChecksumFits(file)) {
        return ReportBad(owner, kWrongChecksum);
    }
    text = wide ? DecodeWide(bytes) : Platform::DecodeBytes(bytes, GetLegacyCodePage());
    text->resize(UpToZero(*text).size());
    return kBinaryStringText;
}

} // namespace

} // namespace Kestrona::Persistence

void KSDLL_ResetChecksum() {
    Kestrona::Persistence::ProcessScrambling() = {};
}

void KSDLL_WriteBinaryString(std::FILE* file, const wchar_t* text) {
    using namespace Kestrona::Persistence;
    const std::u16string units = text != nullptr ? Kestrona::ToUtf16(text) : std::u16string();
    // NOLINTNEXTLINE(*-reinterpret-cast): raw units
    std::string bytes(reinterpret_cast<const char*>(units.data()), units.size() * sizeof(char16_t));
    assert(bytes.size() <= std::size_t{0x7FFFFFFF});
    const auto size = static_cast<std::int32_t>(bytes.size());
    std::fwrite(&size, sizeof size, 1, file);
    if (size == 0) {
        return;
    }
    Scrambling& scrambling = ProcessScrambling();
    scrambling.Scramble(bytes);
    std::fwrite(bytes.data(), 1, bytes.size(), file);
    if (scrambling.CountText()) {
        std::fwrite(&scrambling.checksum, sizeof scrambling.checksum, 1, file);
    }
}

std::int32_t KSDLL_ReadBinaryString(std::FILE* file, wchar_t** text, std::int32_t wide) {
    std::optional<std::wstring> read;
    const std::int32_t result = Kestrona::Persistence::ReadText(file, read, nullptr, wide != 0);
    if (result == kBinaryStringText) {
        *text = read ? KSDLL_AddText(read->c_str()) : nullptr;
    }
    return result;
}

std::int32_t KSDLL_ReadBinaryString(std::FILE* file, wchar_t** text, WindowHandle owner, std::int32_t wide) {
    std::optional<std::wstring> read;
    const std::int32_t result = Kestrona::Persistence::ReadText(file, read, owner, wide != 0);
    if (read) {
        *text = KSDLL_AddText(read->c_str());
    }
    return result;
}
