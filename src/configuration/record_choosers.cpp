#include "configuration/record_choosers.h"

#include "configuration/field_count.h"

#include <kestrona/classes.h>

#include <cstddef>

namespace Kestrona::Configuration {

const RecordChoosers::Choosers& RecordChoosers::Of(std::int32_t format, std::int32_t target_format) {
    Begin(format);
    return by_target_[target_format];
}

void RecordChoosers::Changed(std::int32_t format, std::int32_t field) {
    if (format != format_) {
        return; // not entered yet
    }
    const std::int32_t former = targets_[static_cast<std::size_t>(field)];
    if (former >= 0) {
        by_target_[former].checked.erase(field);
        by_target_[former].unchecked.erase(field);
    }
    Enter(field);
}

void RecordChoosers::Begin(std::int32_t format) {
    if (format == format_) {
        return;
    }
    format_ = format;
    by_target_.clear();
    const std::int32_t fields = FieldCount(store_, format);
    targets_.assign(static_cast<std::size_t>(fields), -1);
    for (std::int32_t field = 0; field < fields; ++field) {
        Enter(field);
    }
}

void RecordChoosers::Enter(std::int32_t field) {
    const std::int32_t target = store_.GetDbTable(format_, field);
    const bool chooses = target >= 0 && ChoosesRecord(field, target);
    targets_[static_cast<std::size_t>(field)] = chooses ? target : -1;
    if (chooses) {
        Choosers& choosers = by_target_[target];
        const bool is_unchecked = store_.ClassDefined(format_, field, Classes::kUnchecked);
        (is_unchecked ? choosers.unchecked : choosers.checked).insert(field);
    }
}

bool RecordChoosers::ChoosesRecord(std::int32_t field, std::int32_t target_format) {
    const bool is_shared = store_.ClassDefined(format_, field, Classes::kAdditionalReference);
    return store_.ClassDefined(format_, field, Classes::kDatabase) &&
           (store_.GetDbType(format_, field) & TypeBit::kMatrix) == 0 && (!is_shared || format_ == target_format) &&
           store_.ClassDefined(target_format, store_.GetDbSource(format_, field), Classes::kUnique);
}

} // namespace Kestrona::Configuration
