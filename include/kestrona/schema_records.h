#pragma once

#include <kestrona/caches.h>
#include <kestrona/change_set.h>
#include <kestrona/column.h>
#include <kestrona/expression.h>
#include <kestrona/owned_text.h>
#include <kestrona/types.h>

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

/// \file
/// The schema records of a store: what it knows of each format and each field.
///
/// They are the store's own working data, shown so that tools can look at what no store operation gives. Change them
/// through the store.

namespace Kestrona::Data::MemoryResident {

/// The configurable state of a field.
struct FieldClassification {
    std::wstring classString; ///< The classification string.
    std::int32_t dialogOrder = 0;
    std::int16_t dialogLevel = 0; ///< 0x8000 hides the field's dialog.
    std::array<std::uint32_t, kClassWords> classWords{};
};

/// One field of a format.
///
/// A column pointer may be held by several fields of the format (shared columns); the store deletes each column once.
struct field_info {
    std::wstring name;
    FieldClassification original; ///< The definition as read.
    FieldClassification current;  ///< What the store's class operations read and change.
    bool originalTaken = false;   ///< `original` holds a snapshot.
    std::unique_ptr<SubstituteCache> substituteCache;
    std::unique_ptr<SubstituteCache> substitutxCache;
    std::unique_ptr<NumberFormatCache> numberFormatCache;
    std::unique_ptr<StringTableNameCache> stringTableNameCache;
    FieldHiddenInfo hiddenInfo;
    std::int32_t stringTableIndex = -1; ///< Cached number of the field's string table; -1 when not looked up.
    std::int32_t xLocation = 0;
    std::uint32_t type = 0;  ///< Type code, see `TypeBit`.
    std::int32_t table = 0;  ///< Format referred to, or the one that sizes a matrix's first dimension.
    std::int32_t source = 0; ///< Field of that format.
    std::int32_t sourceS = 0;
    std::int32_t related = 0;
    std::int32_t relatedY = 0;
    std::int32_t matrixField = 0; ///< The list field that a list runs parallel to.
    IColumn<double>* column = nullptr;
    IColumn<double>* overrideTarget = nullptr; ///< The column that an OVERRIDE column also writes to; borrowed.
    double defaultValue = 0.0;
    IColumn<std::wstring>* stringColumn = nullptr;
    IColumn<std::int32_t>* matrixColumn = nullptr; ///< Per record the identity of its matrix; -1 for none.
    OwnedText matrixXLabel;
    OwnedText matrixYLabel;
    std::int32_t tableY = 0; ///< Format of a matrix's second dimension, or a field number for some classes.
    std::int32_t sourceY = 0;
    ReadOnlyType readOnly = ReadOnlyType::No;
    std::array<std::int32_t, kDataSlots> data{};
    std::unique_ptr<INativeExpression> evaluateExpression;
    std::unique_ptr<INativeExpression> hiddenIfExpression;
    bool parentSortEnabled = true;
};

/// One format.
struct formats_info {
    bool eligibleForCommonDataset = false;
    bool originalNameTaken = false; ///< `originalDisplayName` holds a snapshot.
    std::wstring displayName;
    std::wstring originalDisplayName; ///< The display name of the Original view.
    OwnedText name;                   ///< Null where no format stands.
    OwnedText extension;              ///< A format with one is loadable.
    OwnedText defaultDatasetName;
    std::unique_ptr<std::array<wchar_t, kMaxDatasetName + 1>> currentDatasetName; ///< Null stands for "".
    std::int32_t minimumLength = 0;
    std::vector<field_info> fields;
    std::int32_t fieldCount = 0; ///< What `GetDbFields` tells; `fields` may hold more or fewer.
    std::int32_t recordCount = 0;
    std::int32_t keyField = -1; ///< Field of the primary key.
    std::unique_ptr<IColumn<std::int32_t>> updateColumn;
    OwnedText associatedTableName; ///< A format with one is a child of that root format.
    std::vector<std::int32_t> childTables;
    std::int32_t userMaximumRecords = 0;
    std::int32_t copiedFormatSource = -1; ///< The format that a duplicate was made from.
    ChangedRecords changedRecords;
    ErasedKeys erasedKeys;
    bool changed = false;
    std::int64_t timestamp = 0; ///< Counts changes; no clock.
    std::uint32_t timestampSuspendCount = 0;
};

/// One entry of a string table.
struct TableEntry {
    OwnedText text;
    double value = 0.0;
};

/// One string table.
struct TableInfo {
    OwnedText name;
    std::unique_ptr<TableEntry[]> entries;
    std::int32_t entryCount = 0;
};

} // namespace Kestrona::Data::MemoryResident
