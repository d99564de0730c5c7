#pragma once

#include <kestrona/export.h>

#include <cstdint>
#include <cstdio>
#include <string>

/// \file
/// Lists of texts for a translator to fill in.
///
/// A list is a UTF-16 text file (little-endian, with a byte order mark, lines ending in a line feed): a banner, then
/// sections. A section begins with a line "#SECTION name". An entry is the source text in double quotes on one line, a
/// blank in double quotes on the next as the place for the translation, and an empty line. Texts stand as they are,
/// their own quotes and line feeds too.
///
/// A definition load with `ExecutionState::set_ExtractTranslations` writes "KSSERVER.LST" and "KS_PDB.LST" in the
/// current directory and adds the texts that it meets; the host adds its own and closes both lists after the load.

/// Takes the texts that are to be translated.
class KS_API ITranslationWriter {
public:
    virtual void NewSection(const std::wstring& name) = 0;
    /// Lists a text of at least `minimum_length` UTF-16 units. The same text may be listed again.
    virtual void AddEntry(const std::wstring& text, std::int32_t minimum_length) = 0;
    /// Null is skipped.
    virtual void AddEntry(const wchar_t* text, std::int32_t minimum_length) = 0;
    /// Lists a text unless it is empty.
    virtual void AddEntry(const std::wstring& text) = 0;
    virtual void AddEntry(const wchar_t* text) = 0;
    /// Nothing is listed after this.
    virtual void Close() = 0;
    virtual ~ITranslationWriter() = default;
};

/// Drops everything.
class KS_API NullTranslationWriter : public ITranslationWriter {
public:
    void NewSection(const std::wstring& name) override;
    void AddEntry(const std::wstring& text, std::int32_t minimum_length) override;
    void AddEntry(const wchar_t* text, std::int32_t minimum_length) override;
    void AddEntry(const std::wstring& text) override;
    void AddEntry(const wchar_t* text) override;
    void Close() override;
};

/// Writes a list file. A file that cannot be opened is no error: the writer drops everything then. A list that the
/// system fails to write whole is left an empty file when it is closed, without even the byte order mark.
class KS_API TranslationStreamWriter : public ITranslationWriter {
public:
    /// Replaces a file of this name.
    explicit TranslationStreamWriter(const std::wstring& file_name);
    TranslationStreamWriter(const TranslationStreamWriter&) = delete;
    TranslationStreamWriter& operator=(const TranslationStreamWriter&) = delete;
    /// Closes the file.
    ~TranslationStreamWriter() override;

    void NewSection(const std::wstring& name) override;
    void AddEntry(const std::wstring& text, std::int32_t minimum_length) override;
    void AddEntry(const wchar_t* text, std::int32_t minimum_length) override;
    void AddEntry(const std::wstring& text) override;
    void AddEntry(const wchar_t* text) override;
    void Close() override;

protected:
    /// Writes a text as it stands.
    void Write(const std::wstring& text);

private:
    std::wstring name_;
    std::FILE* file_;
};

/// Writes "KSSERVER.LST", the texts of the table definition.
class KS_API TableDefinitionTranslationWriter : public TranslationStreamWriter {
public:
    TableDefinitionTranslationWriter();
};

/// Writes "KS_PDB.LST", the texts of the database files.
class KS_API DatabaseTranslationWriter : public TranslationStreamWriter {
public:
    DatabaseTranslationWriter();
};

// The process's two writers. They are there from a definition load that writes the lists until they are closed;
// otherwise these drop everything.

KS_API void TranslationWriter_NewSection(const std::wstring& name);
KS_API void TranslationWriter_AddEntry(const std::wstring& text, std::int32_t minimum_length);
KS_API void TranslationWriter_AddEntry(const wchar_t* text, std::int32_t minimum_length);
KS_API void TranslationWriter_AddEntry(const std::wstring& text);
KS_API void TranslationWriter_AddEntry(const wchar_t* text);
/// Closes the list and frees its writer.
KS_API void TranslationWriter_Close();

KS_API void DBTranslationWriter_NewSection(const std::wstring& name);
KS_API void DBTranslationWriter_AddEntry(const std::wstring& text, std::int32_t minimum_length);
KS_API void DBTranslationWriter_AddEntry(const wchar_t* text, std::int32_t minimum_length);
KS_API void DBTranslationWriter_AddEntry(const std::wstring& text);
KS_API void DBTranslationWriter_AddEntry(const wchar_t* text);
/// Closes the list; its writer stays.
KS_API void DBTranslationWriter_Close();
