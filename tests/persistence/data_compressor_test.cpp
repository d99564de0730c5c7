// Whole files compressed and back.
#include "fixtures/scratch_files.h"

#include <kestrona/data_compressor.h>

#include <gtest/gtest.h>

#include <random>

namespace Kestrona::Testing {

namespace {

// Half of it repeats, half of it does not.
std::string Data(std::size_t size) {
    std::mt19937 random(static_cast<unsigned>(size));
    std::string data(size, 'x');
    for (std::size_t i = 0; i < size / 2; ++i) {
        data[i] = static_cast<char>(random());
    }
    return data;
}

class CompressedFiles : public testing::Test {
protected:
    std::int32_t Compress(const std::string& source, const std::string& target) {
        return compressor.CompressFile(folder.WidePath(source), folder.WidePath(target));
    }

    std::int32_t Decompress(const std::string& source, const std::string& target) {
        return compressor.DecompressFile(folder.WidePath(source), folder.WidePath(target));
    }

    ScratchFolder folder;
    DataCompressor::DataCompressor compressor;
};

TEST_F(CompressedFiles, AnotherHandReadsThemAndIsRead) {
    const std::size_t sizes[] = {0, 1, 16383, 16384, 16385, 1 << 20};
    for (const std::size_t size : sizes) {
        const std::string name = std::to_string(size);
        folder.Write(name, Data(size));
        EXPECT_EQ(Compress(name, name + ".z"), 0) << size;
    }
    EXPECT_EQ(folder.Read("0.z"), std::string("\x78\x9c\x03\x00\x00\x00\x00\x01", 8));
    EXPECT_TRUE(RunOracle("zlib_streams.py", "check " + folder.Path()));
    ASSERT_TRUE(RunOracle("zlib_streams.py", "compress " + folder.Path()));
    for (const std::size_t size : sizes) {
        for (int level = 0; level < 10; ++level) {
            const std::string stream = std::to_string(size) + '.' + std::to_string(level);
            EXPECT_EQ(Decompress(stream, "back.d"), 0) << stream;
            EXPECT_EQ(folder.Read("back.d"), Data(size)) << stream;
        }
    }
}

TEST_F(CompressedFiles, EveryPrefixGivesAPrefixAndEveryOtherDamageIsSurvived) {
    const std::string data = Data(600);
    folder.Write("data", data);
    ASSERT_EQ(Compress("data", "stream"), 0);
    const std::string stream = folder.Read("stream");
    for (std::size_t at = 0; at < stream.size(); ++at) {
        folder.Write("damaged", stream.substr(0, at));
        EXPECT_EQ(Decompress("damaged", "back"), 0) << at;
        EXPECT_TRUE(data.starts_with(folder.Read("back"))) << at;
        std::string damaged = stream;
        damaged[at] = static_cast<char>(~damaged[at]);
        folder.Write("damaged", damaged);
        const std::int32_t result = Decompress("damaged", "back");
        EXPECT_TRUE(result == DataCompressor::DataCompressor::kDataDamaged || (result == 0 && at > 1)) << at;
    }
    folder.Write("longer", stream + "what follows a stream");
    EXPECT_EQ(Decompress("longer", "back"), 0);
    EXPECT_EQ(folder.Read("back"), data);
    folder.Write("dictionary", std::string("\x78\xbb\x00\x00\x00\x01\x03\x00", 8));
    EXPECT_EQ(Decompress("dictionary", "back"), -3);
}

TEST_F(CompressedFiles, FilesThatCannotBeHadTakeNothingAway) {
    folder.Write("data", "data");
    std::filesystem::create_symlink("data", folder.Path("link"));
    EXPECT_EQ(Compress("missing", "target"), -1);
    EXPECT_FALSE(std::filesystem::exists(folder.Path("target")));
    for (const char* const target : {"no/folder", ".", "link"}) {
        EXPECT_EQ(Compress("data", target), -1) << target;
    }
    EXPECT_EQ(compressor.CompressFile(folder.WidePath("data"), L"/dev/full"), -1);
    EXPECT_EQ(Decompress("link", "data"), -1);
    EXPECT_EQ(folder.Read("data"), "data");
}

} // namespace

} // namespace Kestrona::Testing
