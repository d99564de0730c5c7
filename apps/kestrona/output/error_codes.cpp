#include "output/error_codes.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <string>

namespace Kestrona::Tool {
namespace {

constexpr std::array kEntries{
    CodeEntry{Code::UnknownOption, 101, "The command line holds a word that means nothing there.",
              "A command, an option or an argument is not one that the tool knows.", "A slip of the pen.",
              "See 'kestrona --help'."},
    CodeEntry{Code::MissingArgument, 102, "The command line lacks a word.",
              "The command needs a further argument or option.", "An argument was forgotten.",
              "See 'kestrona COMMAND --help'."},
    CodeEntry{Code::BadArgument, 103, "An option or an argument has a value that it does not take.",
              "The value is none of the choices, is no number where one is needed, or two options exclude each other.",
              "A slip of the pen.", "See 'kestrona COMMAND --help'."},
    CodeEntry{Code::UnknownFormat, 104, "No format has this name.",
              "The command names a format that the definition does not have. Names and display names count.",
              "A slip of the pen, or another definition than the one that was meant.",
              "Use the name of a format; 'kestrona schema DEFINITION' lists them."},
    CodeEntry{Code::UnknownField, 105, "No field has this name.",
              "The command names a field that the format does not have, or one without values to show; in a name with "
              "dots, every piece but the last must be a reference.",
              "A slip of the pen, or a field of another format.",
              "Use the name of a field; 'kestrona schema DEFINITION TABLE' lists them."},
    CodeEntry{Code::UnknownDataset, 106, "The file has no dataset of this name.",
              "The option --dataset chooses among the records that a snapshot holds under several names.",
              "The snapshot was saved without this dataset, or the file is no snapshot.",
              "Leave out --dataset; 'kestrona info SNAPSHOT --tables' lists the datasets."},
    CodeEntry{Code::RecordsTwice, 107, "A snapshot was given together with folders of records.",
              "A snapshot brings its own records and takes no others.", "The option --data beside a snapshot.",
              "Leave out --data."},
    CodeEntry{Code::NoRecords, 108, "There are no records to work on.",
              "A definition, compiled or not, holds no records.", "The option --data was forgotten.",
              "Give some with --data FOLDER."},
    CodeEntry{Code::SameFile, 109, "A file would be read and written at once.",
              "The source and the target of the command are the same file, perhaps by a link.",
              "The target was left as the source.", "Name another file as the target."},
    CodeEntry{Code::BadNamedValue, 110, "A value is not of the form NAME=VALUE, or its name cannot be used.",
              "--dataset takes NAME=FOLDER and --add takes NAME=EXPRESSION, each name once.",
              "The equals sign is missing, or the name is given twice.", "Write NAME=VALUE with a name of its own."},
    CodeEntry{Code::BadCondition, 111, "A condition cannot be understood.",
              "--where takes a field, one of = < <= > >= and a value, or an expression that yields a number.",
              "A value that does not fit the field, or a name with a slip of the pen.",
              "Write FIELD=VALUE with a value as the field shows or stores it."},
    CodeEntry{Code::BadOrder, 112, "The records cannot be sorted like this.",
              "--order takes fields with one value for each record; --group-family needs a field with FAMILY.",
              "A slip of the pen, or the name of a matrix.", "Name fields of the format; :desc may follow a name."},
    CodeEntry{Code::BadTarget, 113, "The target of a track cannot be understood.",
              "track looks for FORMAT.FIELD, or for a field of a class with class:NAME.",
              "The format before the dot, or the class, does not exist.",
              "Write FORMAT.FIELD, or class:NAME with a class that 'kestrona schema' shows."},
    CodeEntry{Code::NoWay, 114, "No way leads from a format to the target.",
              "The references of the format, followed one behind the other, do not reach the field.",
              "The formats are not connected, or only by lists.", "Try --lists, which goes through lists, too."},
    CodeEntry{Code::WrongForStdout, 115, "The form of an export does not fit stdout.",
              "Several files, databases and workbooks cannot go into a stream.",
              "-o - beside sqlite, xlsx or several formats.",
              "Give --table for csv, choose json, or give a file or folder with -o."},
    CodeEntry{Code::NoTableList, 116, "The file has no list of tables.",
              "A compiled definition holds no records and thus no tables.", "--tables on a compiled definition.",
              "Leave out --tables."},
    CodeEntry{
        Code::UnknownCode, 117, "No error, warning or rule has this code.",
        "explain takes the codes that messages show in brackets, like KES-0104, and the names of the rules of check.",
        "A slip of the pen.", "See 'kestrona explain --all'."},

    CodeEntry{Code::CannotOpen, 1001, "A file cannot be opened.",
              "There is no such file, it is a folder, or the user may not read it.",
              "A slip of the pen, or another current folder.", "Check the path and the rights of the file."},
    CodeEntry{Code::CannotRead, 1002, "A file or a folder cannot be read.",
              "The system stopped reading, or it is not the kind of file that can be read.",
              "A path that does not exist, missing rights, or a failing disk.",
              "Check the path, its rights, and the disk."},
    CodeEntry{Code::CannotWrite, 1003, "A file or a folder cannot be written.",
              "What was to be written is not there, and a file that was there is unchanged.",
              "The folder does not exist, its rights are missing, or the disk is full.",
              "Check the folder, its rights, and the room on the disk."},
    CodeEntry{Code::WrongKind, 1004, "A file is of another kind than the command reads.",
              "The first bytes of the file are not those of such a file.", "Another file than the one that was meant.",
              "Give the kind of file that the message names."},
    CodeEntry{Code::WrongVersion, 1005, "A file has a version that is not read.",
              "The file was written by a program whose layout this one does not know.",
              "A compiled definition from another version of the program.",
              "Write the file again with this version, or use the program that wrote it."},
    CodeEntry{Code::Truncated, 1006, "A file ends too early.", "The file announces more than it holds.",
              "A copy or a download that was broken off.", "Copy the file again from where it is whole."},
    CodeEntry{Code::Damaged, 1007, "A file is damaged.", "Something in the file cannot be, or a checksum does not fit.",
              "Bytes were changed by a transfer as text, an editor, or a failing disk.",
              "Take the file from a backup, or write it again."},
    CodeEntry{Code::TooLarge, 1008, "A file would get too large.", "A snapshot holds at most 2 GiB.",
              "Very many records.", "Write fewer tables, or leave datasets out."},
    CodeEntry{Code::OutputFailed, 1009, "The output cannot be written.",
              "Writing to stdout failed, so what is there is not whole.",
              "A full disk, or a program in the pipe that stopped reading.",
              "Check the room on the disk and the program that reads the output."},
    CodeEntry{Code::FileInTheWay, 1010, "The file is there already.", "A key file is never replaced by accident.",
              "The command was run before.", "Give another name; --force replaces the file."},
    CodeEntry{Code::NeedsDefinition, 1011, "The command needs a definition in another form.",
              "check, compile and translate read the source; import reads a definition without records.",
              "A compiled definition or a snapshot was given.", "Give the source of the definition."},
    CodeEntry{Code::BadAuditLine, 1012, "A line belongs to no entry of an audit log.",
              "The line is skipped, and the entries around it are shown.",
              "The file is no audit log, was cut, or was edited by hand.", "Look at the line in the file."},

    CodeEntry{Code::BadDefinition, 2001, "The data module refuses a definition.",
              "The definition cannot be used, for the reason that the message gives.",
              "A fault that has no number of its own.",
              "Mend what the message names; 'kestrona check' shows the place."},
    CodeEntry{Code::BadTranslation, 2002, "A line of a list of translations cannot be understood.",
              "An entry is two texts in double quotes on lines of their own; the entry is skipped.",
              "A quote was deleted when the list was filled in.", "Close the text with a double quote."},
    CodeEntry{Code::UnusedTranslation, 2003, "A translation is of no use.",
              "The definition has no such text in this section, or an earlier entry translates it.",
              "The text was changed in the definition.", "Take the entry out, or correct its text."},

    CodeEntry{Code::NoFileForFormat, 3001, "A folder holds no file for any format.",
              "Records of a format NAME are read from NAME.csv or a file whose name ends in .NAME.csv.",
              "Another folder, or other file names.", "Name the files after the formats."},
    CodeEntry{Code::UnknownColumn, 3002, "A column belongs to no field.", "The column is left out.",
              "A slip of the pen in the heading, or a field that the definition no longer has.",
              "Give the column the name of a field."},
    CodeEntry{Code::RepeatedColumn, 3003, "A column stands twice in a heading.", "The first one is taken.",
              "Columns that were copied.", "Take one of them out."},
    CodeEntry{Code::BadCell, 3004, "A cell does not fit its field.", "The row of the cell is left out whole.",
              "A text in a column of numbers, or a date in another layout.",
              "Write the value as the field shows or stores it."},
    CodeEntry{Code::BadRow, 3005, "A row has another number of cells than its heading.", "The row is left out.",
              "A delimiter inside of a text that does not stand in quotes.",
              "Put texts with delimiters into double quotes."},
    CodeEntry{Code::BadKey, 3006, "A row has no key, or one that an earlier row has.",
              "Each record of a file needs a key of its own; the row is left out.", "A row that was copied.",
              "Give the row a key of its own."},
    CodeEntry{Code::TextTooLong, 3007, "A text is longer than its field allows.", "The row is left out.",
              "The length of the field in the definition.", "Shorten the text, or give the field a greater length."},
    CodeEntry{Code::WrongEncoding, 3008, "A text is not in the encoding of its file.", "The row is left out.",
              "A file that was saved as windows-1252 or UTF-16.",
              "Give the encoding of the file, such as --encoding windows-1252 or --encoding utf-16."},
    CodeEntry{Code::UnknownReference, 3009, "A text stands for no record, or for several.",
              "A reference can be written as the text of a record; this one stays unset.",
              "A slip of the pen, a record that is missing, or records that share a text.",
              "Write the key of the record."},
    CodeEntry{Code::BadMatrix, 3010, "A cell does not fit its list or matrix.", "The record keeps the defaults.",
              "Too few or too many values: the sizes follow from the records of other formats.",
              "Write as many values as the dimensions have; ; divides values and | rows."},
    CodeEntry{Code::DanglingReferences, 3011, "References lead to records that are not there.",
              "The keys are kept, and nothing is shown for them.", "Records that were deleted or not exported.",
              "Add the records, or correct the keys."},
    CodeEntry{Code::NothingWritten, 3012, "A snapshot was not written, because rows or cells were rejected.",
              "The lines above name them; a file that was there is unchanged.", "Cells that do not fit their fields.",
              "Mend the rows; --keep-going writes the snapshot without them."},
    CodeEntry{Code::OpenQuote, 3013, "A quoted cell has no end.", "The rest of the file cannot be divided into rows.",
              "A double quote inside of a text that is not doubled, or a file that was cut.",
              "Close the cell with a double quote, and double the quotes inside of it."},
    CodeEntry{Code::RepeatedKeys, 3014, "Records share a key.",
              "Of records with one key, the first is compared with the first, the second with the second.",
              "A key that is not UNIQUE.", "Give each record a key of its own."},
    CodeEntry{Code::TooManyRecords, 3015, "A format holds no more records.", "The row is left out.",
              "A file with more rows than records have numbers.", "Divide the data."},

    CodeEntry{Code::BadExpression, 4001, "An expression cannot be compiled.",
              "The caret stands below the place where it goes wrong.",
              "A bracket or an operator too few, or a name that is neither field nor function.",
              "Mend the expression at the caret; docs/expression-language.md tells the language."},

    CodeEntry{Code::NoKey, 5001, "Encrypted fields are used without a key.",
              "Texts of fields with ENCRYPTED can be read, compared and written with their key only.",
              "The option with the key was forgotten.",
              "Give one with --key-file, --ask-key, KESTRONA_KEY_FILE or KESTRONA_KEY."},
    CodeEntry{Code::UnusableKey, 5002, "A key or a pass phrase cannot be used.",
              "The first place that names a key counts; when it is of no use, no other is tried.",
              "A file that others may read, is of another user or machine, or is empty.",
              "Check the path and the rights of the key file, or make the key again with 'kestrona protect-key'."},
    CodeEntry{Code::WrongKey, 5003, "The key is another one than the texts were encrypted with.",
              "Decrypted with this key, a text is none.", "The key of another plant, or an older one.",
              "Give the key that was in force when the texts were saved."},
    CodeEntry{Code::DamagedSecret, 5004, "An encrypted text is damaged.",
              "What stands in the place of the text was not made by an encryption.", "A text that was cut or edited.",
              "Take the text from a backup."},
    CodeEntry{Code::EncryptedNumber, 5005, "An expression makes a number of an encrypted text.",
              "Such an expression would never be true.", "A comparison of an encrypted field inside of an expression.",
              "Compare it with --where 'FIELD=TEXT'."},
    CodeEntry{Code::NoPlainText, 5006, "What is to be encrypted is no text.", "Texts are UTF-8 without zero bytes.",
              "A file in another encoding.", "Convert the text to UTF-8."},

    CodeEntry{Code::NoFileName, 6001, "A format cannot give a file its name.",
              "csv writes a file for each format, and names of files hold no slash.",
              "A slash in the name of a format.", "Export the others with --table, or choose another form."},
    CodeEntry{Code::SheetTooSmall, 6002, "A format is too large for a sheet.",
              "A sheet holds 1,048,575 records and 16,384 fields; nothing is written.", "Very many records.",
              "Export the others with --table, or in another form."},
    CodeEntry{Code::FormNotBuilt, 6003, "The tool was built without this form.",
              "SQLite and libxlsxwriter are used where they were found when the tool was built.",
              "A build with KESTRONA_SQLITE=OFF or KESTRONA_XLSX=OFF.",
              "Choose csv or json, or build the tool with the library."},
    CodeEntry{Code::NoPrimaryKey, 6004, "A table has no PRIMARY KEY.",
              "Keys are missing or stand twice, which a database does not take; the records are all there.",
              "A key that is not UNIQUE.", "Give each record a key of its own."},
    CodeEntry{Code::TextsCut, 6005, "Texts are cut off.", "A cell of a workbook holds 32,767 characters.",
              "Very long texts.", "Choose another form to have them whole."},

    CodeEntry{Code::Unexpected, 9001, "Something went wrong that the tool has no sentence of its own for.",
              "The message is that of the library or the system.", "A fault of the tool.",
              "Report it with the command line."},
    CodeEntry{Code::OutOfMemory, 9002, "There is not enough memory.",
              "The system refused memory that the command needs; nothing was written.",
              "A plant that is larger than the machine, or a limit that was set for the process.",
              "Try again with fewer tables or more memory."},
};

constexpr std::size_t IndexOf(Code code) {
    return static_cast<std::size_t>(code);
}

constexpr bool IsWhole() {
    for (std::size_t i = 0; i < kEntries.size(); ++i) {
        const CodeEntry& entry = kEntries[i];
        const bool has_texts =
            !entry.title.empty() && !entry.meaning.empty() && !entry.cause.empty() && !entry.hint.empty();
        if (IndexOf(entry.code) != i || (i > 0 && entry.number <= kEntries[i - 1].number) || !has_texts) {
            return false;
        }
    }
    return kEntries.size() == IndexOf(Code::Count);
}

static_assert(IsWhole(), "one entry for each code, in the order of the numbers");

constexpr std::span<const CodeEntry> From(Code first, Code behind) {
    return std::span(kEntries).subspan(IndexOf(first), IndexOf(behind) - IndexOf(first));
}

constexpr CodeArea kAreas[] = {
    {"The command line", From(Code::UnknownOption, Code::CannotOpen)},
    {"Files", From(Code::CannotOpen, Code::BadDefinition)},
    {"Definitions", From(Code::BadDefinition, Code::NoFileForFormat)},
    {"Data", From(Code::NoFileForFormat, Code::BadExpression)},
    {"Expressions", From(Code::BadExpression, Code::NoKey)},
    {"Encryption", From(Code::NoKey, Code::NoFileName)},
    {"Export", From(Code::NoFileName, Code::Unexpected)},
    {"Everything else", From(Code::Unexpected, Code::Count)},
};

constexpr std::string_view kPrefix = "KES-";

} // namespace

const CodeEntry& EntryOf(Code code) {
    return kEntries[IndexOf(code)];
}

std::string CodeName(std::int32_t number) {
    return fmt::format("{}{:04}", kPrefix, number);
}

std::string CodeName(Code code) {
    return CodeName(EntryOf(code).number);
}

std::optional<std::int32_t> CodeNumber(std::string_view name) {
    const auto same = [](char a, char b) {
        return (a & ~0x20) == (b & ~0x20);
    };
    if (name.size() < kPrefix.size() || !std::equal(kPrefix.begin(), kPrefix.end(), name.begin(), same)) {
        return std::nullopt;
    }
    std::int32_t number = 0;
    const char* const end = name.data() + name.size();
    const auto [stop, failure] = std::from_chars(name.data() + kPrefix.size(), end, number);
    return failure == std::errc{} && stop == end ? std::optional(number) : std::nullopt;
}

std::span<const CodeArea> CodeAreas() {
    return kAreas;
}

} // namespace Kestrona::Tool
