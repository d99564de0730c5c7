#pragma once

#include <kestrona/memory_resident_data.h>
#include <kestrona/types.h>

#include <cstdint>
#include <string>
#include <vector>

/// \file
/// Process-wide state that the module and the host share: save variables, user strings, paths, hooks.
///
/// Threads: all of this belongs to the host's main thread.

// Save variables: a block of 4096 bytes addressed by byte offset. Reading out of range gives 0, writing does nothing.

/// Offset of the version mark (float): 0.0 after `init_server`, 8.01 after a definition has been loaded.
inline constexpr std::int32_t kSvVersionMark = 0;
/// Offset of the associated-table mode (int32).
inline constexpr std::int32_t kSvAssociatedTableMode = 16;
/// Offset of the help file name (pointer).
inline constexpr std::int32_t kSvHelpFile = 20;
/// Offset of the stream position at which the definition ended in a compiled file (int32).
inline constexpr std::int32_t kSvDefinitionEnd = 24;
/// Offset whose pointer is the one of `SetSpecialPointer36` (host_settings.h).
inline constexpr std::int32_t kSvSpecialPointer = 36;
/// Offset of a fixed "now" (double): -1.0 while time runs.
inline constexpr std::int32_t kSvFixedNow = 40;
/// Offset of a shift in days that is added to the machine's time (double).
inline constexpr std::int32_t kSvTimeShift = 104;
/// Offset whose pointer is the one of `SetSpecialPointer176` (host_settings.h).
inline constexpr std::int32_t kSvSpecialBlock = 176;
/// Offset of the flag word of a compiled file (int32).
inline constexpr std::int32_t kSvFlagWord = 192;

KS_API double KSDLL_GetDoubleSv(std::int32_t offset);
KS_API void KSDLL_SetDoubleSv(std::int32_t offset, double value);
KS_API float KSDLL_GetFloatSv(std::int32_t offset);
/// Narrows the value.
KS_API void KSDLL_SetFloatSv(std::int32_t offset, double value);
KS_API std::int32_t KSDLL_GetLongSv(std::int32_t offset);
KS_API void KSDLL_SetLongSv(std::int32_t offset, std::int32_t value);
/// Pointers are kept beside the block, one for each offset. The offsets 36 and 176 answer with process variables of
/// their own.
KS_API void* KSDLL_GetPointerSv(std::int32_t offset);
/// Stores a pointer for any offset; what is stored for 36 and 176 is never read back.
KS_API void KSDLL_SetPointerSv(std::int32_t offset, void* value);

// User strings: 400 texts, 0 to 399. Any other index is ignored.

/// Keeps a copy of the text, with room for 10 more characters; null frees the entry.
KS_API void KSDLL_SetUserString(std::int32_t index, const wchar_t* text);
/// Returns the text or null. The module owns it.
KS_API wchar_t* KSDLL_GetUserString(std::int32_t index);

/// Returns a copy from `malloc`, null for null. The caller frees it, or hands it to an operation that takes ownership.
KS_API wchar_t* KSDLL_AddText(const wchar_t* text);

/// Splits a command line in place at blanks; a double quote opens an argument that ends at the next quote, or with the
/// line. The first argument goes to slot 1, slot 0 is left alone. Returns the number of slots used, slot 0 included; 1
/// for a null line. Writes no slot from `slots` on; further arguments are dropped.
KS_API std::int32_t SplitCommandLine(wchar_t* line, wchar_t** arguments, std::int32_t slots);

/// Overrides the system path; an empty text, or one of more than 511 characters, takes the override back.
KS_API void override_system_path(const wchar_t* path);
/// Writes the system path: the override, else the folder of the running program without a slash at its end. Cut to
/// `size` characters with the terminator.
KS_API void get_system_path(wchar_t* path, std::int32_t size);

