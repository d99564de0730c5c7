#pragma once

#include <kestrona/export.h>
#include <kestrona/host_interfaces.h>
#include <kestrona/store.h>
#include <kestrona/translation_writer.h>

#include <cstdio>
#include <string>

/// \file
/// A table definition as a stream of bytes: the body of a compiled configuration and the definition in a snapshot.
///
/// The stream holds what the store holds of each format and field when it is written. docs/file-formats.md tells the
/// layout. Threads: one stream at a time in a process, see binary_strings.h; whoever opens the file resets the state.

/// Appends the definition of `store` to an open file, at the place where the file stands. `text1` and `text2` are two
/// texts that travel behind the formats; null leaves a text out, and a stream that is read with `has_trailer_texts`
/// needs both. `ole_servers` may be null. A failed write shows in `std::ferror(stream)`.
KS_API void WriteTableDefinitionToStream(Kestrona::Data::MemoryResident::MemoryResidentData& store,
                                         const wchar_t* text1, const wchar_t* text2, std::FILE* stream,
                                         IOleServerManager* ole_servers);

/// Fills `store` from the stream; whatever formats it held are gone. The definition is not resolved again and has no
/// columns: see `check_database_access` and `KSDLL_CreateDataArrays`.
///
/// `wide` tells 16-bit texts from 8-bit ones, `has_common_dataset_flag` whether the formats have the flag word that
/// came with version 14.3, `has_trailer_texts` whether two texts stand behind the formats. `writer`, which may be null,
/// hears the texts to translate. `file_name` names the file in messages, `caption` is their caption. `ole_servers` may
/// be null.
///
/// Returns false after reporting that the stream is cut short or damaged, or that a parent format is missing. The file
/// stays open either way. Nothing is allocated for more than what the file holds.
KS_API bool ReadTableDefinitionFromStream(Kestrona::Data::MemoryResident::MemoryResidentData& store, std::FILE* stream,
                                          ITranslationWriter* writer, bool wide, bool has_common_dataset_flag,
                                          bool has_trailer_texts, const std::wstring& file_name,
                                          const std::wstring& caption, IOleServerManager* ole_servers);
