// Saving and loading the records of a table, beside stdio by column, memcpy and SQLite, and compressing files beside
// zlib's own loop. Every peer runs in the same program, so compare the ratios of one run. Files go to the folder for
// temporary files (TMPDIR); what the disk does is left to the system.

#include "number_store.h"

#include <kestrona/data_compressor.h>
#include <kestrona/store.h>
#include <kestrona/table_storage.h>
#include <kestrona/unicode.h>

#include <benchmark/benchmark.h>
#include <sqlite3.h>
#include <zlib.h>

#include <array>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace {

using namespace Kestrona;
using namespace Kestrona::Data::MemoryResident;
using Common::TableStorage;

constexpr std::int32_t kFields = 20;
constexpr std::int32_t kRecords = 1000000;
constexpr std::int64_t kBytes = std::int64_t{kFields} * kRecords * std::int64_t{sizeof(double)};

struct Closer {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

using File = std::unique_ptr<std::FILE, Closer>;
using Column = std::vector<double>;
using Columns = std::vector<Column>;

std::string Path(const std::string& name) {
    return std::filesystem::temp_directory_path() / ("kestrona_bench_" + name);
}

double ValueAt(std::int32_t field, std::int32_t record) {
    return record * 0.5 + field + 1.0;
}

const Columns& FilledColumns() {
    static const Columns columns = [] {
        Columns made(kFields, Column(kRecords));
        for (std::int32_t field = 0; field < kFields; ++field) {
            for (std::int32_t record = 0; record < kRecords; ++record) {
                made[static_cast<std::size_t>(field)][static_cast<std::size_t>(record)] = ValueAt(field, record);
            }
        }
        return made;
    }();
    return columns;
}

MemoryResidentData& FilledStore() {
    static const std::unique_ptr<MemoryResidentData> store = [] {
        auto made = Bench::MakeNumberStore(kFields);
        made->SetCurrentDbSize(0, kRecords);
        for (std::int32_t field = 0; field < kFields; ++field) {
            for (std::int32_t record = 0; record < kRecords; ++record) {
                made->SetDbValue(0, field, record, ValueAt(field, record));
            }
        }
        return made;
    }();
    return *store;
}

void SaveTable(benchmark::State& state) {
    MemoryResidentData& store = FilledStore();
    for (auto _ : state) {
        const File file(std::fopen(Path("table").c_str(), "wb"));
        TableStorage::WriteTableData(store, 0, file.get());
    }
    state.SetBytesProcessed(state.iterations() * kBytes);
}

void WriteColumns(benchmark::State& state) {
    const Columns& columns = FilledColumns();
    for (auto _ : state) {
        const File file(std::fopen(Path("columns").c_str(), "wb"));
        for (const Column& column : columns) {
            std::fwrite(column.data(), sizeof(double), column.size(), file.get());
        }
    }
    state.SetBytesProcessed(state.iterations() * kBytes);
}

void LoadTable(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        auto store = Bench::MakeNumberStore(kFields);
        state.ResumeTiming();
        {
            const File file(std::fopen(Path("table").c_str(), "rb"));
            TableStorage::ReadTableData(*store, 0, file.get());
        }
        state.PauseTiming();
        if (store->GetDbValue(0, kFields - 1, kRecords - 1) != ValueAt(kFields - 1, kRecords - 1)) {
            state.SkipWithError("the table came back different");
        }
        store.reset();
        state.ResumeTiming();
    }
    state.SetBytesProcessed(state.iterations() * kBytes);
}

void ReadColumns(benchmark::State& state) {
    for (auto _ : state) {
        Columns columns(kFields);
        {
            const File file(std::fopen(Path("columns").c_str(), "rb"));
            for (Column& column : columns) {
                column.resize(kRecords);
                if (std::fread(column.data(), sizeof(double), column.size(), file.get()) != column.size()) {
                    state.SkipWithError("the columns came back short");
                }
            }
        }
        state.PauseTiming();
        columns.clear();
        state.ResumeTiming();
    }
    state.SetBytesProcessed(state.iterations() * kBytes);
}

void CopyColumns(benchmark::State& state) {
    const Columns& source = FilledColumns();
    for (auto _ : state) {
        Columns columns(kFields);
        for (std::size_t i = 0; i < columns.size(); ++i) {
            columns[i].resize(kRecords);
            std::memcpy(columns[i].data(), source[i].data(), kRecords * sizeof(double));
        }
        benchmark::DoNotOptimize(columns);
        state.PauseTiming();
        columns.clear();
        state.ResumeTiming();
    }
    state.SetBytesProcessed(state.iterations() * kBytes);
}

struct CloseDatabase {
    void operator()(sqlite3* database) const { sqlite3_close(database); }
};

struct FinishStatement {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};

using Database = std::unique_ptr<sqlite3, CloseDatabase>;
using Statement = std::unique_ptr<sqlite3_stmt, FinishStatement>;

Database OpenDatabase() {
    sqlite3* opened = nullptr;
    sqlite3_open(Path("database").c_str(), &opened);
    sqlite3_exec(opened, "PRAGMA journal_mode = OFF; PRAGMA synchronous = OFF", nullptr, nullptr, nullptr);
    return Database(opened);
}

