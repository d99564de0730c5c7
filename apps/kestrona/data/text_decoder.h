#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>

/// \file
/// Turns the bytes of a text file into UTF-8, block by block.

namespace Kestrona::Tool {

enum class TextEncoding {
    Auto, ///< UTF-8.
    Utf8,
    Utf16, ///< Little endian, unless the first byte is a zero and the second is not.
    Windows1252
};

/// The names of the encodings on the command line.
[[nodiscard]] const std::map<std::string, TextEncoding>& TextEncodingNames();

/// A byte order mark at the start of the file stands before the chosen encoding and is skipped.
///
/// No byte is dropped: what is no text in UTF-8 passes as it is, and a half of a surrogate pair becomes three bytes
/// that are no UTF-8, so that whoever checks the text finds them in their place. The five bytes that Windows-1252 does
/// not define become the control characters of their number.
class TextDecoder {
public:
    /// `start`: the first bytes of the file, at least three if it has so many.
    TextDecoder(TextEncoding encoding, std::string_view start);

    /// The text of the next bytes, the first ones included. Valid until the next call; may be a part of `bytes`.
    [[nodiscard]] std::string_view Decode(std::string_view bytes);

    /// The text of what is left at the end of the file: a byte or a half of a pair that the end has cut off.
    [[nodiscard]] std::string_view Finish();

private:
    void DecodeUnit(std::uint32_t unit);
    void DecodeUtf16(std::string_view bytes);
    void DecodeWindows(std::string_view bytes);

    TextEncoding encoding_;
    std::size_t mark_ = 0; ///< Bytes of the byte order mark that are still to come.
    bool big_endian_ = false;
    std::string text_;
    std::string half_unit_;       ///< The first byte of a unit that the next block ends.
    std::uint32_t high_half_ = 0; ///< The first half of a surrogate pair, 0 for none.
};

} // namespace Kestrona::Tool
