#pragma once

#include <kestrona/column.h>
#include <kestrona/export.h>
#include <kestrona/memory_resident_data.h>

#include <cstddef>
#include <cstdint>
#include <vector>

/// \file
/// Paths through references: from a format to a field, of the same format or another, that passes a test of the host.
///
/// A path is found once, from the schema alone, and followed for many records (tracked_values.h). It holds column
/// pointers: find it again after the schema or a column has changed.
///
/// A path of one step ends in the start format itself. In a longer one each step but the last is a reference into the
/// format of the next. A reverse path has a list field: no reference leads on, but another format keeps a matrix over
/// the start format. Its first step is the field of the start format that the matrix refers to, its second the matrix.

namespace Kestrona::Tracking {

namespace Conditions {

/// The host's test for the field that a path is to reach.
class KS_API ITrackingCondition {
public:
    virtual ~ITrackingCondition() = default;
    /// Tells whether the field is a target. Must not change the schema; a search asks once for each field at most.
    virtual bool Test(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format, std::int32_t field) = 0;
};

} // namespace Conditions

/// Bits of `TrackingStep::flags`: what the field of a step is.
namespace StepFlag {
inline constexpr std::uint32_t kList = 0x01;         ///< An AUTO LIST with a format in `GetDbTableY`.
inline constexpr std::uint32_t kRelatedList = 0x02;  ///< RELATED LIST.
inline constexpr std::uint32_t kKeepKeys = 0x04;     ///< A list that keeps keys of deleted records.
inline constexpr std::uint32_t kTwoKeys = 0x10;      ///< AUTO DIMENSION: an element is named by two keys.
inline constexpr std::uint32_t k3DMatrix = 0x20;     ///< 3DMATRIX.
inline constexpr std::uint32_t kText = 0x40;         ///< FREE FORMAT: holds text.
inline constexpr std::uint32_t kParallelList = 0x80; ///< A list beside another one.
} // namespace StepFlag

/// One field on the way.
struct TrackingStep {
    std::uint32_t flags = 0; ///< See `StepFlag`.
    std::int32_t format = -1;
    std::int32_t field = -1;
    bool xFound = false; ///< `xColumn` and `yColumn` give the two keys of this two-key reference.
    bool yFound = false; ///< As `xFound`.
    Data::MemoryResident::IColumn<double>* xColumn = nullptr;
    Data::MemoryResident::IColumn<double>* yColumn = nullptr;
    Data::MemoryResident::IColumn<double>* column = nullptr; ///< The field's values; null reads 0.0.
};

/// A path, resolved or not. The caller owns it; the columns are the store's.
struct TrackingPath {
    /// Steps that a path can have: ten references and the target, and one to spare.
    static constexpr std::size_t kMaxSteps = 12;

    std::vector<TrackingStep> steps = std::vector<TrackingStep>(kMaxSteps);
    /// The field of the start format where the path begins, which is the target of a path of one step; -1 while the
    /// path has not been resolved.
    std::int32_t field = -1;
    std::int16_t depth = 0;      ///< Steps in use.
    std::int32_t listField = -1; ///< The matrix of a reverse path, -1 in any other.
    bool direct = false;         ///< The value stands in the first column.
    std::int32_t xField = -1;    ///< Field of the start format that gives the first key of a matrix target.
    std::int32_t yField = -1;    ///< Field of the start format that gives the second key.
    Data::MemoryResident::IColumn<double>* xColumn = nullptr;
    Data::MemoryResident::IColumn<double>* yColumn = nullptr;
};

/// Returns the last step. Throws the wide text "Path has not been resolved" (`const wchar_t*`).
[[nodiscard]] KS_API const TrackingStep& GetTargetStep(const TrackingPath& path);

/// Returns the first field of the format that passes the test, -1 for none.
///
/// Requires here and below: `condition` not null.
[[nodiscard]] KS_API std::int32_t KSDLL_LocateLocalReference(Data::MemoryResident::IMemoryResidentData& store,
                                                             std::int32_t format,
                                                             Conditions::ITrackingCondition* condition);

/// Resolves a path of one step, to a field of the format itself. The path is always direct. What the path held before
/// goes; without such a field it is left unresolved. So do the two below.
KS_API void KSDLL_LocateLocalReferenceAsDataPath(Data::MemoryResident::IMemoryResidentData& store, TrackingPath& path,
                                                 std::int32_t format, Conditions::ITrackingCondition* condition);

/// Resolves a path and returns its `field`, -1 for none.
///
/// A field of the format at hand comes before any reference. Then the references are tried in the order of the fields,
/// each to its end: at most ten of them one behind the other, and each format once, also when it was entered in vain.
/// With `follow_additional` lists and AUTO DIMENSION fields whose format has a target itself are tried as well.
///
/// Where no reference leads to a target, the path is a reverse one: the formats that are always loaded and have a
/// target are searched, in order, for the first matrix over the start format (`GetDbTable`, or in a matrix that is not
/// two-dimensional `GetDbTableY`), or field marked for it (`Classes::kReverseSearch`).
KS_API std::int32_t KSDLL_LocateDataTrack(Data::MemoryResident::IMemoryResidentData& store, TrackingPath& path,
                                          std::int32_t format, bool follow_additional,
                                          Conditions::ITrackingCondition* condition);

/// The usual way to resolve a path: `KSDLL_LocateDataTrack` without additional lists, and where the target is
/// dimensioned by formats (AUTO DIMENSION or 3DMATRIX) the fields of the start format that name its element.
///
/// The X field is the first field of the start format that refers to the target's X format (`GetDbTable`), itself or
/// through the field that it refers to; the Y field likewise with `GetDbTableY`. FAMILY and exempt fields, and UPDATE
/// REFERENCE fields without text, are passed.
KS_API void setDataPath(Data::MemoryResident::IMemoryResidentData& store, TrackingPath& path, std::int32_t format,
                        Conditions::ITrackingCondition* condition);

} // namespace Kestrona::Tracking
