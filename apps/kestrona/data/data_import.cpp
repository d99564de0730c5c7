#include "data/data_import.h"

#include "data/csv_reader.h"
#include "data/row_importer.h"
#include "output/progress.h"

#include <kestrona/classes.h>
#include <kestrona/unicode.h>

#include <dirent.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <memory>
#include <system_error>
#include <unordered_map>
#include <utility>

namespace Kestrona::Tool {
namespace {

using Data::MemoryResident::IMemoryResidentData;
namespace fs = std::filesystem;

constexpr std::string_view kExtension = ".csv";

/// Files of the folder by the table name that they may stand for.
using FilesByTable = std::unordered_map<std::string, fs::path>;

struct DirectoryCloser {
    void operator()(DIR* directory) const { closedir(directory); }
};

/// Null at the end, and with errno for a folder that cannot be read on.
const dirent* NextEntry(DIR* directory) {
    errno = 0;
    return readdir(directory); // cppcheck-suppress readdirCalled ; the folder is open here alone
}

// Not with an iterator of std::filesystem, which ends the program where there is no memory for a name.
bool ListFiles(const std::string& folder, FilesByTable& files, std::string& error) {
    const std::unique_ptr<DIR, DirectoryCloser> directory(opendir(folder.c_str()));
    std::vector<fs::path> paths;
    while (const dirent* const entry = directory != nullptr ? NextEntry(directory.get()) : nullptr) {
        if (fs::path path = fs::path(folder) / entry->d_name; path.extension() == kExtension) {
            paths.push_back(std::move(path));
        }
    }
    if (errno != 0) {
        error = std::strerror(errno);
        return false;
    }
    std::sort(paths.begin(), paths.end());
    for (const fs::path& path : paths) {
        files.insert_or_assign(path.stem().string(), path);
    }
    for (const fs::path& path : paths) {
        const std::string stem = path.stem().string();
        const std::size_t point = stem.rfind('.');
        if (point != std::string::npos) {
            files.emplace(stem.substr(point + 1), path);
        }
    }
    return true;
}

/// The bytes of a row in the file, about.
std::uintmax_t SizeOf(const CsvRow& row) {
    std::uintmax_t size = row.cells.size();
    for (const std::string& cell : row.cells) {
        size += cell.size();
    }
    return size;
}

std::uintmax_t SizeOf(const std::vector<FormatFile>& files) {
    std::uintmax_t size = 0;
    for (const FormatFile& file : files) {
        std::error_code failure;
        const std::uintmax_t bytes = fs::file_size(file.path, failure);
        size += failure ? 0 : bytes;
    }
    return size;
}

void ImportFile(IMemoryResidentData& store, ImportedFile& file, TextEncoding encoding, Progress& progress,
                std::vector<Rejection>& rejections) {
    store.SetCurrentDbSize(file.format, 0);
    store.InvalidateIndexes(file.format);
    RowImporter importer(store, file, rejections);
    const CsvOutcome outcome = ReadCsv(file.file, encoding, [&](const CsvRow& row) {
        importer.Take(row);
        progress.Advance(SizeOf(row));
        return true;
    });
    importer.Finish();
    file.unreadable = outcome.unreadable;
    if (!outcome.error.empty()) {
        file.error = Problem{outcome.unreadable ? Code::CannotRead : Code::OpenQuote, outcome.error};
    }
}

DanglingReferences CountDangling(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    DanglingReferences result{format, field, 0, 0};
    const std::int32_t target = store.GetDbTable(format, field);
    for (std::int32_t record = 0; record < store.GetCurrentDbSize(format); ++record) {
        const double key = store.GetDbValue(format, field, record);
        if (key == kUnset) {
            continue;
        }
        ++result.set;
        if (store.LookupKeyRecord(target, key) < 0) {
            ++result.dangling;
        }
    }
    return result;
}

bool IsReferenceBetweenData(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    return store.ClassDefined(format, field, Classes::kDatabase) && KeepsCells(store, format, field) &&
           !store.ClassDefined(format, field, Classes::kFreeFormat) &&
           store.GetCurrentDbSize(store.GetDbTable(format, field)) > 0;
}

} // namespace

std::vector<FormatFile> FindFiles(IMemoryResidentData& store, const std::string& folder, std::string& error) {
    std::vector<FormatFile> found;
    FilesByTable files;
    if (!ListFiles(folder, files, error)) {
        return found;
    }
    for (std::int32_t format = 0; format < store.GetFormatCount(); ++format) {
        const wchar_t* name = store.GetDbName(format);
        const auto file = name == nullptr ? files.end() : files.find(ToUtf8(name));
        if (file != files.end()) {
            found.push_back({format, file->second.string()});
        }
    }
    return found;
}

ImportReport ImportFolder(IMemoryResidentData& store, const std::string& folder, TextEncoding encoding) {
    ImportReport report;
    std::vector<FormatFile> files = FindFiles(store, folder, report.error);
    Progress progress("reading " + folder, SizeOf(files));
    for (FormatFile& found : files) {
        ImportedFile file;
        file.file = std::move(found.path);
        file.format = found.format;
        ImportFile(store, file, encoding, progress, report.rejections);
        report.files.push_back(std::move(file));
    }
    return report;
}

std::map<std::int32_t, const ImportedFile*> LastFiles(const std::vector<ImportedFile>& files) {
    std::map<std::int32_t, const ImportedFile*> last_files;
    for (const ImportedFile& file : files) {
        last_files[file.format] = &file;
    }
    return last_files;
}

std::vector<DanglingReferences> CheckReferences(IMemoryResidentData& store) {
    std::vector<DanglingReferences> results;
    for (std::int32_t format = 0; format < store.GetFormatCount(); ++format) {
        for (std::int32_t field = 0; field < store.GetDbFields(format); ++field) {
            if (IsReferenceBetweenData(store, format, field)) {
                results.push_back(CountDangling(store, format, field));
            }
        }
    }
    return results;
}

} // namespace Kestrona::Tool
