#include "snapshot/carried_texts.h"
#include "snapshot/file_problem.h"
#include "snapshot/layout.h"
#include "snapshot/table_block.h"

#include <kestrona/binary_strings.h>
#include <kestrona/classes.h>
#include <kestrona/data_compressor.h>
#include <kestrona/matrices.h>
#include <kestrona/table_definition_stream.h>
#include <kestrona/unicode.h>
#include <kestrona/version.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <utility>
#include <vector>

namespace Kestrona::Host {

using Data::MemoryResident::MemoryResidentData;
using DataCompressor::DataCompressor;
using Snapshots::kMaxSize;
using Snapshots::SystemProblem;

namespace {

std::int64_t MillisecondsNow() {
    using std::chrono::milliseconds;
    return std::chrono::duration_cast<milliseconds>(std::chrono::system_clock::now().time_since_epoch()).count();
}

template <typename T>
void Write(std::FILE* file, const T& value) {
    std::fwrite(&value, sizeof value, 1, file);
}

void WriteHeader(std::FILE* file, std::int32_t tables) {
    constexpr std::array<std::int32_t, 4> kVersion{KESTRONA_VERSION_MAJOR, KESTRONA_VERSION_MINOR,
                                                   KESTRONA_VERSION_PATCH, 0};
    constexpr std::int32_t kKnownLater = 0;
    std::fwrite(Snapshots::kMarker.data(), Snapshots::kMarker.size(), 1, file);
    Write(file, Snapshots::kLayout);
    Write(file, MillisecondsNow());
    Write(file, kVersion);
    Write(file, tables);
    Write(file, kKnownLater); // matrices
    Write(file, kKnownLater); // size of the definition
}

// The first format that a snapshot cannot name, -1 for none.
std::int32_t NamelessFormat(MemoryResidentData& store) {
    for (std::int32_t format = 0; format < store.GetFormatCount(); ++format) {
        const wchar_t* const name = store.GetDbName(format);
        if (name == nullptr || *name == L'\0') {
            return format;
        }
    }
    return -1;
}

// While it lives, the fields with a string default are not marked as such, as in a definition that was just read. The
// default value of a marked field is the one that its text stands for; in a snapshot it would become the value of every
// cell that has none.
class UnmarkedStringDefaults {
public:
    explicit UnmarkedStringDefaults(MemoryResidentData& store) : store_(store) {
        for (std::int32_t format = 0; format < store.GetFormatCount(); ++format) {
            for (std::int32_t field = 0; field < store.GetDbFields(format); ++field) {
                if (store.ClassDefined(format, field, Classes::kStringDefault)) {
                    store.RemoveDbClass(format, field, Classes::kStringDefault);
                    marked_.push_back({format, field});
                }
            }
        }
    }

    UnmarkedStringDefaults(const UnmarkedStringDefaults&) = delete;
    UnmarkedStringDefaults& operator=(const UnmarkedStringDefaults&) = delete;

    ~UnmarkedStringDefaults() {
        for (const TableColumn& column : marked_) {
            store_.AddDbClass(column.format, column.field, Classes::kStringDefault);
        }
    }

private:
    MemoryResidentData& store_;
    std::vector<TableColumn> marked_;
};

} // namespace

struct SnapshotWriter::State {
    MemoryResidentData& store;
    std::string path;
    std::int32_t tables;
    SnapshotOptions options;
    SafeFile draft;
    std::int64_t directory = 0;
    std::vector<std::int32_t> offsets;
    bool is_done = false;
    FileProblem problem;

    [[nodiscard]] bool IsGood() const { return problem.fault == FileFault::None; }

    [[nodiscard]] std::int64_t Position() const { return std::ftell(draft.File()); }

    bool Fail(FileProblem found) {
        problem = std::move(found);
        return false;
    }

    bool FailWith(SafeFile& file) { return Fail({FileFault::CannotWrite, path, {}, ToUtf8(file.Error()), ""}); }

    bool FailWith(std::string reason) { return Fail({FileFault::CannotWrite, path, {}, std::move(reason), ""}); }

    // Whether all is well with what has been written so far.
    bool Check() {
        if (std::ferror(draft.File()) != 0) {
            return !draft.Commit() && FailWith(draft); // after a failed write `Commit` fails, and finds the reason
        }
        const std::int64_t size = Position();
        if (size > kMaxSize) {
            return Fail(
                {FileFault::TooLarge, path, {}, Snapshots::Bytes(size), "at most " + Snapshots::Bytes(kMaxSize)});
        }
        return size >= 0 || Fail(SystemProblem(FileFault::CannotWrite, path));
    }

