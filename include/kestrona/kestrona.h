#pragma once

/// \file
/// Everything that a user of the library may name.

#include <kestrona/built_in_tables.h>
#include <kestrona/caches.h>
#include <kestrona/change_set.h>
#include <kestrona/classes.h>
#include <kestrona/classification_parsers.h>
#include <kestrona/classification_readers.h>
#include <kestrona/column.h>
#include <kestrona/compilation_state.h>
#include <kestrona/concrete_columns.h>
#include <kestrona/data_storage.h>
#include <kestrona/definition_load.h>
#include <kestrona/definition_model.h>
#include <kestrona/execution_state.h>
#include <kestrona/export.h>
#include <kestrona/expression.h>
#include <kestrona/find_result.h>
#include <kestrona/host_interfaces.h>
#include <kestrona/host_settings.h>
#include <kestrona/indexed_column.h>
#include <kestrona/memory_resident_data.h>
#include <kestrona/owned_text.h>
#include <kestrona/process.h>
#include <kestrona/record_search.h>
#include <kestrona/record_state.h>
#include <kestrona/record_state_strategy.h>
#include <kestrona/schema_records.h>
#include <kestrona/services.h>
#include <kestrona/store.h>
#include <kestrona/types.h>
#include <kestrona/unicode.h>
#include <kestrona/version.h>
