#pragma once

#include <kestrona/process.h>

// The hooks that the host installs and the module calls, each of which may be null. Those that hosts read or set by
// name stand in process.h.
namespace Kestrona {

struct SequencerHooks {
    KsRecordsHook after_sort = nullptr;
    KsRecordHook first_after_insert = nullptr;
    KsRecordHook second_after_insert = nullptr;
    KsRecordHook before_delete = nullptr;
    KsRecordsHook before_delete_many = nullptr;
    KsRecordHook after_delete = nullptr;
    KsRecordsHook after_delete_many = nullptr;
};

[[nodiscard]] const SequencerHooks& GetSequencerHooks();

} // namespace Kestrona
