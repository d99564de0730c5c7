#include "platform/code_points.h"

#include <kestrona/unicode.h>

namespace Kestrona {

namespace {

using namespace Platform;

struct Utf8Step {
    char32_t code_point;
    std::size_t length;
    bool well_formed;
};

// What a lead byte promises: how many bytes follow, and the range of the first of them. The narrowed ranges keep out
// overlong forms, surrogates and everything above the last code point.
struct Utf8Lead {
    std::size_t followers;
    char32_t bits;
    unsigned char low = 0x80;
    unsigned char high = 0xbf;
};

constexpr Utf8Lead ReadLead(unsigned char lead) {
    if (lead >= 0xc2 && lead <= 0xdf) {
        return {1, lead & 0x1fU};
    }
    if (lead >= 0xe0 && lead <= 0xef) {
        return {2, lead & 0x0fU, static_cast<unsigned char>(lead == 0xe0 ? 0xa0 : 0x80),
                static_cast<unsigned char>(lead == 0xed ? 0x9f : 0xbf)};
    }
    if (lead >= 0xf0 && lead <= 0xf4) {
        return {3, lead & 0x07U, static_cast<unsigned char>(lead == 0xf0 ? 0x90 : 0x80),
                static_cast<unsigned char>(lead == 0xf4 ? 0x8f : 0xbf)};
    }
    return {0, kReplacementCharacter};
}

Utf8Step ReadUtf8(std::string_view bytes, std::size_t at) {
    const auto first = static_cast<unsigned char>(bytes[at]);
    if (first < 0x80) {
        return {first, 1, true};
    }
    Utf8Lead lead = ReadLead(first);
    if (lead.followers == 0) {
        return {kReplacementCharacter, 1, false};
    }
    for (std::size_t i = 1; i <= lead.followers; ++i) {
        const auto next = at + i < bytes.size() ? static_cast<unsigned char>(bytes[at + i]) : 0U;
        if (next < lead.low || next > lead.high) {
            return {kReplacementCharacter, i, false};
        }
        lead = {lead.followers, (lead.bits << 6) | (next & 0x3fU)};
    }
    return {lead.bits, lead.followers + 1, true};
}

constexpr char FollowByte(char32_t c, unsigned shift) {
    return static_cast<char>(0x80 | ((c >> shift) & 0x3f));
}

void AppendUtf8(std::string& bytes, char32_t c) {
    if (c < 0x80) {
        bytes += static_cast<char>(c);
    } else if (c < 0x800) {
        bytes += {static_cast<char>(0xc0 | (c >> 6)), FollowByte(c, 0)};
    } else if (c < kFirstSupplementary) {
        bytes += {static_cast<char>(0xe0 | (c >> 12)), FollowByte(c, 6), FollowByte(c, 0)};
    } else {
        bytes += {static_cast<char>(0xf0 | (c >> 18)), FollowByte(c, 12), FollowByte(c, 6), FollowByte(c, 0)};
    }
}

} // namespace

std::string ToUtf8(std::wstring_view text) {
    std::string bytes;
    bytes.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        const char32_t c = NextCodePoint(text, i);
        AppendUtf8(bytes, IsSurrogate(c) ? kReplacementCharacter : c);
    }
    return bytes;
}

std::wstring FromUtf8(std::string_view bytes) {
    std::wstring text;
    text.reserve(bytes.size());
    for (std::size_t at = 0; at < bytes.size();) {
        const Utf8Step step = ReadUtf8(bytes, at);
        text.push_back(static_cast<wchar_t>(step.code_point));
        at += step.length;
    }
    return text;
}

bool IsValidUtf8(std::string_view bytes, std::size_t* bad_offset) {
    std::size_t at = 0;
    bool well_formed = true;
    while (well_formed && at < bytes.size()) {
        const Utf8Step step = ReadUtf8(bytes, at);
        well_formed = step.well_formed;
        at += well_formed ? step.length : 0;
    }
    if (bad_offset != nullptr) {
        *bad_offset = at;
    }
    return well_formed;
}

} // namespace Kestrona
