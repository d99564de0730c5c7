#pragma once

#include <kestrona/record_state_strategy.h>

#include <cstdint>
#include <string>
#include <vector>

namespace Kestrona::Testing {

// Writes down what a column reports: "changed 3", "erased 7", "cleared 1".
class RecordingStrategy : public Data::MemoryResident::NullRecordStateStrategy {
public:
    explicit RecordingStrategy(std::vector<std::string>& log) : log_(log) {}

    void RecordChanged(std::int32_t record) override { log_.push_back("changed " + std::to_string(record)); }

    void RecordsChanged(std::int32_t first, std::uint64_t bits) override {
        IRecordStateStrategy::RecordsChanged(first, bits);
    }

    void RecordErased(double key) override {
        log_.push_back("erased " + std::to_string(static_cast<std::int32_t>(key)));
    }

    void ColumnCleared(bool mark_changed) override { log_.push_back(mark_changed ? "cleared 1" : "cleared 0"); }

private:
    std::vector<std::string>& log_;
};

} // namespace Kestrona::Testing
