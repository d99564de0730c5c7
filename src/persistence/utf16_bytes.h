#pragma once

#include "platform/code_points.h"
#include "platform/secret_bytes.h"

#include <kestrona/unicode.h>

#include <string>

// Texts as UTF-16LE bytes and back. Nothing of them stays in memory that was given back.
namespace Kestrona::Encryption {

// The bytes of the text and `extra` zero bytes.
inline Platform::SecretBytes Utf16Bytes(const std::wstring& text, std::size_t extra) {
    Platform::SecretBytes bytes(Utf16Length(text) * 2 + extra);
    unsigned char* out = bytes.Data();
    const auto put = [&out](char32_t unit) {
        *out++ = static_cast<unsigned char>(unit & 0xFF);
        *out++ = static_cast<unsigned char>(unit >> 8);
    };
    for (const wchar_t element : text) {
        const char32_t c = Platform::ElementToCodePoint(element);
        if (c >= Platform::kFirstSupplementary) {
            put(Platform::HighSurrogateOf(c));
            put(Platform::LowSurrogateOf(c));
        } else {
            put(c);
        }
    }
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
