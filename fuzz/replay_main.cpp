// Runs a fuzz target once over every file of the folders and files named on the command line. It stands in for
// libFuzzer in builds without it, so that a corpus is replayed by the ordinary tests.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

void RunFile(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    std::printf("%s\n", path.c_str());
    std::fflush(stdout); // the name of the file that crashes is the last line
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
}

int RunAll(const std::filesystem::path& path) {
    if (!std::filesystem::is_directory(path)) {
        RunFile(path);
        return 1;
    }
    int count = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(path)) {
        if (entry.is_regular_file()) {
            RunFile(entry.path());
            ++count;
        }
    }
    return count;
}

} // namespace

int main(int argc, char** argv) {
    int count = 0;
    try {
        for (int i = 1; i < argc; ++i) {
            count += RunAll(argv[i]);
        }
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    std::printf("%d files replayed\n", count);
    return count > 0 ? 0 : 1;
}
