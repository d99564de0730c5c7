#include "data/csv_reader.h"

#include "data/open_file.h"

#include <csv.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>

namespace Kestrona::Tool {
namespace {

/// Of two that stand equally often the first is taken.
constexpr std::string_view kDelimiters = ",\t;|";
constexpr std::size_t kBlock = std::size_t{1} << 16;
/// libcsv's parser state between two rows.
constexpr int kNoRowBegun = 0;
/// libcsv's parser state inside a cell; in a quoted one, its closing quote has not come.
constexpr int kCellBegun = 2;

/// Makes rows of text that comes in blocks. libcsv takes apart what may hold quotes; it cannot do without a quote
/// character, so what has none is split here.
class RowCollector {
public:
    RowCollector(const CsvDialect& dialect, const std::function<bool(const CsvRow&)>& take)
        : dialect_(dialect),
          take_(take) {
        csv_init(&parser_, CSV_APPEND_NULL);
        csv_set_delim(&parser_, static_cast<unsigned char>(dialect.delimiter));
        // Blanks belong to a cell.
        csv_set_space_func(&parser_, [](unsigned char) { return 0; });
    }

    RowCollector(const RowCollector&) = delete;
    RowCollector& operator=(const RowCollector&) = delete;

    ~RowCollector() { csv_free(&parser_); }

    /// Feeds a block line by line, so that a row knows on which line it began. Returns false on a malformed file.
    bool Feed(std::string_view block) {
        while (!block.empty() && !stopped_) {
            const std::size_t end = block.find('\n');
            const std::string_view line = block.substr(0, end == std::string_view::npos ? block.size() : end + 1);
            if (!dialect_.quotes) {
                Split(line);
            } else if (csv_parse(&parser_, line.data(), line.size(), OnCell, OnRow, this) != line.size()) {
                return false;
            }
            if (end != std::string_view::npos) {
                ++line_;
            }
            if (!IsRowBegun()) {
                next_row_line_ = line_;
            }
            block.remove_prefix(line.size());
        }
        return true;
    }

    /// Ends the last row. Returns false when it ends inside a quoted cell; such a row is not handed on.
    bool Finish() {
        if (stopped_) {
            return true;
        }
        if (!dialect_.quotes) {
            EndPlainRow();
            return true;
        }
        if (parser_.pstate == kCellBegun && parser_.quoted != 0) {
            return false;
        }
        return csv_fini(&parser_, OnCell, OnRow, this) == 0;
    }

    [[nodiscard]] bool Stopped() const { return stopped_; }

    [[nodiscard]] std::size_t RowStart() const { return row_.cells.empty() ? next_row_line_ : row_.line; }

private:
    static void OnCell(void* data, std::size_t size, void* self) {
        static_cast<RowCollector*>(self)->AddCell({static_cast<const char*>(data), size});
    }

    static void OnRow(int, void* self) { static_cast<RowCollector*>(self)->EndRow(); }

    [[nodiscard]] bool IsRowBegun() const {
        return dialect_.quotes ? parser_.pstate != kNoRowBegun : !cell_.empty() || !row_.cells.empty();
    }

    void Split(std::string_view line) {
        const std::array ends{dialect_.delimiter, '\r', '\n'};
        while (!line.empty()) {
            const std::size_t size = std::min(line.size(), line.find_first_of({ends.data(), ends.size()}));
            cell_ += line.substr(0, size);
            if (size == line.size()) {
                return;
            }
            if (line[size] == dialect_.delimiter) {
                EndPlainCell();
            } else {
                EndPlainRow();
            }
            line.remove_prefix(size + 1);
        }
    }

    void EndPlainCell() {
        AddCell(cell_);
        cell_.clear();
    }

    void EndPlainRow() {
        if (IsRowBegun()) {
            EndPlainCell();
            EndRow();
        }
    }

