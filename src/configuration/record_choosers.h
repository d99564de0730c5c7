#pragma once

#include <kestrona/memory_resident_data.h>
#include <kestrona/types.h>

#include <cstdint>
#include <set>
#include <unordered_map>
#include <vector>

namespace Kestrona::Configuration {

// The fields of one format that choose a record of another one: single references to a UNIQUE field there.
//
// What a field refers to may change while its format is being resolved; whoever changes that must say so.
class RecordChoosers {
public:
    explicit RecordChoosers(Data::MemoryResident::IMemoryResidentData& store) : store_(store) {}

    using Fields = std::set<std::int32_t>;

    struct Choosers {
        Fields checked;
        Fields unchecked; // those of the class kUnchecked
    };

    // The fields of `format` that choose a record of `target_format`, until another format is asked for.
    const Choosers& Of(std::int32_t format, std::int32_t target_format);

    // The field refers to something else now.
    void Changed(std::int32_t format, std::int32_t field);

private:
    void Begin(std::int32_t format);
    void Enter(std::int32_t field);
    bool ChoosesRecord(std::int32_t field, std::int32_t target_format);

    Data::MemoryResident::IMemoryResidentData& store_;
    std::int32_t format_ = -1;
    std::unordered_map<std::int32_t, Choosers> by_target_;
    std::vector<std::int32_t> targets_; // by field, -1 for one that chooses nothing
};

} // namespace Kestrona::Configuration
