#include "snapshot/load.h"

#include "resolve.h"
#include "snapshot/carried_texts.h"
#include "snapshot/file_problem.h"
#include "snapshot/file_window.h"
#include "snapshot/layout.h"
#include "snapshot/read_info.h"

#include <kestrona/binary_strings.h>
#include <kestrona/host_settings.h>
#include <kestrona/matrices.h>
#include <kestrona/records.h>
#include <kestrona/table_definition_stream.h>
#include <kestrona/table_storage.h>
#include <kestrona/unicode.h>

#include <algorithm>

namespace Kestrona::Host {

namespace Snapshots {

namespace {

using Data::MemoryResident::MemoryResidentData;

// Progress where the resolution ends; the tables take the rest.
constexpr std::int32_t kProgressResolved = 50;
constexpr std::int32_t kProgressLoaded = 100;

class Loader {
public:
    Loader(const SnapshotFile& file, MemoryResidentData& store, FileProblem& problem)
        : file_(file),
          store_(store),
          problem_(problem) {}

    // False with no problem told where the resolution has reported.
    bool LoadDefinition(const SnapshotInfo& info, IInformationFeedback* feedback) {
        return ReadDefinition(info) && ResolveRead(store_, feedback) && CheckTables(info);
    }

    bool LoadTables(const SnapshotInfo& info, const std::wstring& dataset, IInformationFeedback* feedback) {
        // A matrix takes four bytes at least, so a larger number is false and must not use up the ids of the process.
        const auto most = static_cast<std::int32_t>(file_.Size() / static_cast<std::int64_t>(sizeof(std::int32_t)));
        KSDLL_ReserveMatrixIds(std::min(info.matrix_count, most));
        const std::vector<const SnapshotTable*> chosen = Choose(info, dataset);
        std::int32_t loaded = 0;
        for (const SnapshotTable* const table : chosen) {
            if (!LoadTable(*table)) {
                return false;
            }
            ++loaded;
            if (feedback != nullptr) {
                const auto count = static_cast<std::int32_t>(chosen.size());
                feedback->SetProgress(kProgressResolved + (kProgressLoaded - kProgressResolved) * loaded / count);
            }
        }
        return true;
    }

    bool LoadTable(const SnapshotTable& table) {
        SnapshotTable head;
        head.offset = table.offset;
        const auto data = ReadTableHead(file_, file_.Size(), head, problem_);
        if (!data || !Fits(head)) {
            return false;
        }
        if (head.name != table.name || head.dataset != table.dataset) {
            return Damaged(table.offset, "table '" + ToUtf8(head.name) + "'", "table '" + ToUtf8(table.name) + "'");
        }
        const std::int64_t first = data->begin + static_cast<std::int64_t>(sizeof table.records);
        return ReadRecords(store_.FindFormatByName(table.name.c_str()), table,
                           {data->begin, std::clamp(first + table.size, first, data->end)});
    }

private:
    bool ReadDefinition(const SnapshotInfo& info) {
        FileWindow window(file_.Stream(), kHeaderSize, kHeaderSize + info.definition_size);
        if (window.Stream() == nullptr) {
            return CannotRead();
        }
        CarriedTexts texts(store_, nullptr);
        KSDLL_ResetChecksum();
        const bool is_read = ReadTableDefinitionFromStream(store_, window.Stream(), nullptr, true, true, true,
                                                           FromUtf8(file_.Path()), GetMessageCaption(), &texts);
        if (std::ferror(window.Stream()) != 0) {
            return CannotRead();
        }
        const std::int64_t position = window.Position();
        if (!is_read) {
            return Damaged(kHeaderSize + position, "a definition that cannot be read", "a table definition");
        }
        return position == window.Size() ||
               Damaged(kHeaderSize + position, "the end of the definition", Bytes(window.Size() - position) + " more");
    }

    bool CheckTables(const SnapshotInfo& info) {
        return std::ranges::all_of(info.tables, [this](const SnapshotTable& table) { return Fits(table); });
    }

