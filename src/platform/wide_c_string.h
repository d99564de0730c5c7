#pragma once

#include <cstdlib>
#include <memory>
#include <string_view>

// Wide C strings from the C heap, the form in which texts cross the library's boundary.
namespace Kestrona::Platform {

struct FreeDeleter {
    void operator()(void* memory) const { std::free(memory); }
};

using OwnedWide = std::unique_ptr<wchar_t, FreeDeleter>;

// A copy for `free`; null for null. Throws std::bad_alloc.
wchar_t* DuplicateWide(const wchar_t* text);

// A copy with a closing 0 for `free`. Throws std::bad_alloc.
wchar_t* DuplicateWide(std::wstring_view text);

} // namespace Kestrona::Platform
