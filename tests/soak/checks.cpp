#include "soak/checks.h"

#include "soak/plant.h"

#include <kestrona/expression_parsing.h>
#include <kestrona/record_search.h>
#include <kestrona/records.h>
#include <kestrona/sorting.h>
#include <kestrona/tracked_values.h>
#include <kestrona/unicode.h>
#include <kestrona/value_text.h>

#include <algorithm>
#include <cmath>
#include <numeric>

namespace Kestrona::Soak {

using namespace Data::MemoryResident;
using Model::FieldPlan;
using Model::Mirror;
using Model::Twin;

namespace {

constexpr std::int32_t kSamples = 24;

std::int32_t DrawRecord(Mirror& mirror, std::int32_t format) {
    return mirror.Draw(mirror.TheTwin().Size(format));
}

bool IsPlainNumber(const FieldPlan& field) {
    return field.field.type == TypeBit::kReal || field.field.type == TypeBit::kInteger;
}

std::vector<SortDetails> DrawSort(Mirror& mirror, std::int32_t format) {
    std::vector<SortDetails> details;
    for (std::int32_t field = 0; field < mirror.Fields(format); ++field) {
        const FieldPlan& plan = mirror.Field(format, field);
        const bool is_sortable = IsPlainNumber(plan) || (plan.IsText() && !plan.Has(Classes::kEncrypted));
        if (is_sortable && mirror.Chance(50)) {
            details.insert(details.begin() + mirror.Draw(static_cast<std::int32_t>(details.size()) + 1),
                           {.field = field, .ascending = mirror.Chance(50)});
        }
    }
    return details;
}

// Negative, 0 or positive. The texts are letters without digits, and upper case, so that they stand as their codes do.
int Compare(const Mirror& mirror, const Twin& twin, std::int32_t format, std::int32_t field, std::int32_t a,
            std::int32_t b) {
    if (mirror.Field(format, field).IsText()) {
        return twin.Text(format, field, a).compare(twin.Text(format, field, b));
    }
    const double left = twin.Number(format, field, a);
    const double right = twin.Number(format, field, b);
    return left < right ? -1 : left > right ? 1 : 0;
}

std::vector<std::int32_t> Sorted(Mirror& mirror, std::int32_t format, const std::vector<SortDetails>& details) {
    const Twin& twin = mirror.TheTwin();
    std::vector<std::int32_t> records(static_cast<std::size_t>(twin.Size(format)));
    std::iota(records.begin(), records.end(), 0);
    std::ranges::stable_sort(records, [&](std::int32_t a, std::int32_t b) {
        for (const SortDetails& entry : details) {
            if (const int order = Compare(mirror, twin, format, entry.field, a, b); order != 0) {
                return (order < 0) == entry.ascending;
            }
        }
        return false;
    });
    return records;
}

// One field of one format.
class Target : public Tracking::Conditions::ITrackingCondition {
public:
    Target(std::int32_t format, std::int32_t field) : target_{format, field} {}

