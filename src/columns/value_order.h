#pragma once

#include <kestrona/unicode.h>

#include <string>

// The order of column values. Numbers compare exactly, so every comparison with a NaN is false; texts compare by UTF-16
// code unit.
namespace Kestrona::Data::MemoryResident {

template <typename T>
bool IsBelow(const T& a, const T& b) {
    return a < b;
}

template <typename T>
bool IsBelowOrEqual(const T& a, const T& b) {
    return a <= b;
}

template <>
inline bool IsBelow(const std::wstring& a, const std::wstring& b) {
    return CompareUtf16(a, b) < 0;
}

template <>
inline bool IsBelowOrEqual(const std::wstring& a, const std::wstring& b) {
    return CompareUtf16(a, b) <= 0;
}

} // namespace Kestrona::Data::MemoryResident
