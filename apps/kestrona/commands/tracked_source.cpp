#include "commands/tracked_source.h"

#include "data/display_text.h"

#include <kestrona/classes.h>
#include <kestrona/tracked_values.h>
#include <kestrona/unicode.h>

#include <fmt/format.h>

namespace Kestrona::Tool {
namespace {

using Data::MemoryResident::IMemoryResidentData;
using Tracking::TrackingPath;
using Tracking::TrackingStep;
namespace StepFlag = Tracking::StepFlag;

constexpr std::uint32_t kListFlags = StepFlag::kList | StepFlag::kRelatedList | StepFlag::kParallelList;

bool IsReverse(const TrackingPath& path) {
    return path.listField >= 0;
}

bool IsMatrix(IMemoryResidentData& store, const TrackingStep& step) {
    return (store.GetDbType(step.format, step.field) & TypeBit::kMatrix) != 0;
}

std::string FieldName(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    return ToUtf8(store.GetColumnName(format, field));
}

std::string HowTargetReads(IMemoryResidentData& store, const TrackingPath& path, const TrackingStep& step,
                           std::int32_t start) {
    if (!IsMatrix(store, step)) {
        return "value";
    }
    const std::string kind = (step.flags & kListFlags) != 0 ? "list" : "matrix";
    if (path.xField < 0 || path.yField < 0) {
        return kind + (path.depth == 1 && kind == "list" ? ", first entry" : ", element not named");
    }
    return fmt::format("{}, element of {} and {}", kind, FieldName(store, start, path.xField),
                       FieldName(store, start, path.yField));
}

std::string HowStepLeadsOn(IMemoryResidentData& store, const TrackingStep& step) {
    if ((step.flags & kListFlags) != 0) {
        return "list, entry not named";
    }
    return IsMatrix(store, step) || (step.flags & StepFlag::kTwoKeys) != 0 ? "matrix" : "reference";
}

/// Tells whether the way leads through a list of which nothing names an entry.
bool LeavesEntryOpen(const TrackingPath& path) {
    for (std::int32_t i = 0; i + 1 < path.depth; ++i) {
        if ((path.steps[static_cast<std::size_t>(i)].flags & kListFlags) != 0) {
            return true;
        }
    }
    return false;
}

/// A reverse path has the value in its first step, and goes on to whatever has a matrix over it.
std::string HowReverseStep(bool is_last) {
    return is_last ? "reverse" : "value";
}

/// The field whose values a path ends with.
TableColumn ValueField(const TrackingPath& path) {
    const TrackingStep& step = IsReverse(path) ? path.steps.front() : GetTargetStep(path);
    return {step.format, step.field};
}

/// The values that are no cells of a record: elements of lists and matrices, and keys that a reverse path checks.
std::vector<std::optional<double>> ReadElements(IMemoryResidentData& store, const TrackingPath& path,
                                                const std::vector<std::int32_t>& records) {
    const bool is_open = LeavesEntryOpen(path);
    std::vector<std::optional<double>> elements;
    elements.reserve(records.size());
    for (const std::int32_t record : records) {
        bool failed = false;
        const double value = FollowDataPathForValue(store, path, record, &failed);
        elements.push_back(failed || is_open ? std::nullopt : std::optional(value));
    }
    return elements;
}

void IndexKeys(IMemoryResidentData& store, const TrackingPath& path) {
    for (std::size_t i = 0; i < static_cast<std::size_t>(path.depth); ++i) {
        const std::int32_t format = path.steps[i].format;
        store.AddIndexToColumn(format, store.GetDbKey(format));
    }
}

/// The record at the end of the path for each record, -1 for none.
std::vector<std::int32_t> FindRecordsThere(IMemoryResidentData& store, const TrackingPath& path,
                                           std::vector<std::int32_t> records) {
    const bool is_open = LeavesEntryOpen(path);
    for (std::int32_t& record : records) {
        record = is_open ? -1 : TrackForRecord(store, path, record, 0, 0);
    }
    return records;
}

} // namespace

PathSource::PathSource(IMemoryResidentData& store, const TrackingPath& path, std::int32_t format)
    : ListSource({{"Step", CellKind::Number}, {"Format"}, {"Field"}, {"How"}}) {
    for (std::int32_t i = 0; i < path.depth; ++i) {
        const TrackingStep& step = path.steps[static_cast<std::size_t>(i)];
        const bool is_last = i + 1 == path.depth;
        const std::string how = IsReverse(path) ? HowReverseStep(is_last)
                                : is_last       ? HowTargetReads(store, path, step, format)
                                                : HowStepLeadsOn(store, step);
        AddRow({std::to_string(i + 1), ToUtf8(store.GetDbName(step.format)), FieldName(store, step.format, step.field),
                how});
    }
}

TrackedSource::TrackedSource(IMemoryResidentData& store, const TrackingPath& path, std::int32_t format,
                             const std::vector<std::int32_t>& records, CellStyle style)
    : store_(store),
      value_(ValueField(path)),
      style_(style),
      keys_(store, {OwnField(store, format, store.GetDbKey(format))}, records, style),
      columns_(keys_.Columns()) {
    IndexKeys(store, path);
    FollowedField shown = OwnField(store, value_.format, value_.field);
    shown.name = ToUtf8(store.GetDbName(value_.format)) + "." + shown.name;
    if (IsReverse(path) || IsMatrix(store, GetTargetStep(path))) {
        elements_ = ReadElements(store, path, records);
        columns_.push_back({shown.name, CellKind::Text});
    } else {
        fields_.emplace(store, std::vector{shown}, FindRecordsThere(store, path, records), style);
        columns_.push_back(fields_->Columns().front());
    }
}

std::string TrackedSource::Cell(std::size_t row, std::size_t column) const {
    if (column == 0) {
        return keys_.Cell(row, 0);
    }
    return fields_ ? fields_->Cell(row, 0) : ElementText(row);
}

std::string TrackedSource::ElementText(std::size_t row) const {
    if (!elements_[row]) {
        return {};
    }
    if (style_ == CellStyle::Shown) {
        return ToUtf8(ShownValue(store_, value_.format, value_.field, *elements_[row]));
    }
    return ValueText(*elements_[row], FormOfField(store_, value_.format, value_.field));
}

} // namespace Kestrona::Tool
