#pragma once

#include <kestrona/column.h>
#include <kestrona/store.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// \file
/// Sorting the records of a format: to a list of record numbers, into a display sequence column, or by moving the rows.
///
/// All sorts are stable: records that no field tells apart keep their order. They cost O(n log n) for texts and O(n) a
/// field for numbers; the key of a record is taken once per sort. A value that is not a number counts as larger than
/// every number.
///
/// Threads: one at a time.

namespace Kestrona::Data::MemoryResident {

/// One field of a sort. A negative field is passed over.
struct SortDetails {
    std::int32_t field = -1;
    bool ascending = true;
};

/// Compares two records of a format.
class KS_API ISort {
public:
    /// With `reverse` 0 tells whether the first record comes before the second, otherwise whether it comes after it.
    ///
    /// Requires: records that the format had when the comparator was made.
    virtual bool Compare(std::int32_t reverse, const std::int32_t& first, const std::int32_t& second) = 0;
    virtual ~ISort() = default;

    /// Sorts the record numbers by this comparison alone, equal ones in the order given. Requires the same.
    virtual void SortStably(std::vector<std::int32_t>& records) = 0;

protected:
    ISort() = default;
    ISort(const ISort&) = default;
    ISort& operator=(const ISort&) = default;
};

/// By the numbers of a value column, which is borrowed.
class KS_API NumericSort final : public ISort {
public:
    NumericSort(const IColumn<double>& column, bool ascending) : column_(column), ascending_(ascending) {}

    bool Compare(std::int32_t reverse, const std::int32_t& first, const std::int32_t& second) override;
    void SortStably(std::vector<std::int32_t>& records) override;

private:
    const IColumn<double>& column_;
    bool ascending_;
};

/// By texts that are read once for each record.
class KS_API CachedTextSort : public ISort {
public:
    bool Compare(std::int32_t reverse, const std::int32_t& first, const std::int32_t& second) override;
    void SortStably(std::vector<std::int32_t>& records) override;
    ~CachedTextSort() override;
    CachedTextSort(const CachedTextSort&) = delete;
    CachedTextSort& operator=(const CachedTextSort&) = delete;

protected:
    CachedTextSort(IMemoryResidentData& store, std::int32_t format, std::int32_t field, bool ascending);

    /// Appends bytes to `keys` whose order is that of the record's text.
    virtual void AppendKey(std::int32_t record, std::string& keys) = 0;

    IMemoryResidentData& store_;
    std::int32_t format_;
    std::int32_t field_;

private:
    struct Place {
        std::size_t begin = 0;
        std::size_t size = std::string::npos; ///< Of a key that has not been made.
    };

    void MakeKey(std::int32_t record);
    /// Requires: the key has been made. Making another one ends the view.
    [[nodiscard]] std::string_view Key(std::int32_t record) const;

    bool ascending_;
    std::string keys_; ///< One behind the other, so that no key has memory of its own.
    std::vector<Place> places_;
};

/// By the display texts of a field (`KSDLL_FieldToTString`), in the order of their UTF-16 code units.
class KS_API StringSort final : public CachedTextSort {
public:
    StringSort(IMemoryResidentData& store, std::int32_t format, std::int32_t field, bool ascending);

private:
    void AppendKey(std::int32_t record, std::string& keys) override;
};

/// By the strings of a FREE FORMAT field under `KSDLL_FirstFilesFirst`, in the locale of the store.
class KS_API FreeFormatSort final : public CachedTextSort {
public:
    FreeFormatSort(IMemoryResidentData& store, std::int32_t format, std::int32_t field, bool ascending);

private:
    void AppendKey(std::int32_t record, std::string& keys) override;

    std::uint32_t locale_;
};

/// Keeps families together: each record stands for its parent, the record whose key its family field holds; one without
/// a parent stands for itself. The smaller record number comes first; members of one family are equal. The columns are
/// borrowed.
class KS_API ParentSort final : public ISort {
public:
    ParentSort(const IColumn<double>& key_column, const IColumn<double>& family_column)
        : key_column_(key_column),
          family_column_(family_column) {}

    bool Compare(std::int32_t reverse, const std::int32_t& first, const std::int32_t& second) override;
    void SortStably(std::vector<std::int32_t>& records) override;

private:
    [[nodiscard]] std::int32_t Parent(std::int32_t record) const;

    const IColumn<double>& key_column_;
    const IColumn<double>& family_column_;
};

} // namespace Kestrona::Data::MemoryResident

/// Puts the record numbers in sorted order into `records`. Without details `records` stays as it is.
KS_API void KSDLL_SortToVector(Kestrona::Data::MemoryResident::MemoryResidentData& store, std::int32_t format,
                               std::vector<Kestrona::Data::MemoryResident::SortDetails>& details,
                               std::vector<std::int32_t>& records);

/// Returns all record numbers of the format, by the field ascending if `sort` is set and in their order if not.
KS_API std::vector<std::int32_t>
KSDLL_SingleColumnSortVector(Kestrona::Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                             std::int32_t field, bool sort);

/// Sorts a format by several fields. With `parent_sort` members of a family stand together, at the place of their
/// parent; fields whose parent sort is not enabled go before that, unless `ignore_parent_sort_enabled`. With `sequence`
/// the place of each record is written into that column and no row moves; without it the rows are exchanged
/// (`SwapItemInfo`), and the host's hook is told where each record of the sequencer's orders went. Without details
/// nothing happens.
KS_API void KSDLL_MulticolumnSort(Kestrona::Data::MemoryResident::MemoryResidentData& store, std::int32_t format,
                                  std::vector<Kestrona::Data::MemoryResident::SortDetails>& details, bool parent_sort,
                                  bool ignore_parent_sort_enabled,
                                  Kestrona::Data::MemoryResident::IColumn<double>* sequence);

/// Brings families together without sorting anything else, and replaces `*record`, if given, by the new place of that
/// record. Nothing happens in a format without a family field. Returns 0.
KS_API std::int32_t KSDLL_ParentSort(Kestrona::Data::MemoryResident::MemoryResidentData& store, std::int32_t format,
                                     std::int32_t* record, Kestrona::Data::MemoryResident::IColumn<double>* sequence);

/// Sorts by two fields, both ascending, families not kept together.
KS_API void KSDLL_RankSort(Kestrona::Data::MemoryResident::MemoryResidentData& store, std::int32_t format,
                           std::int32_t field1, std::int32_t field2,
                           Kestrona::Data::MemoryResident::IColumn<double>* sequence);

/// Makes a column for display sequences: default 1, nothing tracked. The caller owns it.
KS_API Kestrona::Data::MemoryResident::IColumn<double>* KSDLL_CreateDisplaySequenceColumn();

/// Returns the value column of the first field with DISPLAY SEQUENCE, null for none. The store owns it.
KS_API Kestrona::Data::MemoryResident::IColumn<double>*
KSDLL_FindDisplaySequenceColumn(Kestrona::Data::MemoryResident::MemoryResidentData& store, std::int32_t format);

/// Tells whether `a` comes before `b` in the collation of a locale that takes runs of digits as numbers: "A9" before
/// "A10". Texts that are equal to the collation are compared by UTF-16 code units. A locale identity of 0, and an
/// unknown one, stands for the default locale.
KS_API bool KSDLL_FirstFilesFirst(std::uint32_t locale, const std::wstring& a, const std::wstring& b);
