// Loaded into the tool by LD_PRELOAD, with the memory beside it: KESTRONA_FAIL_AT is the number of the request that
// fails, counted from the beginning of main, and "+" behind it makes all later ones fail too.
#include "faults/failing_memory.h"

#include <dlfcn.h>

#include <cstdlib>
#include <string_view>

namespace {

using Main = int (*)(int, char**, char**);
using Start = int (*)(Main, int, char**, void (*)(), void (*)(), void (*)(), void*);

Main real_main = nullptr;

int StarvedMain(int count, char** arguments, char** environment) {
    using namespace Kestrona::Faults;
    const char* const text = std::getenv("KESTRONA_FAIL_AT");
    const std::string_view at = text != nullptr ? text : "0";
    RunOutOfMemoryAt(std::strtoll(at.data(), nullptr, 10), at.ends_with('+') ? Shortage::FromThenOn : Shortage::Once);
    return real_main(count, arguments, environment);
}

} // namespace

// What the C library begins a program with.
extern "C" int __libc_start_main(Main program, int count, char** arguments, // NOLINT(*-reserved-identifier)
                                 void (*begin)(), void (*end)(), void (*end_of_loader)(), void* stack) {
    real_main = program;
    const auto start = reinterpret_cast<Start>(dlsym(RTLD_NEXT, "__libc_start_main"));
    return start(StarvedMain, count, arguments, begin, end, end_of_loader, stack);
}
