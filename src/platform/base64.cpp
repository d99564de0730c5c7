#include "platform/base64.h"

#include <cstdint>

namespace Kestrona::Platform {

namespace {

constexpr std::wstring_view kDigits = L"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr wchar_t kPadding = L'=';
constexpr int kDigitBits = 6;
constexpr std::uint32_t kDigitMask = (1U << kDigitBits) - 1;
constexpr int kByteBits = 8;
constexpr std::size_t kGroup = 4;

bool IsPassedOver(wchar_t c) {
    return c == L' ' || c == L'\t' || c == L'\r' || c == L'\n';
}

} // namespace

std::wstring EncodeBase64(std::span<const unsigned char> bytes) {
    std::wstring text;
    text.reserve((bytes.size() + 2) / 3 * kGroup);
    std::uint32_t bits = 0;
    int count = 0;
    for (const unsigned char byte : bytes) {
        bits = bits << kByteBits | byte;
        for (count += kByteBits; count >= kDigitBits; count -= kDigitBits) {
            text += kDigits[bits >> (count - kDigitBits) & kDigitMask];
        }
    }
    if (count > 0) {
        text += kDigits[bits << (kDigitBits - count) & kDigitMask];
    }
    while (text.size() % kGroup != 0) {
        text += kPadding;
    }
    return text;
}

std::optional<std::vector<unsigned char>> DecodeBase64(std::wstring_view text) {
    std::vector<unsigned char> bytes;
    bytes.reserve(text.size() / kGroup * 3);
    std::uint32_t bits = 0;
    int count = 0;
    std::size_t digits = 0;
    std::size_t padding = 0;
    for (const wchar_t c : text) {
        if (IsPassedOver(c)) {
            continue;
        }
        if (c == kPadding) {
            ++padding;
            continue;
        }
        const std::size_t digit = kDigits.find(c);
        if (digit == std::wstring_view::npos || padding > 0) {
            return std::nullopt;
        }
        ++digits;
        bits = bits << kDigitBits | static_cast<std::uint32_t>(digit);
        count += kDigitBits;
        if (count >= kByteBits) {
            count -= kByteBits;
            bytes.push_back(static_cast<unsigned char>(bits >> count & 0xFF));
        }
    }
    const bool whole = (digits + padding) % kGroup == 0 && padding < 3 && count < kDigitBits;
    const bool clean = (bits & ((1U << count) - 1)) == 0;
    return whole && clean ? std::optional(std::move(bytes)) : std::nullopt;
}

} // namespace Kestrona::Platform