    void AddCell(std::string_view text) {
        // A quoted cell may end lines below; its row began where its first cell was fed.
        if (row_.cells.empty()) {
            row_.line = next_row_line_;
        }
        row_.cells.emplace_back(text);
    }

    /// A carriage return alone ends a row, too, so the next one may begin on the same line.
    void EndRow() {
        if (!row_.cells.empty() && !stopped_) {
            stopped_ = !take_(row_);
        }
        row_.cells.clear();
        next_row_line_ = line_;
    }

    const CsvDialect dialect_;
    const std::function<bool(const CsvRow&)>& take_;
    csv_parser parser_{};
    std::string cell_; ///< What has been read of a cell without quotes.
    CsvRow row_;
    std::size_t line_ = 1;
    std::size_t next_row_line_ = 1;
    bool stopped_ = false;
};

/// Whether a quoted cell ends with this quote: a delimiter or the end of the line stands behind it.
bool EndsCell(std::string_view line, std::size_t quote) {
    return quote + 1 >= line.size() || kDelimiters.find(line[quote + 1]) != std::string_view::npos ||
           line[quote + 1] == '\r';
}

/// Where the cell that begins with a quote at `place` ends.
std::size_t ClosingQuote(std::string_view line, std::size_t place) {
    std::size_t end = line.find('"', place + 1);
    while (end != std::string_view::npos && !EndsCell(line, end)) {
        const bool is_doubled = line[end + 1] == '"';
        end = line.find('"', end + (is_doubled ? 2 : 1));
    }
    return end;
}

/// Takes out the cells of a line that stand in quotes: the delimiters in them are text. A quote that nothing closes is
/// text itself, and so is every later one.
std::string WithoutQuotedCells(std::string_view line) {
    std::string rest;
    bool has_quoted = true;
    for (std::size_t place = 0; place < line.size(); ++place) {
        const bool begins = place == 0 || kDelimiters.find(line[place - 1]) != std::string_view::npos;
        if (has_quoted && begins && line[place] == '"') {
            const std::size_t end = ClosingQuote(line, place);
            has_quoted = end != std::string_view::npos;
            place = has_quoted ? end : place;
        } else {
            rest += line[place];
        }
    }
    return rest;
}

} // namespace

CsvDialect GuessDialect(std::string_view start) {
    const std::string line = WithoutQuotedCells(start.substr(0, start.find('\n')));
    CsvDialect dialect;
    std::ptrdiff_t most = 0;
    for (const char candidate : kDelimiters) {
        const std::ptrdiff_t count = std::count(line.begin(), line.end(), candidate);
        if (count > most) {
            most = count;
            dialect.delimiter = candidate;
        }
    }
    dialect.quotes = dialect.delimiter != '\t';
    return dialect;
}

CsvOutcome ReadCsv(const std::string& path, TextEncoding encoding, const std::function<bool(const CsvRow&)>& take) {
    const OpenFile file(std::fopen(path.c_str(), "rb"));
    if (!file) {
        return {std::strerror(errno), true};
    }
    std::vector<char> block(kBlock);
    std::size_t size = std::fread(block.data(), 1, block.size(), file.get());
    TextDecoder decoder(encoding, {block.data(), size});
    std::string_view text = decoder.Decode({block.data(), size});
    RowCollector rows(GuessDialect(text), take);
    bool sound = rows.Feed(text);
    while (sound && !rows.Stopped() && (size = std::fread(block.data(), 1, block.size(), file.get())) > 0) {
        sound = rows.Feed(decoder.Decode({block.data(), size}));
    }
    if (std::ferror(file.get()) != 0) {
        return {"the file cannot be read to its end", true};
    }
    sound = sound && rows.Feed(decoder.Finish());
    if (!sound || !rows.Finish()) {
        return {"line " + std::to_string(rows.RowStart()) + ": a quoted cell has no closing quote", false};
    }
    return {};
}

} // namespace Kestrona::Tool
