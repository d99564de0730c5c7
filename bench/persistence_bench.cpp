// Saving and loading the records of a table, beside stdio by column, memcpy and SQLite, and compressing files beside
// zlib's own loop. Files go to the folder for temporary files (TMPDIR). The argument is the number of records; "each"
// is the time for one of them, with 20 numbers, or with 2 in the file that is compressed.
#include "measure.h"
#include "number_store.h"
#include "sqlite_database.h"

#include <kestrona/data_compressor.h>
#include <kestrona/store.h>
#include <kestrona/table_storage.h>
#include <kestrona/unicode.h>

#include <unistd.h>
#include <zlib.h>

#include <array>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace Kestrona::Bench {
namespace {

using Common::TableStorage;

constexpr std::int32_t kFields = 20;
constexpr std::int32_t kCompressedFields = 2;

struct Closer {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

using File = std::unique_ptr<std::FILE, Closer>;

// Of this process alone, so that another run beside it keeps its own.
std::string Path(const std::string& name) {
    return std::filesystem::temp_directory_path() / ("kestrona_bench_" + std::to_string(getpid()) + "_" + name);
}

File Open(const std::string& name, const char* mode) {
    File file(std::fopen(Path(name).c_str(), mode));
    if (!file) {
        throw std::runtime_error("cannot open " + Path(name));
    }
    return file;
}

// Takes the files away at the end of the program.
class Files {
public:
    Files() = default;
    Files(const Files&) = delete;
    Files& operator=(const Files&) = delete;