    // Whether the definition has the table. Records of other fields would be taken for what they are not.
    bool Fits(const SnapshotTable& table) {
        const std::int32_t format = store_.FindFormatByName(table.name.c_str());
        const std::string found = "table '" + ToUtf8(table.name) + "'";
        if (format < 0) {
            return Damaged(table.offset, found, "a table of the definition");
        }
        const std::int32_t fields = store_.GetDbFields(format);
        return table.fields == fields ||
               Damaged(table.offset, found + " of " + std::to_string(table.fields) + " fields",
                       std::to_string(fields) + " fields");
    }

    // Of each table the block of the dataset, else its first one.
    static std::vector<const SnapshotTable*> Choose(const SnapshotInfo& info, const std::wstring& dataset) {
        std::vector<const SnapshotTable*> chosen;
        for (const SnapshotTable& table : info.tables) {
            const auto known = std::ranges::find(
                chosen, table.name, [](const SnapshotTable* other) -> auto& { return other->name; });
            if (known == chosen.end()) {
                chosen.push_back(&table);
            } else if (EqualIgnoringCase(table.dataset, dataset) && !EqualIgnoringCase((*known)->dataset, dataset)) {
                *known = &table;
            }
        }
        return chosen;
    }

    bool ReadRecords(std::int32_t format, const SnapshotTable& table, const TableData& data) {
        FileWindow window(file_.Stream(), data.begin, data.end);
        if (window.Stream() == nullptr) {
            return CannotRead();
        }
        KSDLL_Clear(store_, format);
        store_.SetDatasetName(format, table.dataset.c_str());
        Common::TableStorage::ReadTableData(store_, format, window.Stream());
        ForgetChanges(format);
        if (std::ferror(window.Stream()) != 0) {
            return CannotRead();
        }
        return CheckEnd(window, table, data);
    }

    bool CheckEnd(const FileWindow& window, const SnapshotTable& table, const TableData& data) {
        const std::string name = "table '" + ToUtf8(table.name) + "'";
        if (window.WasTooShort()) {
            const FileFault fault = data.end == file_.Size() ? FileFault::Truncated : FileFault::Damaged;
            problem_ = {fault, file_.Path(), data.end, "its end", "more records of " + name};
            return false;
        }
        const std::int64_t position = window.Position();
        return position == window.Size() ||
               Damaged(data.begin + position, Bytes(window.Size() - position) + " more", "the end of " + name);
    }

    // Reading texts and setting the name of the dataset have marked the records as changed. The first call takes these
    // marks away; the mark of the format as a whole goes only in a call that finds no others.
    void ForgetChanges(std::int32_t format) {
        store_.ResetDbChanged(format);
        store_.ResetDbChanged(format);
    }

    bool Damaged(std::int64_t offset, std::string found, std::string expected) {
        problem_ = {FileFault::Damaged, file_.Path(), offset, std::move(found), std::move(expected)};
        return false;
    }

    bool CannotRead() {
        problem_ = SystemProblem(FileFault::CannotRead, file_.Path());
        return false;
    }

    const SnapshotFile& file_;
    MemoryResidentData& store_;
    FileProblem& problem_;
};

} // namespace

bool Load(const std::string& path, MemoryResidentData& store, const std::wstring& dataset,
          IInformationFeedback* feedback, FileProblem& problem) {
    problem = {};
    const auto file = SnapshotFile::Open(path, problem);
    const auto info = file != nullptr ? ReadInfo(*file, problem) : std::nullopt;
    if (!info) {
        return false;
    }
    Loader loader(*file, store, problem);
    return loader.LoadDefinition(*info, feedback) && loader.LoadTables(*info, dataset, feedback);
}

} // namespace Snapshots

bool LoadSnapshot(const std::string& path, Data::MemoryResident::MemoryResidentData& store, const std::wstring& dataset,
                  FileProblem& problem) {
    return Snapshots::Load(path, store, dataset, nullptr, problem);
}

bool LoadSnapshotTable(const std::string& path, Data::MemoryResident::MemoryResidentData& store,
                       const SnapshotTable& table, FileProblem& problem) {
    problem = {};
    const auto file = Snapshots::SnapshotFile::Open(path, problem);
    return file != nullptr && Snapshots::Loader(*file, store, problem).LoadTable(table);
}

} // namespace Kestrona::Host
