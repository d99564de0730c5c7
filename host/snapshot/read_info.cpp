#include "snapshot/read_info.h"

#include "snapshot/file_problem.h"
#include "snapshot/layout.h"
#include "snapshot/part_reader.h"

#include <kestrona/types.h>
#include <kestrona/unicode.h>

#include <algorithm>
#include <utility>

namespace Kestrona::Host {

namespace Snapshots {

namespace {

std::string Number(std::int64_t number) {
    return std::to_string(number);
}

class InfoReader {
public:
    InfoReader(const SnapshotFile& file, FileProblem& problem) : file_(file), problem_(problem) {
        info_.compressed = file.IsCompressed();
        info_.file_size = file.SizeOnDisk();
        info_.uncompressed_size = file.Size();
    }

    bool Read() { return ReadMarker() && ReadHeader() && ReadDirectory() && ReadHeads(); }

    SnapshotInfo Take() { return std::move(info_); }

private:
    // A file that is too short for the marker may still be the beginning of one.
    bool ReadMarker() {
        std::string start(static_cast<std::size_t>(std::min(file_.Size(), static_cast<std::int64_t>(kMarker.size()))),
                          '\0');
        PartReader reader(file_, 0, file_.Size(), problem_);
        if (!reader.Read(start.data(), static_cast<std::int64_t>(start.size()))) {
            return false;
        }
        if (!kMarker.starts_with(start)) {
            problem_ = {FileFault::WrongMarker, file_.Path(), 0, QuotedBytes(start), QuotedBytes(kMarker)};
            return false;
        }
        return start.size() == kMarker.size() || Ends(0, static_cast<std::int64_t>(kMarker.size()));
    }

    bool ReadHeader() {
        PartReader reader(file_, kLayoutAt, file_.Size(), problem_);
        std::int32_t definition_size = 0;
        if (!reader.Read(info_.layout)) {
            return false;
        }
        if (info_.layout != kLayout) {
            problem_ = {FileFault::WrongVersion, file_.Path(), kLayoutAt, "layout " + Number(info_.layout),
                        "layout " + Number(kLayout)};
            return false;
        }
        if (!reader.Read(&info_.saved_at, sizeof info_.saved_at) ||
            !reader.Read(info_.version.data(), sizeof info_.version) || !reader.Read(table_count_) ||
            !reader.Read(info_.matrix_count) || !reader.Read(definition_size)) {
            return false;
        }
        info_.definition_size = definition_size;
        return CheckHeader(reader);
    }

    bool CheckHeader(PartReader& reader) {
        const auto* const negative = std::ranges::find_if(info_.version, [](std::int32_t part) { return part < 0; });
        if (negative != info_.version.end()) {
            return reader.Damaged(kVersionAt, "version part " + Number(*negative), "0 or above");
        }
        if (table_count_ < 0) {
            return reader.Damaged(kTableCountAt, Number(table_count_) + " tables", "0 or above");
        }
        if (info_.matrix_count < 0) {
            return reader.Damaged(kMatrixCountAt, Number(info_.matrix_count) + " matrices", "0 or above");
        }
        if (info_.definition_size < 0) {
            return reader.Damaged(kDefinitionSizeAt, "a definition of " + Bytes(info_.definition_size), "0 or above");
        }
        const std::int64_t needed = info_.definition_size + kOffsetSize * table_count_;
        return needed <= file_.Size() - kHeaderSize || Ends(kHeaderSize, needed);
    }

    bool ReadDirectory() {
        const std::int64_t begin = kHeaderSize + info_.definition_size;
        PartReader reader(file_, begin, file_.Size(), problem_);
        std::int64_t least = begin + kOffsetSize * table_count_;
        for (std::int32_t i = 0; i < table_count_; ++i) {
            const std::int64_t place = reader.Offset();
            std::int32_t offset = 0;
            if (!reader.Read(offset)) {
                return false;
            }
            if (offset < least || (i == 0 && offset > least)) {
                return reader.Damaged(place, "a table at " + Number(offset),
                                      i == 0 ? Number(least) : Number(least) + " or above");
            }
            if (offset >= file_.Size()) {
                return Ends(file_.Size(), offset - file_.Size() + 1);
            }
            info_.tables.emplace_back().offset = offset;
            least = offset + 1;
        }
        return table_count_ > 0 || least == file_.Size() ||
               reader.Damaged(least, Bytes(file_.Size() - least), "the end of a file without tables");
    }

    bool ReadHeads() {
        for (std::size_t i = 0; i < info_.tables.size(); ++i) {
            const std::int64_t end = i + 1 < info_.tables.size() ? info_.tables[i + 1].offset : file_.Size();
            if (!ReadTableHead(file_, end, info_.tables[i], problem_)) {
                return false;
            }
        }
        return true;
    }

    bool Ends(std::int64_t offset, std::int64_t needed) {
        problem_ = {FileFault::Truncated, file_.Path(), offset, Bytes(file_.Size() - offset), Bytes(needed)};
        return false;
    }

    const SnapshotFile& file_;
    FileProblem& problem_;
    SnapshotInfo info_;
    std::int32_t table_count_ = 0;
};

} // namespace

std::optional<SnapshotInfo> ReadInfo(const SnapshotFile& file, FileProblem& problem) {
    InfoReader reader(file, problem);
    return reader.Read() ? std::optional(reader.Take()) : std::nullopt;
}

std::optional<TableData> ReadTableHead(const SnapshotFile& file, std::int64_t end, SnapshotTable& table,
                                       FileProblem& problem) {
    PartReader reader(file, table.offset, end, problem);
    char has_dataset = 0;
    if (!reader.Read(table.name) || !reader.Read(table.fields) || !reader.Read(&has_dataset, 1) ||
        (has_dataset != 0 && !reader.Read(table.dataset))) {
        return std::nullopt;
    }
    const TableData data{reader.Offset(), end};
    if (!reader.Read(table.records)) {
        return std::nullopt;
    }
    if (table.fields < 0 || table.records < 0 || table.records >= kFirstScratchRecord) {
        reader.Damaged(table.offset,
                       "a table of " + Number(table.fields) + " fields and " + Number(table.records) + " records",
                       "0 or above and less than " + Number(kFirstScratchRecord) + " records");
        return std::nullopt;
    }
    table.size = end - reader.Offset();
    return data;
}

} // namespace Snapshots

std::optional<SnapshotInfo> ReadSnapshotInfo(const std::string& path, FileProblem& problem) {
    const auto file = Snapshots::SnapshotFile::Open(path, problem);
    return file != nullptr ? Snapshots::ReadInfo(*file, problem) : std::nullopt;
}

} // namespace Kestrona::Host
