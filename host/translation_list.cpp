#include <kestrona/host/translation_list.h>
#include <kestrona/translation.h>
#include <kestrona/unicode.h>

#include <utility>

namespace Kestrona::Host {

namespace {

constexpr std::wstring_view kSection = L"#SECTION ";
// Each entry names its section, so that a longer name would cost more than the list's own size.
constexpr std::size_t kLongestSection = 256;
constexpr std::string_view kLittleEndianMark = "\xff\xfe";
constexpr std::string_view kBigEndianMark = "\xfe\xff";
constexpr std::string_view kUtf8Mark = "\xef\xbb\xbf";

// `low` is the place of the low byte in a unit. An odd byte at the end is dropped.
std::wstring DecodeUtf16(std::string_view bytes, std::size_t low) {
    std::u16string units;
    units.reserve(bytes.size() / 2);
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
        const auto low_byte = static_cast<unsigned char>(bytes[i + low]);
        const auto high_byte = static_cast<unsigned char>(bytes[i + 1 - low]);
        units += static_cast<char16_t>(high_byte << 8 | low_byte);
    }
    return FromUtf16(units);
}

std::wstring Decode(std::string_view bytes) {
    if (bytes.starts_with(kLittleEndianMark)) {
        return DecodeUtf16(bytes.substr(kLittleEndianMark.size()), 0);
    }
    if (bytes.starts_with(kBigEndianMark)) {
        return DecodeUtf16(bytes.substr(kBigEndianMark.size()), 1);
    }
    return FromUtf8(bytes.starts_with(kUtf8Mark) ? bytes.substr(kUtf8Mark.size()) : bytes);
}

// The lines without their ends. An editor that puts carriage returns at the ends of lines puts them everywhere; other
// ones belong to the texts.
std::vector<std::wstring_view> SplitLines(std::wstring_view text) {
    std::vector<std::wstring_view> lines;
    const std::wstring_view end = text.substr(0, text.find(L'\n')).ends_with(L'\r') ? L"\r\n" : L"\n";
    while (!text.empty()) {
        const std::size_t length = text.find(end);
        lines.push_back(text.substr(0, length));
        text.remove_prefix(length == std::wstring_view::npos ? text.size() : length + end.size());
    }
    return lines;
}

class ListReader {
public:
    ListReader(std::vector<std::wstring_view> lines, const std::string& file) : lines_(std::move(lines)), file_(file) {}

    TranslationList Read() {
        while (next_ < lines_.size()) {
            const std::wstring_view line = lines_[next_];
            if (line.starts_with(L'"')) {
                ReadEntry();
            } else {
                if (line.starts_with(kSection)) {
                    BeginSection(line.substr(kSection.size()));
                }
                ++next_;
            }
        }
        return std::move(list_);
    }

private:
    // What a line must have behind it for its quote to close the text.
    enum class Closing {
        BeforeTranslation,
        EndOfEntry
    };

    bool BeginsEntry(std::size_t line) const {
        return line < lines_.size() && (lines_[line].starts_with(L'"') || lines_[line].starts_with(kSection));
    }

    bool EndsText(std::size_t line, Closing closing) const {
        const std::size_t after = line + 1;
        if (closing == Closing::BeforeTranslation) {
            return after < lines_.size() && lines_[after].starts_with(L'"');
        }
        return after >= lines_.size() || lines_[after].empty() || BeginsEntry(after);
    }

    // An empty line before an entry or the end of the list.
    bool EndsUnclosed(std::size_t line) const {
        return lines_[line].empty() && (line + 1 >= lines_.size() || BeginsEntry(line + 1));
    }

    // Reads the text that the next line opens, and moves behind it. False when it is not closed.
    bool ReadText(std::wstring& text, Closing closing) {
        std::wstring_view line = lines_[next_].substr(1);
        while (!line.ends_with(L'"') || !EndsText(next_, closing)) {
            text += line;
            text += L'\n';
            if (++next_ >= lines_.size() || EndsUnclosed(next_)) {
                return false;
            }
            line = lines_[next_];
        }
        text += line.substr(0, line.size() - 1);
        ++next_;
        return true;
    }

    void ReadEntry() {
        TranslationListEntry entry{section_, {}, {}, static_cast<std::int32_t>(next_ + 1)};
        if (ReadText(entry.text, Closing::BeforeTranslation) && ReadText(entry.translation, Closing::EndOfEntry)) {
            list_.entries.push_back(std::move(entry));
        } else {
            Report(entry.line,
                   "entry is not closed; expected the text and its translation in double quotes on lines of "
                   "their own");
        }
    }

    void BeginSection(std::wstring_view name) {
        section_ = name.substr(0, kLongestSection);
        if (name.size() > kLongestSection) {
            Report(static_cast<std::int32_t>(next_ + 1), "section name is cut off after 256 characters");
        }
    }

    void Report(std::int32_t line, const char* message) {
        list_.diagnostics.push_back({Severity::Error, file_, line, 1, message});
    }

    std::vector<std::wstring_view> lines_;
    const std::string& file_;
    std::size_t next_ = 0;
    std::wstring section_;
    TranslationList list_;
};

} // namespace

TranslationList ParseTranslationList(std::string_view bytes, const std::string& file) {
    const std::wstring text = Decode(bytes);
    return ListReader(SplitLines(text), file).Read();
}

std::optional<TranslationList> ReadTranslationListFile(const std::string& path) {
    const auto bytes = ReadDefinitionFile(path);
    return bytes ? std::optional(ParseTranslationList(*bytes, path)) : std::nullopt;
}

std::size_t ApplyTranslationList(const TranslationList& list) {
    std::size_t count = 0;
    for (const TranslationListEntry& entry : list.entries) {
        if (entry.IsFilledIn()) {
            KSDLL_SetTranslationEntry(entry.text, entry.translation, TranslationEntryType::WholeText, entry.section);
            ++count;
        }
    }
    return count;
}

} // namespace Kestrona::Host
