#include "data/csv_reader.h"
#include "data/text_decoder.h"
#include "fuzz.h"
#include "memory_file.h"
#include "platform/code_page.h"

#include <kestrona/unicode.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Any bytes read as a delimited file. The first byte chooses the encoding, the next one after how many rows the reading
// stops. The texts are beside those of other decoders, the rows beside those of another reader.

namespace {

using namespace Kestrona;
using namespace Kestrona::Fuzz;
using namespace Kestrona::Tool;

constexpr std::array kEncodings{TextEncoding::Auto, TextEncoding::Utf8, TextEncoding::Utf16, TextEncoding::Windows1252};

// In parts of the given size, which may cut through characters.
std::string Decode(std::string_view bytes, TextEncoding encoding, std::size_t part) {
    TextDecoder decoder(encoding, bytes);
    std::string text;
    for (std::size_t at = 0; at < bytes.size(); at += part) {
        text += decoder.Decode(bytes.substr(at, part));
    }
    return text += decoder.Finish();
}

bool HasMark(std::string_view bytes) {
    return bytes.starts_with("\xEF\xBB\xBF") || bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF");
}

void CheckText(std::string_view bytes, TextEncoding encoding, const std::string& text) {
    Require(Decode(bytes, encoding, 1) == text && Decode(bytes, encoding, 3) == text);
    if (HasMark(bytes)) {
        return;
    }
    if (encoding == TextEncoding::Windows1252) {
        Require(text == ToUtf8(Platform::DecodeBytes(bytes, "windows-1252")));
    } else if (encoding == TextEncoding::Utf16) {
        const std::size_t big = bytes.size() > 1 && bytes[0] == '\0' && bytes[1] != '\0' ? 1 : 0;
        std::u16string units;
        for (std::size_t at = 0; at + 1 < bytes.size(); at += 2) {
            const auto low = static_cast<unsigned char>(bytes[at + big]);
            const auto high = static_cast<unsigned char>(bytes[at + 1 - big]);
            units += static_cast<char16_t>(high << 8U | low);
        }
        const std::string expected = ToUtf8(FromUtf16(units));
        // A half of a pair is no UTF-8, and neither is half a unit.
        Require(IsValidUtf8(text) ? text == expected
                                  : bytes.size() % 2 == 1 || expected.find("\xEF\xBF\xBD") != std::string::npos);
    } else {
        Require(text == bytes);
    }
}

struct Row {
    std::size_t line = 0;
    std::vector<std::string> cells;
};

// The reader once more, character by character: a quote at the beginning of a cell opens it, two in it are one, and one
// before a delimiter or a line's end closes it; any other one is text.
class Rows {
public:
    Rows(std::string_view text, CsvDialect dialect) : text_(text), dialect_(dialect) {}

    // Whether the last cell is closed.
    bool Read() {
        while (at_ < text_.size()) {
            if (text_[at_] == '\n' || text_[at_] == '\r') {
                Step();
            } else if (!ReadRow()) {
                return false;
            }
        }
        return true;
    }

    std::vector<Row> rows;

private:
    bool ReadRow() {
        Row row{line_, {}};
        do {
            auto cell = IsAt('"') && dialect_.quotes ? QuotedCell() : std::optional(PlainCell());
            if (!cell) {
                return false;
            }
            row.cells.push_back(*std::move(cell));
        } while (Take(dialect_.delimiter));
        rows.push_back(std::move(row));
        return true;
    }

    std::string PlainCell() {
        const std::size_t begin = at_;
        while (!EndsCell()) {
            ++at_;
        }
        return std::string(text_.substr(begin, at_ - begin));
    }

    std::optional<std::string> QuotedCell() {
        std::string cell;
        Step();
        while (at_ < text_.size()) {
            if (!IsAt('"')) {
                cell += Step();
                continue;
            }
            Step();
            if (EndsCell()) {
                return cell;
            }
            cell += '"';
            Take('"');
        }
        return std::nullopt;
    }

    bool IsAt(char c) const { return at_ < text_.size() && text_[at_] == c; }

    bool EndsCell() const { return at_ == text_.size() || IsAt(dialect_.delimiter) || IsAt('\r') || IsAt('\n'); }

    bool Take(char c) {
        if (!IsAt(c)) {
            return false;
        }
        ++at_;
        return true;
    }

    char Step() {
        if (text_[at_] == '\n') {
            ++line_;
        }
        return text_[at_++];
    }

    std::string_view text_;
    CsvDialect dialect_;
    std::size_t at_ = 0;
    std::size_t line_ = 1;
};

void CheckRows(const std::vector<CsvRow>& found, const std::vector<Row>& expected) {
    Require(std::ranges::equal(found, expected,
                               [](const CsvRow& a, const Row& b) { return a.line == b.line && a.cells == b.cells; }));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const MemoryFile file;
    if (size < 2) {
        return 0;
    }
    const TextEncoding encoding = kEncodings[data[0] % kEncodings.size()];
    const std::size_t most = data[1] == 0 ? SIZE_MAX : data[1];
    const std::string_view bytes(reinterpret_cast<const char*>(data) + 2, size - 2);
    const std::string text = Decode(bytes, encoding, SIZE_MAX / 2);
    CheckText(bytes, encoding, text);

    file.Replace(bytes.data(), bytes.size());
    std::vector<CsvRow> found;
    const CsvOutcome outcome = ReadCsv(file.Path(), encoding, [&](const CsvRow& row) {
        found.push_back(row);
        return found.size() < most;
    });
    Require(!outcome.unreadable && found.size() <= most);
    Rows expected(text, GuessDialect(text));
    const bool is_closed = expected.Read();
    if (expected.rows.size() >= most) {
        expected.rows.resize(most);
    } else {
        Require(outcome.error.empty() == is_closed);
    }
    CheckRows(found, expected.rows);
    return 0;
}
