#include "data/text_decoder.h"

#include <algorithm>
#include <array>

namespace Kestrona::Tool {
namespace {

/// The characters of the bytes 0x80 to 0x9F in Windows-1252; all others have the number of their byte.
constexpr std::array<std::uint16_t, 32> kWindows1252{0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                                     0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                                     0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                                     0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view kLittleEndianMark = "\xFF\xFE";
constexpr std::string_view kBigEndianMark = "\xFE\xFF";
/// A byte that UTF-8 never has.
constexpr char kNoText = '\xFF';

/// Halves of surrogate pairs are written like any other code point, which UTF-8 forbids.
void Append(std::string& text, std::uint32_t code_point) {
    const auto byte = [&](std::uint32_t bits) {
        text += static_cast<char>(static_cast<unsigned char>(bits));
    };
    const auto tail = [&](unsigned shift) {
        byte(0x80 | ((code_point >> shift) & 0x3F));
    };
    if (code_point < 0x80) {
        byte(code_point);
    } else if (code_point < 0x800) {
        byte(0xC0 | (code_point >> 6));
        tail(0);
    } else if (code_point < 0x10000) {
        byte(0xE0 | (code_point >> 12));
        tail(6);
        tail(0);
    } else {
        byte(0xF0 | (code_point >> 18));
        tail(12);
        tail(6);
        tail(0);
    }
}

} // namespace

const std::map<std::string, TextEncoding>& TextEncodingNames() {
    static const std::map<std::string, TextEncoding> names{{"auto", TextEncoding::Auto},
                                                           {"utf-8", TextEncoding::Utf8},
                                                           {"utf-16", TextEncoding::Utf16},
                                                           {"windows-1252", TextEncoding::Windows1252}};
    return names;
}

TextDecoder::TextDecoder(TextEncoding encoding, std::string_view start)
    : encoding_(encoding),
      big_endian_(start.size() > 1 && start[0] == '\0' && start[1] != '\0') {
    if (start.starts_with(kUtf8Mark)) {
        encoding_ = TextEncoding::Utf8;
        mark_ = kUtf8Mark.size();
    } else if (start.starts_with(kLittleEndianMark) || start.starts_with(kBigEndianMark)) {
        encoding_ = TextEncoding::Utf16;
        big_endian_ = start.starts_with(kBigEndianMark);
        mark_ = kBigEndianMark.size();
    }
}

std::string_view TextDecoder::Decode(std::string_view bytes) {
    const std::size_t mark = std::min(mark_, bytes.size());
    bytes.remove_prefix(mark);
    mark_ -= mark;
    text_.clear();
    switch (encoding_) {
    case TextEncoding::Auto:
    case TextEncoding::Utf8:
        return bytes;
    case TextEncoding::Utf16:
        DecodeUtf16(bytes);
        break;
    case TextEncoding::Windows1252:
        DecodeWindows(bytes);
        break;
    }
    return text_;
}

std::string_view TextDecoder::Finish() {
    text_.clear();
    if (high_half_ != 0) {
        Append(text_, high_half_);
        high_half_ = 0;
    }
    if (!half_unit_.empty()) {
        text_ += kNoText;
        half_unit_.clear();
    }
    return text_;
}

void TextDecoder::DecodeUnit(std::uint32_t unit) {
    const bool is_low = unit >= 0xDC00 && unit < 0xE000;
    if (high_half_ != 0 && is_low) {
        Append(text_, 0x10000 + ((high_half_ - 0xD800) << 10) + (unit - 0xDC00));
        high_half_ = 0;
        return;
    }
    if (high_half_ != 0) {
        Append(text_, high_half_);
        high_half_ = 0;
    }
    if (unit >= 0xD800 && unit < 0xDC00) {
        high_half_ = unit;
    } else {
        Append(text_, unit);
    }
}

void TextDecoder::DecodeUtf16(std::string_view bytes) {
    for (const char c : bytes) {
        if (half_unit_.empty()) {
            half_unit_ = c;
            continue;
        }
        const std::uint32_t first = static_cast<unsigned char>(half_unit_[0]);
        const std::uint32_t second = static_cast<unsigned char>(c);
        half_unit_.clear();
        DecodeUnit(big_endian_ ? (first << 8) | second : (second << 8) | first);
    }
}

void TextDecoder::DecodeWindows(std::string_view bytes) {
    for (const char c : bytes) {
        const std::uint32_t byte = static_cast<unsigned char>(c);
        Append(text_, byte >= 0x80 && byte < 0xA0 ? kWindows1252[byte - 0x80] : byte);
    }
}

} // namespace Kestrona::Tool
