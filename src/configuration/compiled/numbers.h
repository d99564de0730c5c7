#pragma once

#include <bit>
#include <cstdio>
#include <type_traits>

// Plain numbers in an open file.
namespace Kestrona::Configuration::Compiled {

static_assert(std::endian::native == std::endian::little, "numbers are written as they lie in memory");

// A failed write shows in std::ferror.
template <typename T>
void WriteNumber(std::FILE* file, T value) {
    static_assert(std::is_arithmetic_v<T>);
    std::fwrite(&value, sizeof value, 1, file);
}

// False, with the value as it was, where the file ends too early.
template <typename T>
bool ReadNumber(std::FILE* file, T& value) {
    static_assert(std::is_arithmetic_v<T>);
    T read{};
    if (std::fread(&read, sizeof read, 1, file) != 1) {
        return false;
    }
    value = read;
    return true;
}

} // namespace Kestrona::Configuration::Compiled
