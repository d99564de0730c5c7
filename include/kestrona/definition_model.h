#pragma once

#include <kestrona/export.h>
#include <kestrona/store.h>
#include <kestrona/types.h>

#include <cstdint>
#include <string>
#include <vector>

/// \file
/// The definition in a store as objects: formats with names, fields with attributes, and a way to change them while the
/// definition as it was read stays at hand.
///
/// The objects are views. They keep a reference to the store and numbers, nothing else; changes go straight into the
/// store, so two objects on one field see each other's changes at once. Who asks for an object deletes it, and uses it
/// only while the store lives. A number past the formats or fields of the store is no error: such an object reads as
/// empty, and writes to it are dropped.
///
/// Every field has two views. Current is what the store works with. Original is the snapshot that `KeepOriginal` took.
///
/// Threads: one at a time.

namespace Kestrona::Configuration {

/// The state of a field that a `ColumnDefinition` shows. The numbers are fixed.
enum class DefinitionView : std::int32_t {
    Original = 1,
    Current = 2
};

/// A field of a format.
class KS_API ColumnDefinition {
public:
    /// Makes a Current view. Throws the wide text "tableIndex must not be less than zero" or "columnIndex must not be
    /// less than zero" (`const wchar_t*`).
    ColumnDefinition(Data::MemoryResident::MemoryResidentData& store, std::int32_t table, std::int32_t column);
    /// The same with the view of the caller's choice.
    ColumnDefinition(Data::MemoryResident::MemoryResidentData& store, std::int32_t table, std::int32_t column,
                     DefinitionView view);
    virtual ~ColumnDefinition();

    [[nodiscard]] std::wstring get_NativeName() const;
    /// Returns the button's text for a free string that has one, else the name for dialogs: the one behind DIALOG FIELD
    /// NAME in the view's classification string, or the native name.
    [[nodiscard]] std::wstring get_DisplayName() const;

    [[nodiscard]] std::int32_t get_ColumnIndex() const { return column_; }

    [[nodiscard]] std::uint32_t get_Type() const;

    /// Tells whether all bits of the class are set in the view.
    [[nodiscard]] bool ClassAttributeDefined(Class attribute) const;
    /// Sets the class. Throws the wide text "Changes are not permitted when using the Original view"
    /// (`const wchar_t*`) on an Original view, and then changes nothing.
    void AddClassAttribute(Class attribute);
    /// Clears the class; throws like `AddClassAttribute`.
    void RemoveClassAttribute(Class attribute);
    /// Sets the class in the view, also in an Original one.
    void OverrideClassAttribute(Class attribute);

    [[nodiscard]] std::wstring get_ClassificationString() const;
    /// Replaces the classification string; what the field had parsed of it is parsed anew. Throws like
    /// `AddClassAttribute`.
    void set_ClassificationString(const std::wstring& text);
    /// Replaces the classification string of the view, also of an Original one.
    void OverrideClassificationString(const std::wstring& text);

    [[nodiscard]] std::int16_t get_DialogLevel() const;
    /// Throws like `AddClassAttribute`.
    void set_DialogLevel(std::int16_t level);
    [[nodiscard]] std::int32_t get_DialogOrder() const;
    /// Throws like `AddClassAttribute`.
    void set_DialogOrder(std::int32_t order);

    [[nodiscard]] bool get_Hidden() const;
    [[nodiscard]] bool get_ReadOnly() const;
    [[nodiscard]] bool get_IncludeSeconds() const;
    [[nodiscard]] bool get_ShowDate() const;
    [[nodiscard]] bool get_ShowTooltip() const;
    /// Returns the rank that `Tooltips::GetToolTipRank` reads in the view's classification string.
    [[nodiscard]] std::int32_t get_TooltipOrder() const;
    /// Returns the number of the dialog that the field calls, none for a field that calls none.
    [[nodiscard]] NullValue<std::int16_t> get_CallDialog() const;
    /// Returns the text of FORMAT in the view's classification string, for example "8.2"; "" for none.
    [[nodiscard]] std::wstring get_NumberFormat() const;
    /// Returns the value by which REMOTE stands for the field: -10000 for the first field of the first format.
    [[nodiscard]] double get_RemoteIdentityValue() const;
    /// Tells whether the field is calculated now, whatever the view.
    [[nodiscard]] bool get_IsEvaluate() const;
    /// Returns the list field that an ASSOCIATE field runs beside, none for other fields.
    [[nodiscard]] NullValue<std::int32_t> get_AssociatedTo() const;

    /// Returns the Original view of the field. The caller deletes it.
    [[nodiscard]] ColumnDefinition* get_Original() const;
    /// Makes the Current state the Original one.
    void KeepOriginal();
    /// Makes the Original state the Current one: classification string, dialog order and level, all class words. Does
    /// nothing as long as no Original has been kept.
    void RestoreOriginal();

private:
    [[nodiscard]] const Data::MemoryResident::FieldClassification& Block() const;
    [[nodiscard]] Data::MemoryResident::FieldClassification* BlockOf(DefinitionView view) const;
    void RequireCurrent() const;

