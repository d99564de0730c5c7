#include "text/translation_writers.h"

#include <memory>

namespace Kestrona::Text {

namespace {

std::unique_ptr<TableDefinitionTranslationWriter> definition_writer;
std::unique_ptr<DatabaseTranslationWriter> database_writer;

ITranslationWriter& InstalledOrNull(ITranslationWriter* writer) {
    static NullTranslationWriter none;
    return *(writer != nullptr ? writer : &none);
}

} // namespace

void InstallTranslationWriters() {
    RemoveTranslationWriters();
    definition_writer = std::make_unique<TableDefinitionTranslationWriter>();
    database_writer = std::make_unique<DatabaseTranslationWriter>();
}

void RemoveTranslationWriters() {
    definition_writer.reset();
    database_writer.reset();
}

ITranslationWriter& DefinitionTexts() {
    return InstalledOrNull(definition_writer.get());
}

ITranslationWriter& DatabaseTexts() {
    return InstalledOrNull(database_writer.get());
}

} // namespace Kestrona::Text

using Kestrona::Text::DatabaseTexts;
using Kestrona::Text::DefinitionTexts;

void TranslationWriter_NewSection(const std::wstring& name) {
    DefinitionTexts().NewSection(name);
}

void TranslationWriter_AddEntry(const std::wstring& text, std::int32_t minimum_length) {
    DefinitionTexts().AddEntry(text, minimum_length);
}

void TranslationWriter_AddEntry(const wchar_t* text, std::int32_t minimum_length) {
    DefinitionTexts().AddEntry(text, minimum_length);
}

void TranslationWriter_AddEntry(const std::wstring& text) {
    DefinitionTexts().AddEntry(text);
}

void TranslationWriter_AddEntry(const wchar_t* text) {
    DefinitionTexts().AddEntry(text);
}

void TranslationWriter_Close() {
    Kestrona::Text::definition_writer.reset();
}

void DBTranslationWriter_NewSection(const std::wstring& name) {
    DatabaseTexts().NewSection(name);
}

void DBTranslationWriter_AddEntry(const std::wstring& text, std::int32_t minimum_length) {
    DatabaseTexts().AddEntry(text, minimum_length);
}

void DBTranslationWriter_AddEntry(const wchar_t* text, std::int32_t minimum_length) {
    DatabaseTexts().AddEntry(text, minimum_length);
}

void DBTranslationWriter_AddEntry(const std::wstring& text) {
    DatabaseTexts().AddEntry(text);
}

void DBTranslationWriter_AddEntry(const wchar_t* text) {
    DatabaseTexts().AddEntry(text);
}

void DBTranslationWriter_Close() {
    DatabaseTexts().Close();
}
