#include "host/snapshot_fixture.h"

#include <kestrona/data_compressor.h>
#include <kestrona/host/definition.h>
#include <kestrona/matrices.h>
#include <kestrona/process.h>
#include <kestrona/unicode.h>
#include <kestrona/version.h>

#include <gmock/gmock.h>

#include <array>
#include <chrono>

// Whole plants into files and back.

namespace Kestrona::Host {
namespace {

using testing::HasSubstr;

void Save(Store& store, const std::string& path, bool compress = false) {
    FileProblem problem;
    ASSERT_TRUE(SaveSnapshot(store, path, {compress}, problem)) << problem.ToString();
    EXPECT_EQ(problem.fault, FileFault::None);
}

TEST_F(SnapshotTest, AStoreComesBackCellByCell) {
    const std::string plant = KESTRONA_SOURCE_DIR "/examples/plant/plant.ksdef";
    for (const unsigned seed : {1U, 2U, 3U}) {
        SCOPED_TRACE(seed);
        const auto store = seed == 1 ? MakeSmallStore() : MakeStore(plant);
        FillByChance(*store, seed == 2 ? 40 : 7, seed);
        const std::string definition = PrintDefinition(*store);
        const std::string cells = CellsOf(*store);
        Save(*store, Path("a.kes"));
        Save(*store, Path("b.kes"));
        EXPECT_EQ(Difference(WithoutStamp(folder_.Read("a.kes")), WithoutStamp(folder_.Read("b.kes"))), "");
        Save(*store, Path("c.kes"), true);
        ASSERT_EQ(DataCompressor::DataCompressor().DecompressFile(FromUtf8(Path("c.kes")), FromUtf8(Path("d.kes"))), 0);
        EXPECT_EQ(Difference(WithoutStamp(folder_.Read("a.kes")), WithoutStamp(folder_.Read("d.kes"))), "");
        EXPECT_EQ(FilesInFolder(), 4U) << "nothing is left behind";

        for (const char* const name : {"a.kes", "c.kes"}) {
            SCOPED_TRACE(name);
            const auto other = host_->CreateStore();
            FileProblem problem;
            ASSERT_TRUE(LoadSnapshot(Path(name), *other, L"", problem)) << problem.ToString() << out_;
            EXPECT_FALSE(HasChanges(*other));
            EXPECT_EQ(Difference(PrintDefinition(*other), definition), "");
            EXPECT_EQ(Difference(CellsOf(*other), cells), "");
            Save(*other, Path("e.kes"));
            const auto third = host_->CreateStore();
            ASSERT_EQ(host_->FillFromFile(Path("e.kes"), *third), LoadOutcome::Ok) << out_;
            EXPECT_EQ(Difference(CellsOf(*third), cells), "");
            EXPECT_EQ(Difference(PrintDefinition(*third), definition), "");
            // Several plants in one process keep apart.
            FillByChance(*other, 2, seed + 100);
            EXPECT_TRUE(HasChanges(*other));
            EXPECT_EQ(Difference(CellsOf(*store), cells), "");
            EXPECT_EQ(Difference(CellsOf(*third), cells), "");
        }
        std::filesystem::remove(Path("e.kes"));
    }
}

TEST_F(SnapshotTest, TheHeadTellsWhatIsInIt) {
    const auto store = MakeSmallStore();
    const std::int64_t before = std::chrono::system_clock::now().time_since_epoch() / std::chrono::milliseconds(1);
    for (const bool compressed : {false, true}) {
        Save(*store, Path("a.kes"), compressed);
        EXPECT_EQ(KindOfFile(Path("a.kes")), compressed ? FileKind::CompressedSnapshot : FileKind::Snapshot);
        FileProblem problem;
        const auto info = ReadSnapshotInfo(Path("a.kes"), problem);
        ASSERT_TRUE(info) << problem.ToString();
        EXPECT_EQ(info->compressed, compressed);
        EXPECT_EQ(info->version, (std::array<std::int32_t, 4>{KESTRONA_VERSION_MAJOR, KESTRONA_VERSION_MINOR,
                                                              KESTRONA_VERSION_PATCH, 0}));
        EXPECT_GE(info->saved_at, before);
        EXPECT_LE(info->saved_at, before + 600'000);
        EXPECT_EQ(info->matrix_count, GetTotalMatrixCount());
        std::int64_t at = 62 + info->definition_size + 4 * 3;
        for (const SnapshotTable& table : info->tables) {
            EXPECT_EQ(table.records, table.name == L"Draft" ? 0 : 3) << "nothing is kept of drafts";
            EXPECT_EQ(table.offset, at);
            at += 4 + 2 * static_cast<std::int64_t>(table.name.size()) + 4 + 1 + 4 + table.size;
        }
        EXPECT_EQ(at, info->uncompressed_size);
    }
}

TEST_F(SnapshotTest, ATableCanHaveABlockForEachDataset) {
    constexpr std::int32_t kOrders = 1;
    const auto store = MakeSmallStore();
    SnapshotWriter writer(*store, Path("a.kes"), 4);
    store->SetDatasetName(kOrders, L"Week \U0001F3A8");
    ASSERT_TRUE(writer.AddTable(0, L""));
    ASSERT_TRUE(writer.AddTable(kOrders, store->GetDbCurrentDatasetName(kOrders)));
    const std::string first = CellsOf(*store);
    store->SetCurrentDbSize(kOrders, 1);
    store->SetDbValue(kOrders, 0, 0, 99.0);
    const std::string second = CellsOf(*store);
    ASSERT_TRUE(writer.AddTable(kOrders, L"Rush"));
    EXPECT_FALSE(SnapshotWriter(*store, Path("b.kes"), 2).Commit()) << "no tables were added";
    ASSERT_TRUE(writer.AddTable(2, L""));
    ASSERT_TRUE(writer.Commit()) << writer.Problem().ToString();
    EXPECT_EQ(FilesInFolder(), 1U);

    FileProblem problem;
    const auto info = ReadSnapshotInfo(Path("a.kes"), problem);
    ASSERT_TRUE(info) << problem.ToString();

    struct Case {
        const wchar_t* wanted;
        std::size_t block;
        const std::string& cells;
    };

    for (const Case& c :
         {Case{L"", 1, first}, {L"week \U0001F3A8", 1, first}, {L"RUSH", 2, second}, {L"no", 1, first}}) {
        SCOPED_TRACE(ToUtf8(c.wanted));
        const auto other = host_->CreateStore();
        ASSERT_TRUE(LoadSnapshot(Path("a.kes"), *other, c.wanted, problem)) << problem.ToString();
        EXPECT_EQ(Difference(CellsOf(*other), c.cells), "");
        EXPECT_EQ(other->GetDbCurrentDatasetName(kOrders), info->tables[c.block].dataset);
        // The other one takes its place, and leaves nothing of it.
        const SnapshotTable& next = info->tables[c.block == 1 ? 2 : 1];
        ASSERT_TRUE(LoadSnapshotTable(Path("a.kes"), *other, next, problem)) << problem.ToString();
        EXPECT_EQ(Difference(CellsOf(*other), c.block == 1 ? second : first), "");
        EXPECT_EQ(other->GetDbCurrentDatasetName(kOrders), next.dataset);
        EXPECT_FALSE(HasChanges(*other));
        SnapshotTable wrong = next;
        wrong.offset = info->tables[0].offset;
        EXPECT_FALSE(LoadSnapshotTable(Path("a.kes"), *other, wrong, problem));
        EXPECT_EQ(problem.fault, FileFault::Damaged);
    }
}

TEST_F(SnapshotTest, ACompiledDefinitionIsThatOfTheProcess) {
    const std::string plant = KESTRONA_SOURCE_DIR "/examples/plant/plant.ksdef";
    ASSERT_EQ(host_->CompileDefinition(plant, Path("plant.cnf")), LoadOutcome::Ok) << out_;
    EXPECT_EQ(KindOfFile(plant), FileKind::Other);
    EXPECT_EQ(KindOfFile(Path("plant.cnf")), FileKind::CompiledDefinition);
    EXPECT_EQ(KindOfFile(Path("none")), FileKind::Unreadable);
    const std::string definition = PrintDefinition(*MakeStore(plant));
    EXPECT_EQ(Difference(PrintDefinition(*MakeStore(Path("plant.cnf"))), definition), "");
    EXPECT_EQ(host_->LoadCompiled(Path("plant.cnf")), LoadOutcome::AlreadyLoaded);
    Restart();
    ASSERT_EQ(host_->LoadCompiled(Path("plant.cnf")), LoadOutcome::Ok) << out_;
    EXPECT_EQ(Difference(PrintDefinition(host_->Store()), definition), "");
    Restart();
    EXPECT_EQ(host_->LoadCompiled(Path("none.cnf")), LoadOutcome::Unreadable);
}

TEST_F(SnapshotTest, TextsThatCannotBeReadAreLeftOutWithAWarning) {
    const auto store = MakeSmallStore();
    store->SetTableText(0, 0, KSDLL_AddText(L"")); // a constant without a name
    Save(*store, Path("a.kes"));
    const auto other = host_->CreateStore();
    EXPECT_EQ(host_->FillFromFile(Path("a.kes"), *other), LoadOutcome::Ok) << out_;
    EXPECT_EQ(Difference(CellsOf(*other), CellsOf(*store)), "");
    EXPECT_THAT(out_, HasSubstr("warning: The string tables are left out. string tables:1:"));
}

} // namespace
} // namespace Kestrona::Host
