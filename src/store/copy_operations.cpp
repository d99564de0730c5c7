// Implements: CreateDuplicateFormat, and the copying, swapping and comparing of rows and
// matrices. All of them stand or fall with the matrices of records, which this version lacks (record_matrices.h), so
// each refuses.
#include <kestrona/owned_text.h>
#include <kestrona/store.h>

namespace Kestrona::Data::MemoryResident {

namespace {

constexpr const wchar_t* kNoCopies = L"Row copies are not available in this version";
constexpr const wchar_t* kNoDuplicates = L"Duplicate formats are not available in this version";

} // namespace

void MemoryResidentData::CopyMatrix(std::int32_t /*source_format*/, std::int32_t /*source_field*/,
                                    std::int32_t /*source_record*/, std::int32_t /*target_format*/,
                                    std::int32_t /*target_field*/, std::int32_t /*target_record*/) {
    throw kNoCopies;
}

void MemoryResidentData::SwapMatrix(std::int32_t /*format*/, std::int32_t /*field*/, std::int32_t /*record1*/,
                                    std::int32_t /*record2*/) {
    throw kNoCopies;
}

void MemoryResidentData::CopyMatrixItemInfo(std::int32_t /*source_record*/, std::int32_t /*target_record*/,
                                            std::int32_t /*format*/) {
    throw kNoCopies;
}

void MemoryResidentData::SwapMatrixItemInfo(std::int32_t /*record1*/, std::int32_t /*record2*/,
                                            std::int32_t /*format*/) {
    throw kNoCopies;
}

void MemoryResidentData::CopyField(std::int32_t /*format*/, std::int32_t /*field*/, std::int32_t /*source_record*/,
                                   std::int32_t /*target_record*/) {
    throw kNoCopies;
}

void MemoryResidentData::SwapItemInfo(std::int32_t /*record1*/, std::int32_t /*record2*/, std::int32_t /*format*/) {
    throw kNoCopies;
}

void MemoryResidentData::CopyItemInfo(std::int32_t /*source_record*/, std::int32_t /*target_record*/,
                                      std::int32_t /*format*/) {
    throw kNoCopies;
}

bool MemoryResidentData::ItemInfoIsEqual(std::int32_t /*record1*/, std::int32_t /*record2*/, std::int32_t /*format*/) {
    throw kNoCopies;
}

// The name was handed over, so it is freed even so.
std::int32_t MemoryResidentData::CreateDuplicateFormat(std::int32_t /*format*/, wchar_t* name, bool /*at_end*/) {
    const OwnedText owned(name);
    throw kNoDuplicates;
}

} // namespace Kestrona::Data::MemoryResident