    ~Files() {
        for (const char* name : {"table", "columns", "database", "source", "compressed", "back", "deflated"}) {
            std::filesystem::remove(Path(name));
        }
    }
};

const Files files;

Columns MakeVectors(std::int64_t records) {
    return MakeColumns(kFields, static_cast<std::int32_t>(records));
}

std::unique_ptr<MemoryResidentData> MakeStore(std::int64_t records) {
    return MakeNumberStore(kFields, static_cast<std::int32_t>(records));
}

void WriteTable(MemoryResidentData& store, const std::string& name) {
    const File file = Open(name, "wb");
    TableStorage::WriteTableData(store, 0, file.get());
}

void WriteVectors(const Columns& columns) {
    const File file = Open("columns", "wb");
    for (const Column& column : columns) {
        std::fwrite(column.data(), sizeof(double), column.size(), file.get());
    }
}

// SQLite without journal or flush: the fastest that it has.
void WriteDatabase(const Columns& columns) {
    std::filesystem::remove(Path("database"));
    std::string names = "f0 REAL";
    std::string marks = "?";
    for (std::int32_t field = 1; field < kFields; ++field) {
        names += ", f" + std::to_string(field) + " REAL";
        marks += ", ?";
    }
    Database database(Path("database"));
    database.Execute("PRAGMA journal_mode = OFF; PRAGMA synchronous = OFF; CREATE TABLE records(" + names + "); BEGIN");
    const Statement insert = database.Prepare("INSERT INTO records VALUES(" + marks + ")");
    for (std::size_t record = 0; record < columns[0].size(); ++record) {
        for (int field = 0; field < kFields; ++field) {
            sqlite3_bind_double(insert.get(), field + 1, columns[static_cast<std::size_t>(field)][record]);
        }
        RunOnce(insert);
    }
    database.Execute("COMMIT");
}

// Makes the file that a benchmark reads, if the one that is there is not of this size.
template <typename Write>
void NeedFile(const std::string& name, std::int64_t records, Write write) {
    static std::map<std::string, std::int64_t> made;
    if (made[name] != records) {
        write();
        made[name] = records;
    }
}

void CountRecords(benchmark::State& state) {
    CountEach(state, static_cast<double>(state.range(0)));
}

void SaveTable(benchmark::State& state) {
    MemoryResidentData& store = *OfSize<MakeStore>(state.range(0));
    for (auto _ : state) {
        WriteTable(store, "table");
    }
    CountRecords(state);
}

void WriteColumns(benchmark::State& state) {
    const Columns& columns = OfSize<MakeVectors>(state.range(0));
    for (auto _ : state) {
        WriteVectors(columns);
    }
    CountRecords(state);
}

void SaveToDatabase(benchmark::State& state) {
    const Columns& columns = OfSize<MakeVectors>(state.range(0));
    for (auto _ : state) {
        WriteDatabase(columns);
    }
    CountRecords(state);
}

void LoadTable(benchmark::State& state) {
    const auto records = static_cast<std::int32_t>(state.range(0));
    WriteTable(*OfSize<MakeStore>(records), "table");
    MeasureFresh(
        state, [] { return MakeNumberStore(kFields); },
        [](const auto& store) {
            const File file = Open("table", "rb");
            TableStorage::ReadTableData(*store, 0, file.get());
        },
        [&](const auto& store) {
            if (store->GetDbValue(0, kFields - 1, records - 1) != CellValue(kFields - 1, records - 1)) {
                state.SkipWithError("the table came back different");
            }
        });
    CountRecords(state);
}

void ReadColumns(benchmark::State& state) {
    const auto records = static_cast<std::size_t>(state.range(0));
    WriteVectors(OfSize<MakeVectors>(state.range(0)));
    MeasureFresh(
        state, [] { return Columns(kFields); },
        [&](Columns& columns) {
            const File file = Open("columns", "rb");
            for (Column& column : columns) {
                column.resize(records);
                if (std::fread(column.data(), sizeof(double), records, file.get()) != records) {
                    state.SkipWithError("the columns came back short");
                }
            }
        });
    CountRecords(state);
}

void CopyColumns(benchmark::State& state) {
    const Columns& source = OfSize<MakeVectors>(state.range(0));
    MeasureFresh(
        state, [] { return Columns(kFields); },
        [&](Columns& columns) {
            for (std::size_t i = 0; i < columns.size(); ++i) {
                columns[i].resize(source[i].size());
                std::memcpy(columns[i].data(), source[i].data(), source[i].size() * sizeof(double));
            }
        });
    CountRecords(state);
}

void LoadFromDatabase(benchmark::State& state) {
    const auto records = static_cast<std::size_t>(state.range(0));
    WriteDatabase(OfSize<MakeVectors>(state.range(0)));
    for (auto _ : state) {
        Database database(Path("database"));
        const Statement select = database.Prepare("SELECT * FROM records");
        Columns columns(kFields);
        while (sqlite3_step(select.get()) == SQLITE_ROW) {
            for (int field = 0; field < kFields; ++field) {
                columns[static_cast<std::size_t>(field)].push_back(sqlite3_column_double(select.get(), field));
            }
        }
        if (columns[0].size() != records) {
            state.SkipWithError("the database came back short");
        }
    }
    CountRecords(state);
}

// The file to compress.
void NeedSource(std::int64_t records) {
    NeedFile("source", records,
             [&] { WriteTable(*MakeNumberStore(kCompressedFields, static_cast<std::int32_t>(records)), "source"); });
}

bool Compress() {
    DataCompressor::DataCompressor compressor;
    return compressor.CompressFile(FromUtf8(Path("source")), FromUtf8(Path("compressed"))) == 0;
}

void CompressFile(benchmark::State& state) {
    NeedSource(state.range(0));
    for (auto _ : state) {
        if (!Compress()) {
            state.SkipWithError("not compressed");
        }
    }
    CountRecords(state);
}

void DecompressFile(benchmark::State& state) {
    NeedSource(state.range(0));
    NeedFile("compressed", state.range(0), Compress);
    DataCompressor::DataCompressor compressor;
    for (auto _ : state) {
        if (compressor.DecompressFile(FromUtf8(Path("compressed")), FromUtf8(Path("back"))) != 0) {
            state.SkipWithError("not decompressed");
        }
    }
    CountRecords(state);
}

constexpr std::size_t kPiece = 16384;
using Piece = std::array<unsigned char, kPiece>;

// Z_BUF_ERROR only says that there was nothing left to do.
void RequireGood(int result) {
    if (result < Z_OK && result != Z_BUF_ERROR) {
        throw std::runtime_error("zlib failed");
    }
}

// The loop of zlib's own example, both ways.
template <typename Step>
void RunZlib(z_stream& stream, const std::string& source, const std::string& target, Step step) {
    const File in = Open(source, "rb");
    const File out = Open(target, "wb");
    static Piece input;
    static Piece output;
    int flush = Z_NO_FLUSH;
    while (flush != Z_FINISH) {
        stream.avail_in = static_cast<uInt>(std::fread(input.data(), 1, kPiece, in.get()));
        stream.next_in = input.data();
        flush = std::feof(in.get()) != 0 ? Z_FINISH : Z_NO_FLUSH;
        do {
            stream.avail_out = kPiece;
            stream.next_out = output.data();
            RequireGood(step(&stream, flush));
            std::fwrite(output.data(), 1, kPiece - stream.avail_out, out.get());
        } while (stream.avail_out == 0);
    }
}

void DeflateOnce() {
    z_stream stream{};
    RequireGood(deflateInit(&stream, Z_DEFAULT_COMPRESSION));
    RunZlib(stream, "source", "deflated", deflate);
    deflateEnd(&stream);
}

void Deflate(benchmark::State& state) {
    NeedSource(state.range(0));
    for (auto _ : state) {
        DeflateOnce();
    }
    CountRecords(state);
}

void Inflate(benchmark::State& state) {
    NeedSource(state.range(0));
    NeedFile("deflated", state.range(0), DeflateOnce);
    for (auto _ : state) {
        z_stream stream{};
        RequireGood(inflateInit(&stream));
        RunZlib(stream, "deflated", "back", [](z_stream* of, int) { return inflate(of, Z_NO_FLUSH); });
        inflateEnd(&stream);
    }
    CountRecords(state);
}

std::vector<Bytef> ReadSource() {
    std::vector<Bytef> bytes(std::filesystem::file_size(Path("source")));
    const File file = Open("source", "rb");
    bytes.resize(std::fread(bytes.data(), 1, bytes.size(), file.get()));
    return bytes;
}

// zlib with the whole file in memory.
void DeflateMemory(benchmark::State& state) {
    NeedSource(state.range(0));
    const std::vector<Bytef> bytes = ReadSource();
    std::vector<Bytef> out(compressBound(bytes.size()));
    for (auto _ : state) {
        uLongf size = out.size();
        if (compress(out.data(), &size, bytes.data(), bytes.size()) != Z_OK) {
            state.SkipWithError("not compressed");
        }
    }
    CountRecords(state);
}

BENCHMARK(SaveTable)->Apply(GrowthSizes);
BENCHMARK(WriteColumns)->Apply(PeerSizes);
BENCHMARK(LoadTable)->Apply(GrowthSizes);
BENCHMARK(ReadColumns)->Apply(PeerSizes);
BENCHMARK(CopyColumns)->Apply(PeerSizes);
BENCHMARK(SaveToDatabase)->Apply(PeerSizes);
BENCHMARK(LoadFromDatabase)->Apply(PeerSizes);
BENCHMARK(CompressFile)->Apply(GrowthSizes);
BENCHMARK(Deflate)->Apply(PeerSizes);
BENCHMARK(DeflateMemory)->Apply(PeerSizes);
BENCHMARK(DecompressFile)->Apply(GrowthSizes);
BENCHMARK(Inflate)->Apply(PeerSizes);

} // namespace
} // namespace Kestrona::Bench
