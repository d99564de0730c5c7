// Implements: the save variables, a block of bytes that host and module address by offset.
#include "store/process_state.h"

#include <kestrona/host_settings.h>
#include <kestrona/process.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstring>
#include <map>

namespace {

constexpr std::size_t kBlockSize = 4096;
constexpr double kTimeRuns = -1.0;

using Block = std::array<std::byte, kBlockSize>;

constexpr Block InitialBlock() {
    Block initial{};
    const auto bytes = std::bit_cast<std::array<std::byte, sizeof(double)>>(kTimeRuns);
    std::ranges::copy(bytes, initial.begin() + kSvFixedNow);
    return initial;
}

constinit Block block = InitialBlock();
constinit void* special_pointer = nullptr;
constinit void* special_block = nullptr;

// Pointers stand beside the bytes: the offsets of the block leave four bytes for one. Never destroyed, like the block.
std::map<std::int32_t, void*>& Pointers() {
    static auto& pointers = *new std::map<std::int32_t, void*>();
    return pointers;
}

bool IsInBlock(std::int32_t offset, std::size_t size) {
    return offset >= 0 && static_cast<std::size_t>(offset) <= kBlockSize - size;
}

template <typename T>
T Load(std::int32_t offset) {
    T value{};
    if (IsInBlock(offset, sizeof(T))) {
        std::memcpy(&value, block.data() + offset, sizeof(T));
    }
    return value;
}

template <typename T>
void Store(std::int32_t offset, T value) {
    if (IsInBlock(offset, sizeof(T))) {
        std::memcpy(block.data() + offset, &value, sizeof(T));
    }
}

} // namespace

double KSDLL_GetDoubleSv(std::int32_t offset) {
    return Load<double>(offset);
}

void KSDLL_SetDoubleSv(std::int32_t offset, double value) {
    Store(offset, value);
}

float KSDLL_GetFloatSv(std::int32_t offset) {
    return Load<float>(offset);
}

void KSDLL_SetFloatSv(std::int32_t offset, double value) {
    Store(offset, static_cast<float>(value));
}

std::int32_t KSDLL_GetLongSv(std::int32_t offset) {
    return Load<std::int32_t>(offset);
}

void KSDLL_SetLongSv(std::int32_t offset, std::int32_t value) {
    Store(offset, value);
}

void* KSDLL_GetPointerSv(std::int32_t offset) {
    if (offset == kSvSpecialPointer) {
        return special_pointer;
    }
    if (offset == kSvSpecialBlock) {
        return special_block;
    }
    const auto found = Pointers().find(offset);
    return found != Pointers().end() ? found->second : nullptr;
}

void KSDLL_SetPointerSv(std::int32_t offset, void* value) {
    if (IsInBlock(offset, 1)) {
        Pointers()[offset] = value;
    }
}

namespace Kestrona {

void SetSpecialPointer36(void* value) {
    special_pointer = value;
}

void SetSpecialPointer176(void* value) {
    special_block = value;
}

void ResetSaveVariables() {
    block = InitialBlock();
    Pointers().clear();
    special_pointer = nullptr;
    special_block = nullptr;
}

} // namespace Kestrona
