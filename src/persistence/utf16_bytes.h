#pragma once

#include "platform/secret_bytes.h"

#include <kestrona/unicode.h>

#include <string>

// Texts as UTF-16LE bytes and back, the units between them overwritten.
namespace Kestrona::Encryption {

// The bytes of the text and `extra` zero bytes.
inline Platform::SecretBytes Utf16Bytes(const std::wstring& text, std::size_t extra) {
    std::u16string units = ToUtf16(text);
    Platform::SecretBytes bytes(units.size() * 2 + extra);
    for (std::size_t i = 0; i < units.size(); ++i) {
        bytes.Data()[2 * i] = static_cast<unsigned char>(units[i] & 0xFF);
        bytes.Data()[2 * i + 1] = static_cast<unsigned char>(units[i] >> 8);
    }
    Platform::Cleanse(units.data(), units.size() * sizeof units[0]);
    return bytes;
}

// A byte behind the last whole unit is dropped.
inline std::wstring TextOfUtf16(const Platform::SecretBytes& bytes) {
    std::u16string units(bytes.Size() / 2, u'\0');
    for (std::size_t i = 0; i < units.size(); ++i) {
        units[i] = static_cast<char16_t>(bytes.Data()[2 * i] | bytes.Data()[2 * i + 1] << 8);
    }
    std::wstring text = FromUtf16(units);
    Platform::Cleanse(units.data(), units.size() * sizeof units[0]);
    return text;
}

} // namespace Kestrona::Encryption