Statement Prepare(sqlite3* database, const std::string& text) {
    sqlite3_stmt* statement = nullptr;
    sqlite3_prepare_v2(database, text.c_str(), -1, &statement, nullptr);
    return Statement(statement);
}

// One transaction without journal or flush: the fastest that it has.
void SaveToDatabase(benchmark::State& state) {
    const Columns& columns = FilledColumns();
    std::string names = "f0 REAL";
    std::string marks = "?";
    for (std::int32_t field = 1; field < kFields; ++field) {
        names += ", f" + std::to_string(field) + " REAL";
        marks += ", ?";
    }
    for (auto _ : state) {
        std::filesystem::remove(Path("database"));
        const Database database = OpenDatabase();
        sqlite3_exec(database.get(), ("CREATE TABLE records(" + names + "); BEGIN").c_str(), nullptr, nullptr, nullptr);
        const Statement insert = Prepare(database.get(), "INSERT INTO records VALUES(" + marks + ")");
        for (std::size_t record = 0; record < kRecords; ++record) {
            for (int field = 0; field < kFields; ++field) {
                sqlite3_bind_double(insert.get(), field + 1, columns[static_cast<std::size_t>(field)][record]);
            }
            sqlite3_step(insert.get());
            sqlite3_reset(insert.get());
        }
        sqlite3_exec(database.get(), "COMMIT", nullptr, nullptr, nullptr);
    }
    state.SetBytesProcessed(state.iterations() * kBytes);
}

void LoadFromDatabase(benchmark::State& state) {
    for (auto _ : state) {
        const Database database = OpenDatabase();
        const Statement select = Prepare(database.get(), "SELECT * FROM records");
        Columns columns(kFields);
        while (sqlite3_step(select.get()) == SQLITE_ROW) {
            for (int field = 0; field < kFields; ++field) {
                columns[static_cast<std::size_t>(field)].push_back(sqlite3_column_double(select.get(), field));
            }
        }
        if (columns[0].size() != kRecords) {
            state.SkipWithError("the database came back short");
        }
    }
    state.SetBytesProcessed(state.iterations() * kBytes);
}

void CompressFile(benchmark::State& state) {
    DataCompressor::DataCompressor compressor;
    for (auto _ : state) {
        if (compressor.CompressFile(FromUtf8(Path("table")), FromUtf8(Path("compressed"))) != 0) {
            state.SkipWithError("not compressed");
        }
    }
    state.SetBytesProcessed(state.iterations() * kBytes);
}

void DecompressFile(benchmark::State& state) {
    DataCompressor::DataCompressor compressor;
    for (auto _ : state) {
        if (compressor.DecompressFile(FromUtf8(Path("compressed")), FromUtf8(Path("decompressed"))) != 0) {
            state.SkipWithError("not decompressed");
        }
    }
    state.SetBytesProcessed(state.iterations() * kBytes);
}

constexpr std::size_t kPiece = 16384;
using Piece = std::array<unsigned char, kPiece>;

// The loop of zlib's own example, both ways.
template <typename Step>
void RunZlib(z_stream& stream, const std::string& source, const std::string& target, Step step) {
    const File in(std::fopen(Path(source).c_str(), "rb"));
    const File out(std::fopen(Path(target).c_str(), "wb"));
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
            step(&stream, flush);
            std::fwrite(output.data(), 1, kPiece - stream.avail_out, out.get());
        } while (stream.avail_out == 0);
    }
}

void Deflate(benchmark::State& state) {
    for (auto _ : state) {
        z_stream stream{};
        if (deflateInit(&stream, Z_DEFAULT_COMPRESSION) != Z_OK) {
            return state.SkipWithError("zlib does not start");
        }
        RunZlib(stream, "table", "deflated", deflate);
        deflateEnd(&stream);
    }
    state.SetBytesProcessed(state.iterations() * kBytes);
}

void Inflate(benchmark::State& state) {
    for (auto _ : state) {
        z_stream stream{};
        if (inflateInit(&stream) != Z_OK) {
            return state.SkipWithError("zlib does not start");
        }
        RunZlib(stream, "compressed", "inflated", [](z_stream* of, int) { inflate(of, Z_NO_FLUSH); });
        inflateEnd(&stream);
    }
    state.SetBytesProcessed(state.iterations() * kBytes);
}

void RemoveFiles(const benchmark::State&) {
    for (const char* name : {"table", "columns", "database", "compressed", "decompressed", "deflated", "inflated"}) {
        std::filesystem::remove(Path(name));
    }
}

// The order matters: who reads follows who writes.
BENCHMARK(SaveTable)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(WriteColumns)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(LoadTable)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(ReadColumns)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(CopyColumns)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(SaveToDatabase)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(LoadFromDatabase)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(CompressFile)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(Deflate)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(DecompressFile)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(Inflate)->Unit(benchmark::kMillisecond)->UseRealTime()->Teardown(RemoveFiles);

} // namespace
