#include "commands/snapshot_import.h"

#include "commands/file_problems.h"
#include "commands/import_folders.h"
#include "data/data_import.h"
#include "encryption.h"
#include "output/message.h"
#include "output/peak_memory.h"

#include <kestrona/records.h>
#include <kestrona/unicode.h>

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <system_error>

namespace Kestrona::Tool {
namespace {

using Data::MemoryResident::MemoryResidentData;

/// The name of a field with texts that wait for a key, "" where there is none.
std::string LockedField(MemoryResidentData& store, std::int32_t format, std::int32_t field) {
    if (!IsLocked(store, format, field)) {
        return {};
    }
    for (std::int32_t record = 0; record < store.GetCurrentDbSize(format); ++record) {
        if (!store.GetDbString(format, field, record).empty()) {
            return fmt::format("{}({})", ToUtf8(store.GetDbName(format)), ToUtf8(store.GetColumnName(format, field)));
        }
    }
    return {};
}

/// Without a key the store holds a placeholder in the place of the texts, which would be lost.
int RefuseLockedTexts(MemoryResidentData& store) {
    for (std::int32_t format = 0; format < store.GetFormatCount(); ++format) {
        for (std::int32_t field = 0; field < store.GetDbFields(format); ++field) {
            const std::string name = LockedField(store, format, field);
            if (!name.empty()) {
                TellError(Code::NoKey, "{} is encrypted, and there is no key", name);
                return kExitKey;
            }
        }
    }
    return kExitGood;
}

} // namespace

int SnapshotImport::Run() {
    if (!FindFormats() || !Read(options_.folders)) {
        return code_;
    }
    Host::SnapshotWriter writer(store_, options_.target, Blocks(), {options_.compress});
    AddAll(writer);
    for (const ImportedDataset& dataset : datasets_) {
        Restore();
        if (!Read({dataset.folder})) {
            return code_;
        }
        Add(writer, dataset);
    }
    return writer.Commit() ? Finish() : TellProblem(writer.Problem());
}

bool SnapshotImport::FindFormats() {
    for (ImportedDataset& dataset : datasets_) {
        std::string error;
        for (const FormatFile& file : FindFiles(store_, dataset.folder, error)) {
            dataset.formats.push_back(file.format);
        }
        if (!error.empty()) {
            TellError(Code::CannotRead, "the folder '{}' cannot be read: {}", dataset.folder, error);
            code_ = kExitUnreadableInput;
            return false;
        }
    }
    return true;
}

std::int32_t SnapshotImport::Blocks() const {
    std::size_t blocks = static_cast<std::size_t>(store_.GetFormatCount());
    for (const ImportedDataset& dataset : datasets_) {
        blocks += dataset.formats.size();
    }
    return static_cast<std::int32_t>(blocks);
}

/// Returns whether what the folders hold may be written.
bool SnapshotImport::Read(const std::vector<std::string>& folders) {
    const int code = ImportFolders(store_, folders, options_.encoding);
    code_ = std::max(code_, code);
    if (code == kExitUnreadableInput) {
        return false;
    }
    if (code != kExitGood && !options_.keep_going) {
        TellError(Code::NothingWritten, "'{}' is not written", options_.target);
        return false;
    }
    const int locked = RefuseLockedTexts(store_);
    code_ = std::max(code_, locked);
    return locked == kExitGood;
}

/// Brings the store back to the records that have no dataset.
void SnapshotImport::Restore() {
    for (std::int32_t format = 0; format < store_.GetFormatCount(); ++format) {
        KSDLL_Clear(store_, format);
    }
    ReimportFolders(store_, options_.folders, options_.encoding);
}

void SnapshotImport::AddAll(Host::SnapshotWriter& writer) {
    for (std::int32_t format = 0; format < store_.GetFormatCount(); ++format) {
        AddTable(writer, format, store_.GetDbCurrentDatasetName(format));
    }
}

void SnapshotImport::Add(Host::SnapshotWriter& writer, const ImportedDataset& dataset) {
    for (const std::int32_t format : dataset.formats) {
        AddTable(writer, format, dataset.name);
    }
}

void SnapshotImport::AddTable(Host::SnapshotWriter& writer, std::int32_t format, const std::wstring& dataset) {
    // A failure is told at the end.
    if (writer.AddTable(format, dataset)) {
        records_ += store_.GetCurrentDbSize(format);
    }
}

int SnapshotImport::Finish() const {
    std::error_code unknown;
    fmt::print(stderr, "'{}': {} records in {} tables, {} bytes; {}\n", options_.target, records_, Blocks(),
               std::filesystem::file_size(options_.target, unknown), PeakMemoryText());
    return code_;
}

} // namespace Kestrona::Tool
