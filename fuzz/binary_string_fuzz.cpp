#include "fuzz.h"

#include <kestrona/binary_strings.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

// Any bytes read as a list of scrambled texts, 8-bit ones when the first byte is odd. What was read is written and read
// again.

namespace {

using namespace Kestrona::Fuzz;

// The texts up to the end marker or the first failure.
std::vector<std::wstring> ReadTexts(std::FILE* file, bool wide) {
    std::vector<std::wstring> texts;
    KSDLL_ResetChecksum();
    wchar_t* text = nullptr;
    while (KSDLL_ReadBinaryString(file, &text, wide ? 1 : 0) == kBinaryStringText) {
        texts.emplace_back(text != nullptr ? text : L"");
        std::free(text);
        text = nullptr;
    }
    Require(text == nullptr);
    return texts;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2) {
        return 0;
    }
    const File file(fmemopen(const_cast<std::uint8_t*>(data) + 1, size - 1, "rb"));
    const std::vector<std::wstring> texts = ReadTexts(file.get(), data[0] % 2 == 0);
    Require(texts.size() <= size / sizeof(std::int32_t));

    KSDLL_ResetChecksum();
    std::string bytes = BytesOf([&](std::FILE* copy) {
        for (const std::wstring& text : texts) {
            KSDLL_WriteBinaryString(copy, text.c_str());
        }
    });
    if (!bytes.empty()) {
        const File again(fmemopen(bytes.data(), bytes.size(), "rb"));
        Require(ReadTexts(again.get(), true) == texts);
    }
    return 0;
}
