// Implements: EraseDbRow, EraseDbRows.
#include <kestrona/store.h>

namespace Kestrona::Data::MemoryResident {

namespace {

constexpr const wchar_t* kNoErase = L"Erasing rows is not available in this version";

} // namespace

void MemoryResidentData::EraseDbRows(std::int32_t /*format*/, std::vector<std::int32_t> /*records*/) {
    throw kNoErase;
}

void MemoryResidentData::EraseDbRow(std::int32_t /*format*/, std::int32_t /*record*/) {
    throw kNoErase;
}

} // namespace Kestrona::Data::MemoryResident
