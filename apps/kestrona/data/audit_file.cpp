#include "data/audit_file.h"

#include <kestrona/unicode.h>

#include <algorithm>
#include <optional>
#include <utility>

namespace Kestrona::Tool {
namespace {

// The forms of the lines:
//
//     Record N in format 'FORMAT' Created by 'USER' at TIME        or Changed
//     <tab>Field 'FIELD' Set to 'VALUE'                            of a created record
//     <tab>Field 'FIELD' Changed from 'VALUE' to 'VALUE'
//     <tab>Field 'FIELD' Set to                                    a list: an element a line behind it
//     <tab>Field 'FIELD' Changed from                              a list: elements, <tab>To, elements
//     <tab><tab>ELEMENT
constexpr std::string_view kRecord = "Record ";
constexpr std::string_view kInFormat = " in format '";
constexpr std::string_view kBy = " by '";
constexpr std::string_view kAt = "' at ";
constexpr std::string_view kField = "\tField '";
constexpr std::string_view kSet = "' Set to ";
constexpr std::string_view kChanged = "' Changed from ";
constexpr std::string_view kTo = "' to '";
constexpr std::string_view kListTo = "\tTo";
constexpr std::string_view kElement = "\t\t";
/// Bytes. The log cuts a user's name; a longer heading is none, since it would be kept once for each field.
constexpr std::size_t kLongestHeading = 4096;
constexpr const char* kNoAuditLine = "is no line of an audit log";
constexpr std::string_view kDigits = "0123456789";

bool Skip(std::string_view& text, std::string_view start) {
    if (!text.starts_with(start)) {
        return false;
    }
    text.remove_prefix(start.size());
    return true;
}

/// Takes what stands before the first `mark`, and the mark.
std::optional<std::string_view> TakeUntil(std::string_view& text, std::string_view mark) {
    const std::size_t place = text.find(mark);
    if (place == std::string_view::npos) {
        return std::nullopt;
    }
    const std::string_view taken = text.substr(0, place);
    text.remove_prefix(place + mark.size());
    return taken;
}

std::optional<AuditRow> ParseHeading(std::string_view line) {
    if (line.size() > kLongestHeading || !Skip(line, kRecord)) {
        return std::nullopt;
    }
    const std::size_t digits = std::min(line.find_first_not_of(kDigits), line.size());
    AuditRow row;
    row.record = line.substr(0, digits);
    line.remove_prefix(digits);
    if (digits == 0 || !Skip(line, kInFormat)) {
        return std::nullopt;
    }
    const std::size_t place = std::min(line.find("' Created by '"), line.find("' Changed by '"));
    if (place == std::string_view::npos) {
        return std::nullopt;
    }
    row.format = line.substr(0, place);
    line.remove_prefix(place + 2);
    row.what = *TakeUntil(line, kBy);
    // A user's name may hold anything, a time holds no quote.
    const std::size_t at = line.rfind(kAt);
    if (at == std::string_view::npos) {
        return std::nullopt;
    }
    row.user = line.substr(0, at);
    row.time = line.substr(at + kAt.size());
    return row;
}

/// One line of a field, values that go on in further lines included.
struct FieldLine {
    std::string field;
    std::string from;
    std::string to;
    bool is_list = false;
    bool is_set = false;
};

/// Takes the quotes around a value away. Without the last one the file was cut there.
bool Unquote(std::string_view& text) {
    if (text.size() < 2 || !text.starts_with('\'') || !text.ends_with('\'')) {
        return false;
    }
    text = text.substr(1, text.size() - 2);
    return true;
}

std::optional<FieldLine> ParseField(std::string_view line) {
    if (!Skip(line, kField)) {
        return std::nullopt;
    }
    FieldLine parsed;
    parsed.is_set = line.find(kSet) < line.find(kChanged);
    const auto name = TakeUntil(line, parsed.is_set ? kSet : kChanged);
    if (!name) {
        return std::nullopt;
    }
    parsed.field = *name;
    parsed.is_list = line.empty();
    if (parsed.is_list) {
        return parsed;
    }
    if (!Unquote(line)) {
        return std::nullopt;
    }
    if (!parsed.is_set) {
        const auto from = TakeUntil(line, kTo);
        if (!from) {
            return std::nullopt;
        }
        parsed.from = *from;
    }
    parsed.to = line;
    return parsed;
}

void AddElement(std::string& list, bool& is_first, std::string_view element) {
    list += is_first ? "" : ";";
    list += element;
    is_first = false;
}

class Reader {
public:
    AuditFile Read(std::string_view text) {
        while (!text.empty()) {
            const std::string_view line = text.substr(0, text.find('\n'));
            text.remove_prefix(std::min(line.size() + 1, text.size()));
            ++line_;
            Take(line.ends_with('\r') ? line.substr(0, line.size() - 1) : line);
        }
        Flush();
        FinishEntry();
        return std::move(file_);
    }

private:
    static bool Begins(std::string_view line) {
        return line.starts_with(kField) || line.starts_with(kElement) || line == kListTo ||
               ParseHeading(line).has_value();
    }

