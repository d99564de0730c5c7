// Implements: the table of hooks.
#include "store/hooks.h"

KsSynchroniseHook kss_SynchroniseOp = nullptr;
KsHook kss_Clear = nullptr;
KsFileHook kss_ReadFile = nullptr;
KsFileHook kss_SaveFile = nullptr;
KsHook RefreshLaunchPoints = nullptr;
KsRecordHook kss_RedrawOp = nullptr;
KsHook FreeOrderArrays = nullptr;
KsTestHook IsTableUsedBySequencer = nullptr;
KsHook kss_ClearUndo = nullptr;

namespace {

constinit Kestrona::SequencerHooks sequencer_hooks;

} // namespace

namespace Kestrona {

const SequencerHooks& GetSequencerHooks() {
    return sequencer_hooks;
}

} // namespace Kestrona

void SetSequencerFunctions(KsSynchroniseHook synchronise_op, KsHook clear, KsFileHook read_file, KsFileHook save_file,
                           KsHook refresh_launch_points, KsRecordHook redraw_op, KsRecordsHook after_sort,
                           KsPairHook /*ignored8*/, KsRecordHook first_after_insert, KsRecordHook second_after_insert,
                           KsRecordHook before_delete, KsRecordsHook before_delete_many, KsRecordHook after_delete,
                           KsRecordsHook after_delete_many, KsHook free_order_arrays,
                           KsTestHook is_table_used_by_sequencer, KsHook clear_undo, KsHook /*ignored18*/) {
    kss_SynchroniseOp = synchronise_op;
    kss_Clear = clear;
    kss_ReadFile = read_file;
    kss_SaveFile = save_file;
    RefreshLaunchPoints = refresh_launch_points;
    kss_RedrawOp = redraw_op;
    sequencer_hooks = {after_sort,         first_after_insert, second_after_insert, before_delete,
                       before_delete_many, after_delete,       after_delete_many};
    FreeOrderArrays = free_order_arrays;
    IsTableUsedBySequencer = is_table_used_by_sequencer;
    kss_ClearUndo = clear_undo;
}

void ClearSequencerFunctions() {
    SetSequencerFunctions(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                          nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
}
