#include "host/snapshot_fixture.h"

#include <gmock/gmock.h>

// Files that are broken.

namespace Kestrona::Host {
namespace {

using testing::AnyOf;

class SnapshotDamageTest : public SnapshotTest {
protected:
    // What becomes of these bytes. A fault of `None` without a load is a definition that cannot be resolved.
    struct Outcome {
        bool has_info = false;
        bool is_loaded = false;
        FileFault info_fault = FileFault::None;
        FileFault fault = FileFault::None;
        std::string text;
        std::string cells; // when it is loaded and they are asked for
    };

    Outcome Try(const std::string& bytes, bool with_cells = false) {
        folder_.Write("broken.kes", bytes);
        Outcome outcome;
        FileProblem problem;
        outcome.has_info = ReadSnapshotInfo(Path("broken.kes"), problem).has_value();
        outcome.info_fault = problem.fault;
        const auto store = host_->CreateStore();
        outcome.is_loaded = LoadSnapshot(Path("broken.kes"), *store, L"", problem);
        outcome.fault = problem.fault;
        outcome.text = problem.ToString();
        outcome.cells = outcome.is_loaded && with_cells ? CellsOf(*store) : "";
        host_->Messages()->Clear();
        out_.clear();
        return outcome;
    }

    std::string SmallBytes(bool compress) {
        const auto store = MakeSmallStore();
        FileProblem problem;
        EXPECT_TRUE(SaveSnapshot(*store, Path("small.kes"), {compress}, problem)) << problem.ToString();
        return folder_.Read("small.kes");
    }
};

TEST_F(SnapshotDamageTest, NoBeginningOfAFilePassesForTheWhole) {
    for (const bool compress : {false, true}) {
        const std::string bytes = SmallBytes(compress);
        ASSERT_TRUE(Try(bytes).is_loaded);
        for (std::size_t size = 0; size < bytes.size(); ++size) {
            const Outcome outcome = Try(bytes.substr(0, size));
            ASSERT_FALSE(outcome.is_loaded) << size;
            ASSERT_THAT(outcome.fault, AnyOf(FileFault::Truncated, FileFault::Damaged, FileFault::WrongMarker))
                << size << outcome.text;
            ASSERT_TRUE(compress || size == 0 || KindOfFile(Path("broken.kes")) == FileKind::Snapshot) << size;
            ASSERT_TRUE(!compress || size < 2 || outcome.fault != FileFault::WrongMarker) << size;
            ASSERT_NE(outcome.has_info, outcome.info_fault != FileFault::None) << size;
        }
        EXPECT_FALSE(Try(bytes + "x").is_loaded);
    }
}

TEST_F(SnapshotDamageTest, NoByteBringsTheReaderDown) {
    for (const bool compress : {false, true}) {
        const std::string bytes = SmallBytes(compress);
        const std::string cells = Try(bytes, true).cells;
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            std::string changed = bytes;
            constexpr unsigned char kFlips[] = {0x01, 0x80, 0xFF};
            changed[i] = static_cast<char>(static_cast<unsigned char>(changed[i]) ^ kFlips[i % 3]);
            const Outcome outcome = Try(changed, compress);
            ASSERT_NE(outcome.has_info, outcome.info_fault != FileFault::None) << i;
            ASSERT_TRUE(!outcome.is_loaded || outcome.fault == FileFault::None) << i << outcome.text;
            // A checksum covers all of a compressed file but a few bits without a meaning.
            ASSERT_TRUE(!compress || !outcome.is_loaded || outcome.cells == cells) << i;
        }
    }
}

} // namespace
} // namespace Kestrona::Host
