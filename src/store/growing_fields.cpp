#include "store/growing_fields.h"

#include "store/class_test.h"
#include "store/dimensioned_fields.h"

#include <kestrona/classes.h>

#include <bit>

namespace Kestrona::Data::MemoryResident {

namespace {

// The scratch cell that has no other use. Whoever builds the answer leaves its number there, in the column of update
// numbers of the format: the mark goes when the format or its store goes, wherever the next one then stands in memory.
constexpr std::int32_t kMarkRecord = kFirstScratchRecord + 1;
constexpr std::int32_t kNoMark = 0;

struct Answer {
    std::int32_t format = -1;
    std::int32_t mark = kNoMark;
    std::uint64_t formats = 0;
    std::vector<TableColumn> fields;
};

Answer last_answer;

void Mix(std::uint64_t& hash, std::uint64_t value) {
    constexpr std::uint64_t kPrime = 0x100000001b3;
    hash = (std::rotl(hash, 23) ^ value) * kPrime;
}

std::uint64_t AddressOf(const void* object) {
    return std::bit_cast<std::uintptr_t>(object);
}

// Which formats stand, what they are called, and where their fields are.
std::uint64_t DescribeFormats(IMemoryResidentData& store) {
    std::uint64_t hash = 0xcbf29ce484222325;
    for (std::int32_t format = 0; format < store.GetFormatCount(); ++format) {
        const formats_info& info = *store.GetFormatInfo(format);
        Mix(hash, AddressOf(info.name.get()));
        Mix(hash, AddressOf(info.extension.get()));
        Mix(hash, AddressOf(info.fields.data()));
        Mix(hash, info.fields.size());
    }
    return hash;
}

std::vector<TableColumn> FindGrowingFields(IMemoryResidentData& store, std::int32_t grown) {
    std::vector<TableColumn> found;
    ForEachFollowingField(store, [&](std::int32_t format, std::int32_t field, const field_info& info) {
        const bool is_own_associate = format == grown && HasClass(info, Classes::kAssociate);
        if (IsDimensionedBy(info, grown) && !is_own_associate) {
            found.push_back({format, field});
        }
    });
    return found;
}

void Mark(IColumn<std::int32_t>* updates) {
    static std::int32_t next_mark = kNoMark;
    next_mark = next_mark == INT32_MAX ? kNoMark + 1 : next_mark + 1;
    if (updates != nullptr) {
        updates->SetValue(kMarkRecord, next_mark);
    }
    last_answer.mark = next_mark;
}

} // namespace

const std::vector<TableColumn>& GrowingFields(IMemoryResidentData& store, std::int32_t format) {
    IColumn<std::int32_t>* const updates = store.GetFormatInfo(format)->updateColumn.get();
    const std::uint64_t formats = DescribeFormats(store);
    const bool is_valid = last_answer.format == format && last_answer.formats == formats && updates != nullptr &&
                          updates->GetValue(kMarkRecord) == last_answer.mark;
    if (!is_valid) {
        last_answer.format = format;
        last_answer.formats = formats;
        last_answer.fields = FindGrowingFields(store, format);
        Mark(updates);
    }
    return last_answer.fields;
}

} // namespace Kestrona::Data::MemoryResident