    std::int32_t table_;
    std::int32_t column_;
    DefinitionView view_;
    Data::MemoryResident::MemoryResidentData& store_;
};

/// A level that fields can be put on in the host's dialogs.
struct DialogLevel {
    std::int16_t Level = 0;
    std::wstring Text;     ///< What the host calls the level.
    std::int32_t Kind = 0; ///< 6 for the hidden level, 34 for no level, 1 for a level that is shown.
};

/// A format.
class KS_API TableDefinition {
public:
    /// Throws the wide text "TableIndex must not be less than zero" (`const wchar_t*`).
    TableDefinition(Data::MemoryResident::MemoryResidentData& store, std::int32_t table);
    virtual ~TableDefinition();

    [[nodiscard]] std::wstring get_NativeName() const;
    [[nodiscard]] std::wstring get_DisplayName() const;
    void set_DisplayName(const std::wstring& name);
    /// Returns the display name that `KeepOriginal` kept, "" before. Valid until the schema changes.
    [[nodiscard]] const std::wstring& get_OriginalDisplayName() const;

    /// Returns the field of the primary key, null for a format without one. The caller deletes it.
    [[nodiscard]] ColumnDefinition* get_PrimaryKey() const;
    /// Returns the first field with exactly this name, null for none. The caller deletes it. Linear in the number of
    /// fields.
    [[nodiscard]] ColumnDefinition* FindColumnDefinitionByName(const std::wstring& name) const;
    /// Returns a field; the caller deletes it. Throws like the constructor of `ColumnDefinition`.
    [[nodiscard]] ColumnDefinition* GetColumnDefinition(std::int32_t column) const;
    /// Returns all fields in their order. The caller deletes each.
    [[nodiscard]] std::vector<ColumnDefinition*> get_ColumnDefinitions() const;

    /// Returns the levels of the format's dialog: hidden, none, and the main level, by the host's names for them, then
    /// one for each further level that an ASSOCIATE field stands on, in field order, named after the list that it
    /// belongs to.
    [[nodiscard]] std::vector<DialogLevel> get_DialogLevels() const;

    /// Tells whether the classification of any field holds SYSTEMDB. The answer of the first call stays.
    [[nodiscard]] bool get_SystemTable();
    /// Tells whether the format is a data file of its own: it has an extension.
    [[nodiscard]] bool get_IsLoadable() const;
    [[nodiscard]] bool get_IsEligibleForCommonDataset() const;
    /// Returns the formats that are saved in this format's file.
    [[nodiscard]] std::vector<std::int32_t> get_ChildTables() const;

    /// Makes the display name and the state of every field the Original one.
    void KeepOriginal();
    /// Puts back what `KeepOriginal` kept. A display name or a field that was never kept stays as it is.
    void RestoreOriginal();

private:
    std::int32_t table_;
    bool system_table_ = false;
    bool system_table_known_ = false;
    Data::MemoryResident::MemoryResidentData& store_;
};

/// The whole definition.
class KS_API ConfigurationDefinition {
public:
    explicit ConfigurationDefinition(Data::MemoryResident::MemoryResidentData& store);

    /// Returns a format; the caller deletes it. Throws like the constructor of `TableDefinition`.
    [[nodiscard]] TableDefinition* GetTableDefinition(std::int32_t index) const;
    /// Returns the first format with exactly this name, null for none. The caller deletes it.
    [[nodiscard]] TableDefinition* FindTableDefinitionByName(const std::wstring& name) const;
    /// Returns all formats in their order. The caller deletes each.
    [[nodiscard]] std::vector<TableDefinition*> get_TableDefinitions() const;

    /// `TableDefinition::KeepOriginal` on every format. Linear in the size of the definition.
    void KeepOriginal();
    /// `TableDefinition::RestoreOriginal` on every format.
    void RestoreOriginal();

private:
    [[nodiscard]] std::int32_t GetTableIndex(const std::wstring& name) const;

    Data::MemoryResident::MemoryResidentData& store_;
};

/// What the host shows of a record by another field that it follows a tracking path to.
class KS_API MarkingAttribute {
public:
    MarkingAttribute() = default;
    MarkingAttribute(const MarkingAttribute&) = delete;
    MarkingAttribute& operator=(const MarkingAttribute&) = delete;
    virtual ~MarkingAttribute();

    /// Returns the format and field that the path ends in, -1 and -1 while it has not been resolved.
    [[nodiscard]] virtual TableColumn get_PathEnd() const = 0;
};

/// The fields that a tooltip shows.
class KS_API Tooltips {
public:
    /// Returns the number of TIP DISPLAY(number), -1 for the bare TIP DISPLAY and where there is none. Null acts as "".
    [[nodiscard]] static std::int32_t GetToolTipRank(const wchar_t* classification);

    /// Returns the fields of the format that are shown in tooltips, without `except_field`: by rank, those of rank -1
    /// last, fields of one rank in their order. Throws the wide text "Expected a valid table index" (`const wchar_t*`)
    /// for a negative format.
    [[nodiscard]] static std::vector<std::int32_t>
    GetRankedListOfTooltipFields(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                                 std::int32_t except_field);
    /// The same for the format and field that the attribute's path ends in. Throws the wide text "Path has not been
    /// resolved" (`const wchar_t*`) while it has no end, and for null.
    [[nodiscard]] static std::vector<std::int32_t>
    GetRankedListOfTooltipFields(Data::MemoryResident::IMemoryResidentData& store, const MarkingAttribute* attribute);
};

} // namespace Kestrona::Configuration