    void Begin() {
        if (!draft.IsOpen()) {
            FailWith(draft);
            return;
        }
        if (const std::int32_t format = NamelessFormat(store); format >= 0) {
            FailWith("format " + std::to_string(format) + " has no name");
            return;
        }
        WriteHeader(draft.File(), tables);
        WriteDefinition();
    }

    void WriteDefinition() {
        const UnmarkedStringDefaults unmarked(store);
        CarriedTexts texts(store, nullptr);
        KSDLL_ResetChecksum();
        WriteTableDefinitionToStream(store, L"", L"", draft.File(), &texts);
        directory = Position();
        const std::vector<char> room(static_cast<std::size_t>(Snapshots::kOffsetSize * tables));
        if (Check() && !room.empty()) {
            std::fwrite(room.data(), room.size(), 1, draft.File());
            Check();
        }
    }

    bool AddTable(std::int32_t format, const std::wstring& dataset) {
        if (!IsGood()) {
            return false;
        }
        if (is_done || offsets.size() == static_cast<std::size_t>(tables)) {
            return FailWith("more than " + std::to_string(tables) + " tables");
        }
        if (format < 0 || format >= store.GetFormatCount()) {
            return FailWith("there is no format " + std::to_string(format));
        }
        offsets.push_back(static_cast<std::int32_t>(Position()));
        Snapshots::WriteTable(store, format, dataset, draft.File());
        return Check();
    }

    // Puts in what was not known before the end.
    bool Complete() {
        if (offsets.size() != static_cast<std::size_t>(tables)) {
            return FailWith(std::to_string(offsets.size()) + " tables instead of " + std::to_string(tables));
        }
        if (std::fseek(draft.File(), Snapshots::kMatrixCountAt, SEEK_SET) == 0) {
            Write(draft.File(), GetTotalMatrixCount());
            Write(draft.File(), static_cast<std::int32_t>(directory - Snapshots::kHeaderSize)); // the definition's size
        }
        if (std::fseek(draft.File(), directory, SEEK_SET) == 0 && !offsets.empty()) {
            std::fwrite(offsets.data(), sizeof offsets[0], offsets.size(), draft.File());
        }
        return Check() && (std::fflush(draft.File()) == 0 || Check());
    }

    bool Commit() {
        if (!IsGood() || std::exchange(is_done, true) || !Complete()) {
            return false;
        }
        return options.compress ? CommitCompressed() : draft.Commit() || FailWith(draft);
    }

    bool CommitCompressed() {
        SafeFile target(FromUtf8(path));
        if (!target.IsOpen()) {
            return FailWith(target);
        }
        errno = 0;
        switch (DataCompressor().CompressFile(draft.DraftPath(), target.DraftPath())) {
        case DataCompressor::kDone:
            return target.Commit() || FailWith(target);
        case DataCompressor::kOutOfMemory:
            return FailWith("not enough memory");
        default:
            return Fail(SystemProblem(FileFault::CannotWrite, path));
        }
    }
};

SnapshotWriter::SnapshotWriter(MemoryResidentData& store, const std::string& path, std::int32_t tables,
                               SnapshotOptions options)
    : state_(new State{store, path, tables < 0 ? 0 : tables, options, SafeFile(FromUtf8(path)), 0, {}, false, {}}) {
    state_->Begin();
}

SnapshotWriter::~SnapshotWriter() = default;

bool SnapshotWriter::AddTable(std::int32_t format, const std::wstring& dataset) {
    return state_->AddTable(format, dataset);
}

bool SnapshotWriter::Commit() {
    return state_->Commit();
}

const FileProblem& SnapshotWriter::Problem() const {
    return state_->problem;
}

bool SaveSnapshot(MemoryResidentData& store, const std::string& path, const SnapshotOptions& options,
                  FileProblem& problem) {
    SnapshotWriter writer(store, path, store.GetFormatCount(), options);
    for (std::int32_t format = 0; format < store.GetFormatCount(); ++format) {
        if (!writer.AddTable(format, store.GetDbCurrentDatasetName(format))) {
            break;
        }
    }
    const bool saved = writer.Commit();
    problem = writer.Problem();
    return saved;
}

} // namespace Kestrona::Host
