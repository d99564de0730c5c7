#pragma once

#include "configuration/compiled/numbers.h"

#include <kestrona/translation_writer.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>

namespace Kestrona::Configuration::Compiled {

// A definition stream that is being read. Every reading operation is false after reporting that the stream is cut short
// or damaged.
class DefinitionInput {
public:
    // What is given is borrowed; `writer` may be null.
    DefinitionInput(std::FILE* file, bool wide, const std::wstring& file_name, ITranslationWriter* writer)
        : file_(file),
          wide_(wide),
          file_name_(file_name),
          writer_(writer) {}

    enum class TextResult : std::uint8_t {
        Text,
        End, // the end marker of a list
        Bad, // reported
    };

    // A text of a list that ends with a marker.
    TextResult ReadListText(std::wstring& text);

    // A text. The end marker of a list is damage here.
    [[nodiscard]] bool ReadText(std::wstring& text);

    // A text that a translator may want to see.
    [[nodiscard]] bool ReadShownText(std::wstring& text);

    // Reads texts and drops them.
    [[nodiscard]] bool SkipTexts(std::uint32_t count);

    template <typename T>
    [[nodiscard]] bool Read(T& value) {
        return ReadNumber(file_, value) || ReportCorrupt();
    }

    // A number of blocks of at least `block_size` bytes: no more than the rest of the file can hold.
    [[nodiscard]] bool ReadCount(std::int32_t& count, std::size_t block_size);

    // Says that the file cannot be read. Always false.
    [[nodiscard]] bool ReportCorrupt() const;

private:
    std::FILE* file_;
    bool wide_;
    const std::wstring& file_name_;
    ITranslationWriter* writer_;
};

} // namespace Kestrona::Configuration::Compiled
