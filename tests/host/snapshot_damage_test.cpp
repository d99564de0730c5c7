#include "host/snapshot_fixture.h"

#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstring>
#include <functional>

// Files that are broken, and writing that is cut off.

namespace Kestrona::Host {
namespace {

using testing::AnyOf;
using testing::HasSubstr;

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
        WriteBytes(Path("broken.kes"), bytes);
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
        return BytesOf(Path("small.kes"));
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

TEST_F(SnapshotDamageTest, EachFaultSaysWhatIsWrong) {
    const std::string bytes = SmallBytes(false);
    const std::string path = Path("broken.kes");
    const auto with_number = [&](std::size_t at, std::int32_t number) {
        std::string changed = bytes;
        std::memcpy(changed.data() + at, &number, sizeof number);
        return changed;
    };

    struct Case {
        std::string bytes;
        FileFault fault;
        std::string text; // behind the path, "..." for any
    };

    const std::string compressed = SmallBytes(true);
    const std::string end = std::to_string(compressed.size());
    const Case cases[] = {
        {"", FileFault::Truncated, "ends too early at offset 0: found 0 bytes, expected 22 bytes"},
        {bytes.substr(0, 60), FileFault::Truncated, "ends too early at offset 58: found 2 bytes, expected 4 bytes"},
        {"Kestrona's other file", FileFault::WrongMarker,
         "is another kind of file at offset 0: found 'Kestrona's other file', expected 'KestronaDataExtraction'"},
        {with_number(22, 2), FileFault::WrongVersion,
         "has a version that is not read at offset 22: found layout 2, expected layout 1"},
        {with_number(34, -1), FileFault::Damaged, "is damaged at offset 34: found version part -1"},
        {with_number(50, -1), FileFault::Damaged, "is damaged at offset 50: found -1 tables"},
        {with_number(54, -1), FileFault::Damaged, "is damaged at offset 54"},
        {bytes + "x", FileFault::Damaged, ": found 1 byte more, expected the end of table 'Draft'"},
        {compressed + "xy", FileFault::Damaged,
         "is damaged at offset " + end + ": found 2 bytes more, expected the end of the compressed data"},
        {compressed.substr(0, 100), FileFault::Truncated,
         "ends too early at offset 100: found its end, expected more compressed data"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        const Outcome outcome = Try(c.bytes);
        EXPECT_FALSE(outcome.is_loaded);
        EXPECT_EQ(outcome.fault, c.fault);
        EXPECT_THAT(outcome.text, HasSubstr(c.text));
        EXPECT_THAT(outcome.text, HasSubstr("'" + path + "' "));
    }
    FileProblem problem;
    EXPECT_FALSE(ReadSnapshotInfo(Path("none.kes"), problem));
    EXPECT_EQ(problem.ToString(), "'" + Path("none.kes") + "' cannot be opened: No such file or directory");
    EXPECT_FALSE(ReadSnapshotInfo(folder_.Path(), problem));
    EXPECT_EQ(problem.ToString(), "'" + folder_.Path() + "' cannot be opened: not a regular file");
}

// Runs in a child process; its exit code.
int RunChild(const std::function<int()>& run) {
    const pid_t child = fork();
    if (child == 0) {
        _exit(run());
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST_F(SnapshotDamageTest, AFailedWriteLeavesTheFormerFile) {
    const auto store = MakeSmallStore();
    FileProblem problem;
    for (const bool compress : {false, true}) {
        ASSERT_TRUE(SaveSnapshot(*store, Path("a.kes"), {compress}, problem)) << problem.ToString();
        const std::string before = BytesOf(Path("a.kes"));
        const auto files = FilesInFolder();
        for (const double part : {0.0, 0.01, 0.5, 0.99}) {
            SCOPED_TRACE(part);
            EXPECT_EQ(RunChild([&] {
                          std::signal(SIGXFSZ, SIG_IGN);
                          const auto size = static_cast<rlim_t>(part * static_cast<double>(before.size()));
                          const rlimit limit{size, size};
                          setrlimit(RLIMIT_FSIZE, &limit);
                          const bool saved = SaveSnapshot(*store, Path("a.kes"), {compress}, problem);
                          const std::string text = "'" + Path("a.kes") + "' cannot be written: File too large";
                          return !saved && problem.fault == FileFault::CannotWrite && problem.ToString() == text ? 0
                                                                                                                 : 1;
                      }),
                      0);
            EXPECT_EQ(BytesOf(Path("a.kes")), before);
            EXPECT_EQ(FilesInFolder(), files);
        }
    }
    EXPECT_FALSE(SaveSnapshot(*store, Path("none/a.kes"), {}, problem));
    EXPECT_EQ(problem.ToString(), "'" + Path("none/a.kes") + "' cannot be written: No such file or directory");
}

} // namespace
} // namespace Kestrona::Host