    /// Holds a line back until the next one shows that it was whole.
    void Take(std::string_view line) {
        if (has_pending_ && !Begins(line)) {
            pending_ += '\n';
            pending_ += line;
            return;
        }
        Flush();
        pending_ = line;
        pending_line_ = line_;
        has_pending_ = true;
    }

    void Flush() {
        if (!std::exchange(has_pending_, false)) {
            return;
        }
        const std::string line = std::move(pending_);
        const std::string_view first = std::string_view(line).substr(0, line.find('\n'));
        if (auto heading = ParseHeading(first)) {
            Begin(std::move(*heading));
            TellRest(line, first);
        } else if (!TakeInside(line)) {
            // Strange lines behind a whole one do not take it along.
            if (first.size() < line.size() && TakeInside(first)) {
                TellRest(line, first);
            } else {
                file_.faults.push_back({pending_line_, kNoAuditLine});
            }
            in_list_ = false;
        }
    }

    void Begin(AuditRow heading) {
        FinishEntry();
        entry_ = std::move(heading);
        rows_of_entry_ = 0;
        in_list_ = false;
    }

    void TellRest(std::string_view line, std::string_view first) {
        if (first.size() < line.size()) {
            file_.faults.push_back({pending_line_ + 1, kNoAuditLine});
        }
    }

    bool TakeInside(std::string_view line) {
        if (!entry_) {
            return false;
        }
        if (const auto field = ParseField(line)) {
            AddRow(*field);
            return true;
        }
        if (!in_list_) {
            return false;
        }
        if (line == kListTo && !list_has_to_) {
            list_has_to_ = true;
            is_first_element_ = true;
            return true;
        }
        if (!line.starts_with(kElement)) {
            return false;
        }
        AuditRow& row = file_.rows.back();
        AddElement(list_has_to_ ? row.to : row.from, is_first_element_, line.substr(kElement.size()));
        return true;
    }

    void AddRow(const FieldLine& field) {
        AuditRow row = *entry_;
        row.field = field.field;
        row.from = field.from;
        row.to = field.to;
        file_.rows.push_back(std::move(row));
        ++rows_of_entry_;
        in_list_ = field.is_list;
        list_has_to_ = field.is_set;
        is_first_element_ = true;
    }

    // A heading alone, where a file was cut, is still an entry.
    void FinishEntry() {
        if (entry_ && rows_of_entry_ == 0) {
            file_.rows.push_back(*entry_);
        }
    }

    AuditFile file_;
    std::size_t line_ = 0;
    std::string pending_;
    std::size_t pending_line_ = 0;
    bool has_pending_ = false;
    std::optional<AuditRow> entry_;
    std::size_t rows_of_entry_ = 0;
    bool in_list_ = false;
    bool list_has_to_ = false;
    bool is_first_element_ = true;
};

/// The code units behind the byte order mark, as UTF-8; nothing without a mark. A byte behind the last unit is dropped.
std::optional<std::string> Decode(std::string_view bytes) {
    const bool little = bytes.starts_with("\xFF\xFE");
    if (!little && !bytes.starts_with("\xFE\xFF")) {
        return std::nullopt;
    }
    std::u16string units;
    units.reserve(bytes.size() / 2);
    for (std::size_t i = 2; i + 1 < bytes.size(); i += 2) {
        const auto first = static_cast<unsigned char>(bytes[i]);
        const auto second = static_cast<unsigned char>(bytes[i + 1]);
        units += static_cast<char16_t>(little ? first | second << 8 : first << 8 | second);
    }
    return ToUtf8(FromUtf16(units));
}

} // namespace

AuditFile ReadAudit(std::string_view bytes) {
    const std::optional<std::string> text = Decode(bytes);
    if (!text) {
        return {{}, {{1, "does not begin with the byte order mark of UTF-16"}}};
    }
    return Reader().Read(*text);
}

} // namespace Kestrona::Tool
