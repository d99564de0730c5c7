// Implements: the writers of list files.
#include "platform/files.h"

#include <kestrona/translation_writer.h>
#include <kestrona/unicode.h>

#include <string>

namespace {

constexpr const wchar_t* kDefinitionList = L"KSSERVER.LST";
constexpr const wchar_t* kDatabaseList = L"KS_PDB.LST";
constexpr const wchar_t* kDefinitionTitle = L"Kestrona Translation script file for KESTRONA.KSTDF.\n\n";
constexpr const wchar_t* kDatabaseTitle = L"Kestrona Translation script file for DataBase Files.\n\n";
constexpr const wchar_t* kBanner = L"Format :- 'Original string'   'New String'\n\n"
                                   L"If 'New String' is ' ' then no translation is performed\n\n"
                                   L"Note that the ' character above is used instead of the double quote character\n"
                                   L"to prevent translation of these comments !\n\n";
constexpr const wchar_t* kByteOrderMark = L"\xfeff";
constexpr std::int32_t kNotEmpty = 1;

} // namespace

TranslationStreamWriter::TranslationStreamWriter(const std::wstring& file_name)
    : name_(file_name),
      file_(Kestrona::Platform::OpenFile(file_name, "wb")) {
    Write(kByteOrderMark);
}

TranslationStreamWriter::~TranslationStreamWriter() {
    TranslationStreamWriter::Close();
}

void TranslationStreamWriter::Write(const std::wstring& text) {
    if (file_ == nullptr) {
        return;
    }
    std::string bytes;
    const std::u16string units = Kestrona::ToUtf16(text);
    bytes.reserve(units.size() * 2);
    for (const char16_t unit : units) {
        bytes += static_cast<char>(unit & 0xff);
        bytes += static_cast<char>(unit >> 8);
    }
    std::fwrite(bytes.data(), 1, bytes.size(), file_); // the file remembers a failure until it is closed
}

void TranslationStreamWriter::NewSection(const std::wstring& name) {
    Write(L"#SECTION " + name + L'\n');
}

void TranslationStreamWriter::AddEntry(const std::wstring& text, std::int32_t minimum_length) {
    if (minimum_length <= 0 || Kestrona::Utf16Length(text) >= static_cast<std::size_t>(minimum_length)) {
        Write(L'"' + text + L"\"\n\" \"\n\n");
    }
}

void TranslationStreamWriter::AddEntry(const wchar_t* text, std::int32_t minimum_length) {
    if (text != nullptr) {
        TranslationStreamWriter::AddEntry(std::wstring(text), minimum_length);
    }
}

void TranslationStreamWriter::AddEntry(const std::wstring& text) {
    AddEntry(text, kNotEmpty);
}

void TranslationStreamWriter::AddEntry(const wchar_t* text) {
    AddEntry(text, kNotEmpty);
}

void TranslationStreamWriter::Close() {
    if (file_ != nullptr) {
        const bool has_failed = std::ferror(file_) != 0;
        if (std::fclose(file_) != 0 || has_failed) {
            const Kestrona::Platform::FileHandle emptied(Kestrona::Platform::OpenFile(name_, "wb"));
        }
        file_ = nullptr;
    }
}

TableDefinitionTranslationWriter::TableDefinitionTranslationWriter() : TranslationStreamWriter(kDefinitionList) {
    Write(kDefinitionTitle);
    Write(kBanner);
}

DatabaseTranslationWriter::DatabaseTranslationWriter() : TranslationStreamWriter(kDatabaseList) {
    Write(kDatabaseTitle);
    Write(kBanner);
}

void NullTranslationWriter::NewSection(const std::wstring&) {}

void NullTranslationWriter::AddEntry(const std::wstring&, std::int32_t) {}

void NullTranslationWriter::AddEntry(const wchar_t*, std::int32_t) {}

void NullTranslationWriter::AddEntry(const std::wstring&) {}

void NullTranslationWriter::AddEntry(const wchar_t*) {}

void NullTranslationWriter::Close() {}
