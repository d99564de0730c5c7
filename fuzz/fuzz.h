#pragma once

#include "platform/files.h"

#include <kestrona/services.h>
#include <kestrona/unicode.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>

// What the fuzz targets share.
namespace Kestrona::Fuzz {

inline void Require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

using File = Platform::FileHandle;

inline std::wstring TextOf(const std::uint8_t* data, std::size_t size) {
    return FromUtf8(std::string_view(reinterpret_cast<const char*>(data), size));
}

// What `write` writes to the file that it is given.
template <typename Write>
std::string BytesOf(Write write) {
    char* bytes = nullptr;
    std::size_t size = 0;
    File file(open_memstream(&bytes, &size));
    write(file.get());
    file.reset();
    const std::unique_ptr<char, decltype(&std::free)> owner(bytes, std::free);
    return {bytes, size};
}

// A host with the words that dates and durations are shown and read with.
class Words : public CoreMessage {
public:
    // Makes the process use them; the library frees them.
    static bool Install() {
        MessageManager::setInstance(new Words());
        return true;
    }

    std::wstring GetMessage(std::int32_t id) override {
        constexpr std::int32_t kFirstWeekday = 0x6999;
        constexpr std::array kWords{L"Sunday",   L"Monday", L"Tuesday", L"Wednesday", L"Thursday", L"Friday",
                                    L"Saturday", L"Day",    L"Hours",   L"Days",      L"Minutes"};
        const std::int32_t word = id - kFirstWeekday;
        return id == 0x698a ? L"Unset" : word >= 0 && word < 11 ? kWords[static_cast<std::size_t>(word)] : L"";
    }
};

} // namespace Kestrona::Fuzz
