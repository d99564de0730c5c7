#include "configuration/compiled/definition_input.h"

#include "platform/file_reading.h"
#include "platform/wide_c_string.h"

#include <kestrona/binary_strings.h>
#include <kestrona/compiled_configuration.h>

namespace Kestrona::Configuration::Compiled {

namespace {

// UTF-16 units. A shorter text has nothing to translate.
constexpr std::int32_t kShortestShownText = 2;

} // namespace

DefinitionInput::TextResult DefinitionInput::ReadListText(std::wstring& text) {
    wchar_t* read = nullptr;
    const std::int32_t result = KSDLL_ReadBinaryString(file_, &read, wide_ ? 1 : 0);
    if (result != kBinaryStringText) {
        return result == kBinaryStringEnd ? TextResult::End : TextResult::Bad;
    }
    const Platform::OwnedWide owned(read);
    text = read == nullptr ? L"" : read;
    return TextResult::Text;
}

bool DefinitionInput::ReadText(std::wstring& text) {
    const TextResult result = ReadListText(text);
    return result == TextResult::Text || (result == TextResult::End && ReportCorrupt());
}

bool DefinitionInput::ReadShownText(std::wstring& text) {
    if (!ReadText(text)) {
        return false;
    }
    if (writer_ != nullptr) {
        writer_->AddEntry(text.c_str(), kShortestShownText);
    }
    return true;
}

bool DefinitionInput::SkipTexts(std::uint32_t count) {
    std::wstring dropped;
    for (std::uint32_t i = 0; i < count; ++i) {
        if (!ReadText(dropped)) {
            return false;
        }
    }
    return true;
}

bool DefinitionInput::ReadCount(std::int32_t& count, std::size_t block_size) {
    if (!Read(count)) {
        return false;
    }
    const std::size_t most = Platform::BytesLeft(file_) / block_size;
    return (count >= 0 && static_cast<std::size_t>(count) <= most) || ReportCorrupt();
}

bool DefinitionInput::ReportCorrupt() const {
    CommonCompiledConfigFunctions::DisplayGenericUnableToReadCompiledFileMessage(file_name_);
    return false;
}

} // namespace Kestrona::Configuration::Compiled