KS_API void SetCurrentModule(Kestrona::KestronaModule module);
KS_API Kestrona::KestronaModule GetCurrentModule();
/// The number of `GetCurrentModule`.
KS_API std::int32_t KSDLL_GetModuleName();

/// Replaces "{KESTRONA PATH}" by the system path and "{PATH}" by the current directory without a trailing slash.
KS_API std::wstring ExpandKestronaTPathTags(std::wstring text);
/// The same in place. Requires: room for the result.
KS_API void ExpandKestronaPathTags(wchar_t* text);
/// Replaces "{MODE}" by the name that `SetRunModeName` set.
KS_API std::wstring ExpandMODETag(const std::wstring& text);
/// The same; keeps a literal away from the form that writes in place.
KS_API std::wstring ExpandMODETag(const wchar_t* text);
/// The same in place. Requires: room for the result.
KS_API void ExpandMODETag(wchar_t* text);

/// Replaces every occurrence of `from`, left to right, without scanning what was put in. An empty `from` puts `to`
/// before every character and at the end.
KS_API std::wstring KSDLL_TStringSubstitute(std::wstring text, const std::wstring& from, const std::wstring& to);
/// The same in place. Requires: room for the result.
KS_API void KSDLL_StringSubstitute(wchar_t* text, const std::wstring& from, const std::wstring& to);

/// Clears the version mark.
KS_API void init_server();
/// Sets the format count to 0.
KS_API void KSDLL_CreateDbInfo(Kestrona::Data::MemoryResident::IMemoryResidentData& store);
/// Frees every format of the store and sets the format count to 0. String tables and substitutions stay.
KS_API void KSDLL_InitializeFormats(Kestrona::Data::MemoryResident::IMemoryResidentData& store);
/// Returns the first-time guard of the definition load: 1 before, 0 after.
KS_API std::int32_t KSDLL_GetMiscPointer();
/// Clears the guard and the run state of the load.
KS_API void KSDLL_CreateMiscPointer();

// Hooks

using KsSynchroniseHook = std::int32_t (*)(std::int32_t, std::int32_t);
using KsHook = void (*)();
using KsFileHook = std::int32_t (*)(wchar_t*);
using KsRecordHook = void (*)(std::int32_t);
using KsRecordsHook = void (*)(std::vector<std::int32_t>&);
using KsPairHook = void (*)(std::int32_t, std::int32_t);
using KsTestHook = bool (*)(std::int32_t);

extern KS_API KsSynchroniseHook kss_SynchroniseOp;
extern KS_API KsHook kss_Clear;
extern KS_API KsFileHook kss_ReadFile;
extern KS_API KsFileHook kss_SaveFile;
extern KS_API KsHook RefreshLaunchPoints;
extern KS_API KsRecordHook kss_RedrawOp;
extern KS_API KsHook FreeOrderArrays;
extern KS_API KsTestHook IsTableUsedBySequencer;
extern KS_API KsHook kss_ClearUndo;

/// Installs the host's hooks. Each may be null; `ignored8` and `ignored18` are not kept.
KS_API void SetSequencerFunctions(KsSynchroniseHook synchronise_op, KsHook clear, KsFileHook read_file,
                                  KsFileHook save_file, KsHook refresh_launch_points, KsRecordHook redraw_op,
                                  KsRecordsHook after_sort, KsPairHook ignored8, KsRecordHook first_after_insert,
                                  KsRecordHook second_after_insert, KsRecordHook before_delete,
                                  KsRecordsHook before_delete_many, KsRecordHook after_delete,
                                  KsRecordsHook after_delete_many, KsHook free_order_arrays,
                                  KsTestHook is_table_used_by_sequencer, KsHook clear_undo, KsHook ignored18);
/// Sets every hook to null.
KS_API void ClearSequencerFunctions();

/// What the library does when a process (`reason` 1) or a thread (2) attaches. The first process attach clears the
/// hooks and answers 1, a later one 0; every other reason answers 1.
KS_API std::int32_t LibraryEntry(std::int32_t reason);
