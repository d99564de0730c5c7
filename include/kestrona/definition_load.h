#pragma once

#include <kestrona/host_interfaces.h>
#include <kestrona/store.h>

#include <cstdint>
#include <string>

/// \file
/// Getting a table definition into a store.

/// Loads the process's table definition into an empty store: from a compiled file, an embedded one, or the source that
/// the host parses (`CompilationState`). Runs once a process.
///
/// `file_name` names the source; empty or null tries "KESTRONA.KSTDF", then "KESTRONA.INF". `title` receives a display
/// title of at most 11 characters and a terminator; null is allowed. Everything is borrowed. Returns 0, or -1 after
/// reporting; unless the process runs headless, a failure ends it with exit code 1. When `LoadSource` of the host
/// fails, the host has reported, and the process goes on. A file name of more than 511 characters counts as a file that
/// cannot be opened. Throws the wide text "No value present" (`const wchar_t*`) when a compiled file is wanted and none
/// is named.
///
/// A load that compiles writes the file whole or leaves the former one as it was; a failure to write it fails the load.
/// Throws the wide text "Unexpected state" when `CompileType` names no kind of file.
///
/// With `ExecutionState::get_ExtractTranslations` the load opens the lists of texts to translate (translation_writer.h)
/// in the current directory.
///
/// Requires: `native_config`; every other pointer may be null.
KS_API std::int32_t KSSERVER_LoadTableDefinition(Kestrona::Data::MemoryResident::MemoryResidentData& store,
                                                 const wchar_t* file_name, wchar_t* title,
                                                 INativeConfigWrapper* native_config, IInformationFeedback* feedback,
                                                 IGlobalizationHelper* globalization, IResourceHandler* resources,
                                                 IOleServerManager* ole_servers);

/// Resolves the definition that stands in the store and, with `create_arrays`, makes its columns. A host that has
/// filled the store from a source calls this. Returns 0, or -1 after reporting.
KS_API std::int32_t check_database_access(Kestrona::Data::MemoryResident::MemoryResidentData& store, bool create_arrays,
                                          IInformationFeedback* feedback);

/// Links each format that names an associated table to the parent of that name, or of that classification. A format
/// whose parent is told by a classification that no field has is kept out of the database. A child takes over its
/// parent's extension. Whoever fills a store from a source calls this, or sets the same links itself, before
/// `check_database_access`. Returns false after reporting, with `caption`, that a parent is missing or that a child has
/// an extension of its own.
KS_API bool JoinAssociatedTables(Kestrona::Data::MemoryResident::MemoryResidentData& store,
                                 const std::wstring& caption);

/// Makes the columns of every field. Shared columns and overrides are made after the columns that they lean on.
KS_API void KSDLL_CreateDataArrays(Kestrona::Data::MemoryResident::MemoryResidentData& store);

/// Ends the process with exit code 1, unless it runs headless.
KS_API void ErrorExit();

/// Keeps `path` as the definition's file name and makes its folder the current directory. Without a folder part the
/// directory stays. A path of more than 511 characters is ignored.
KS_API void SetCurrentDirectoryFromFilename(const wchar_t* path);

/// Tells whether the definition came from a compiled file: true from the moment one was opened.
[[nodiscard]] KS_API bool FromCompiled();

/// Shows a text as an error without a caption, then calls `ErrorExit`.
KS_API void CompileFail(const std::wstring& text);
