#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Kestrona::Configuration {

// Which fields of one format share whose column. Fields are entered one by one; a field that would share its own column
// by way of others is found when the last of them is entered.
class ColumnSharing {
public:
    // Forgets everything when the format is another one than before.
    void Begin(std::int32_t format, std::int32_t fields) {
        if (format != format_) {
            format_ = format;
            targets_.assign(static_cast<std::size_t>(fields), -1);
        }
    }

    // Enters that `field` shares the column of `target`. False, and nothing entered, when that closes a ring.
    bool Enter(std::int32_t field, std::int32_t target) {
        const std::int32_t owner = OwnerOf(target);
        if (owner == field) {
            return false;
        }
        targets_[static_cast<std::size_t>(field)] = owner;
        return true;
    }

private:
    // Halves the path on its way, so that long ones are walked once.
    std::int32_t OwnerOf(std::int32_t field) {
        while (TargetOf(field) >= 0) {
            const std::int32_t next = TargetOf(TargetOf(field));
            if (next >= 0) {
                targets_[static_cast<std::size_t>(field)] = next;
            }
            field = TargetOf(field);
        }
        return field;
    }

    [[nodiscard]] std::int32_t TargetOf(std::int32_t field) const { return targets_[static_cast<std::size_t>(field)]; }

    std::int32_t format_ = -1;
    std::vector<std::int32_t> targets_; // -1 for a field that is not entered
};

} // namespace Kestrona::Configuration