    bool Test(IMemoryResidentData& /*store*/, std::int32_t format, std::int32_t field) override {
        return target_ == TableColumn{format, field};
    }

private:
    TableColumn target_;
};

// The record at the end of a path of references, -1 where a key has none.
std::int32_t EndOf(const Twin& twin, const Tracking::TrackingPath& path, std::int32_t record) {
    for (std::size_t step = 0; step + 1 < static_cast<std::size_t>(path.depth) && record != -1; ++step) {
        const double key = twin.Number(path.steps[step].format, path.steps[step].field, record);
        record = twin.FindKey(path.steps[step + 1].format, key);
    }
    return record;
}

std::string CheckWalk(Mirror& mirror, const Tracking::TrackingPath& path, std::int32_t record) {
    constexpr double kLost = -77.0;
    const Tracking::TrackingStep& target = Tracking::GetTargetStep(path);
    const std::int32_t end = EndOf(mirror.TheTwin(), path, record);
    const double expected = end == -1 ? kLost : mirror.TheTwin().Number(target.format, target.field, end);
    if (Tracking::FollowDataPathForValue(mirror.Store(), path, record, kLost) != expected) {
        return "FollowDataPathForValue";
    }
    return Tracking::TrackForRecord(mirror.Store(), path, record, 0, 0) == end ? "" : "TrackForRecord";
}

// What a number shows is read back as the number.
std::string CheckNumberText(Mirror& mirror, std::int32_t format, std::int32_t field, std::int32_t record) {
    const std::wstring text = KSDLL_FieldToTString(mirror.Store(), format, field, record);
    double value = -1e6;
    ConvertStringByColumnType(mirror.Store(), format, field, text.c_str(), &value);
    return value == mirror.TheTwin().Number(format, field, record) ? "" : "a number from its text";
}

// A reference to a text shows it.
std::string CheckReferenceText(Mirror& mirror, std::int32_t format, std::int32_t field, std::int32_t record) {
    const Fixtures::Field& plan = mirror.Field(format, field).field;
    const Twin& twin = mirror.TheTwin();
    const std::int32_t found = twin.FindKey(plan.table, twin.Number(format, field, record));
    return found == -1 || KSDLL_FieldToTString(mirror.Store(), format, field, record) ==
                              twin.Text(plan.table, plan.source, found)
               ? ""
               : "the text of a reference";
}

// A field that can be given any number, -1 for none.
std::int32_t FindFreeNumber(const Mirror& mirror, std::int32_t format) {
    for (std::int32_t field = kKey + 1; field < mirror.Fields(format); ++field) {
        if (IsPlainNumber(mirror.Field(format, field)) && !mirror.Field(format, field).Has(Classes::kEvaluate)) {
            return field;
        }
    }
    return -1;
}

// Gives a number of the record another value.
void Change(Mirror& mirror, std::int32_t format, std::int32_t record) {
    const std::int32_t field = FindFreeNumber(mirror, format);
    const double value = mirror.TheTwin().Number(format, field, record);
    mirror.SetNumber(format, field, record, value < 500.0 ? value + 1.0 : 0.0);
}

constexpr std::int32_t kChanged = 2;

std::string CheckWriteMarks(Mirror& mirror, std::int32_t format, std::int32_t record) {
    MemoryResidentData& store = mirror.Store();
    const std::int64_t before = store.GetTimestamp(format);
    Change(mirror, format, record);
    if (!store.GetDbChanged(format) || store.GetTimestamp(format) <= before) {
        return "no change after a write";
    }
    const std::int32_t other = DrawRecord(mirror, format);
    return store.GetRecordChanged(format, record) != kChanged              ? "a record without its mark"
           : other != record && store.GetRecordChanged(format, other) != 0 ? "a mark on another record"
                                                                           : "";
}

std::string CheckTransactionMarks(Mirror& mirror, std::int32_t format, std::int32_t record) {
    MemoryResidentData& store = mirror.Store();
    const std::string id = store.StartRecordStateTransaction(format, -1);
    Change(mirror, format, record);
    if (mirror.Chance(50)) {
        store.EndRecordStateTransaction(format, id, -1);
        return store.GetRecordChanged(format, record) == kChanged ? "" : "no mark after a transaction";
    }
    store.RevertRecordState(format, id, -1);
    return store.GetRecordChanged(format, record) == 0 ? "" : "a mark after it was taken back";
}

std::string CheckSuspendedMarks(Mirror& mirror, std::int32_t format) {
    MemoryResidentData& store = mirror.Store();
    const std::int64_t before = store.GetTimestamp(format);
    store.SuspendTimestampChangeTracking(format);
    for (std::int32_t i = 0; i < kSamples; ++i) {
        Change(mirror, format, DrawRecord(mirror, format));
    }
    store.ResumeTimestampChangeTracking(format);
    return store.GetTimestamp(format) == before + 1 ? "" : "the timestamp of a batch";
}

} // namespace

std::string CheckKeys(Mirror& mirror, std::int32_t format) {
    for (std::int32_t i = 0; i < kSamples; ++i) {
        const double key = mirror.DrawKey(format);
        if (mirror.Store().LookupKeyRecord(format, key) != mirror.TheTwin().FindKey(format, key)) {
            return "LookupKeyRecord";
        }
    }
    return "";
}

std::string CheckSort(Mirror& mirror, std::int32_t format) {
    std::vector<SortDetails> details = DrawSort(mirror, format);
    if (details.empty()) {
        return "";
    }
    std::vector<std::int32_t> records;
    KSDLL_SortToVector(mirror.Store(), format, details, records);
    return records == Sorted(mirror, format, details) ? "" : "KSDLL_SortToVector";
}

std::string SortRows(Mirror& mirror, std::int32_t format) {
    std::vector<SortDetails> details = DrawSort(mirror, format);
    if (!details.empty()) {
        mirror.Tell("KSDLL_MulticolumnSort ", format);
        const std::vector<std::int32_t> records = Sorted(mirror, format, details);
        KSDLL_MulticolumnSort(mirror.Store(), format, details, false, true, nullptr);
        mirror.TheTwin().Reorder(format, records);
    }
    return "";
}

std::string CheckTexts(Mirror& mirror, std::int32_t format) {
    for (std::int32_t i = 0; i < kSamples; ++i) {
        const std::int32_t field = mirror.Draw(mirror.Fields(format));
        const FieldPlan& plan = mirror.Field(format, field);
        const std::int32_t record = DrawRecord(mirror, format);
        std::string problem;
        if (IsPlainNumber(plan)) {
            problem = CheckNumberText(mirror, format, field, record);
        } else if (plan.Has(Classes::kDatabase) && !plan.IsMatrix() &&
                   mirror.Field(plan.field.table, plan.field.source).IsText()) {
            problem = CheckReferenceText(mirror, format, field, record);
        }
        if (!problem.empty()) {
            return problem + ", field " + std::to_string(field) + " record " + std::to_string(record);
        }
    }
    return "";
}

std::string CheckMarks(Mirror& mirror, std::int32_t format) {
    if (FindFreeNumber(mirror, format) == -1) {
        return "";
    }
    mirror.Tell("ResetDbChanged ", format);
    mirror.Store().ResetDbChanged(format);
    if (mirror.Store().GetDbChanged(format)) {
        return "a change after a reset";
    }
    const std::int32_t record = DrawRecord(mirror, format);
    switch (mirror.Draw(3)) {
    case 0:
        return CheckWriteMarks(mirror, format, record);
    case 1:
        return CheckTransactionMarks(mirror, format, record);
    default:
        return CheckSuspendedMarks(mirror, format);
    }
}

std::string CheckExpressions(Mirror& mirror, std::int32_t format) {
    struct Case {
        const wchar_t* text;
        double (*expected)(double stock, double load);
    };

    static constexpr Case kCases[] = {
        {L"({#Stock} > 2) && ({#Load} <= 1.5)",
         [](double s, double l) {
             return s > 2 && l <= 1.5 ? 1.0 : 0.0;
         }},
        {L"FUNC_ABS({#Load} - {#Stock}) * 3",
         [](double s, double l) {
             return std::abs(l - s) * 3;
         }},
        {L"{#Twice} - {#Load}",
         [](double s, double l) {
             return l + s;
         }},
    };
    const Case& c = kCases[mirror.Draw(3)];
    const Twin& twin = mirror.TheTwin();
    INativeExpression* const compiled = KSDLL_CreateExpressionFromCache(mirror.Store(), format, c.text, false, nullptr);
    INativeExpression* const text =
        KSDLL_CreateExpressionFromCache(mirror.Store(), format, L"{$Name}: {#Stock}", true, nullptr);
    if (compiled == nullptr || text == nullptr) {
        return "an expression does not compile";
    }
    std::vector<double> block(static_cast<std::size_t>(twin.Size(format)));
    compiled->EvaluateBlock(mirror.Store(), 0, twin.Size(format), block.data());
    for (std::int32_t record = 0; record < twin.Size(format); ++record) {
        const double expected = c.expected(twin.Number(format, kStock, record), twin.Number(format, kLoad, record));
        if (block[static_cast<std::size_t>(record)] != expected) {
            return "EvaluateBlock of " + ToUtf8(c.text) + ", record " + std::to_string(record);
        }
    }
    for (std::int32_t i = 0; i < kSamples; ++i) {
        const std::int32_t record = DrawRecord(mirror, format);
        std::wstring shown;
        KSDLL_EvaluateExpression(mirror.Store(), record, text, &shown);
        const std::wstring expected =
            twin.Text(format, kName, record) + L": " + KSDLL_ParseWriteDoubleT(twin.Number(format, kStock, record));
        if (shown != expected) {
            return "a text expression gives \"" + ToUtf8(shown) + "\" instead of \"" + ToUtf8(expected) + '"';
        }
        if (KSDLL_EvaluateExpression(mirror.Store(), record, compiled, nullptr) !=
            block[static_cast<std::size_t>(record)]) {
            return "KSDLL_EvaluateExpression, record " + std::to_string(record);
        }
    }
    return "";
}

std::string CheckPath(Mirror& mirror, std::int32_t format) {
    std::int32_t end = format;
    for (std::int32_t left = 1 + mirror.Draw(3); left > 0; --left) {
        end = mirror.Field(end, kNeeds).field.table;
    }
    Target target(end, kLoad);
    Tracking::TrackingPath path;
    Tracking::setDataPath(mirror.Store(), path, format, &target);
    if (path.field == -1) {
        return "a path that is not found";
    }
    for (std::int32_t i = 0; i < kSamples / 4; ++i) {
        const std::int32_t record = DrawRecord(mirror, format);
        if (mirror.Chance(20)) {
            const double value = mirror.Draw(100) / 2.0;
            const std::int32_t written = EndOf(mirror.TheTwin(), path, record);
            mirror.Tell("SetValue ", end, ' ', written, ' ', value);
            Tracking::SetValue(mirror.Store(), path, record, value);
            if (written != -1) {
                mirror.TheTwin().SetNumber(end, kLoad, written, value);
            }
        }
        if (const std::string problem = CheckWalk(mirror, path, record); !problem.empty()) {
            return problem + ", record " + std::to_string(record);
        }
    }
    return "";
}

} // namespace Kestrona::Soak
