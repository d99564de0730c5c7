#include "data/record_condition.h"
#include "data/record_order.h"
#include "data/track_target.h"
#include "fuzz.h"
#include "quiet_host.h"

#include <kestrona/records.h>
#include <kestrona/store.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Texts of a command line that name fields: conditions, orders and targets of paths. A text is understood or it is told
// what is wrong; what was understood works on the records.

namespace {

using namespace Kestrona;
using namespace Kestrona::Fuzz;
using namespace Kestrona::Tool;

constexpr std::string_view kDefinition = R"(
format P {
    key N
    field N : INTEGER | UNIQUE
    field "A=B" length 9 : TEXT
}
format O {
    key N
    field N : INTEGER | UNIQUE
    field "<=" : REAL
    field D : DATE AND TIME
    field T : TOGGLE
    field P : REFERENCE | DATABASE(P(A=B))
    field "T:desc" length 9 : TEXT
    field L : MATRIX | REFERENCE | AUTO LIST(P(N)) | DATABASE(P(N))
    field E : REAL | EVALUATE "{#N} * 2"
}
)";
constexpr std::int32_t kFormat = 1;
constexpr std::int32_t kRecords = 3;

Host::DefaultHost& TheHost() {
    static const std::unique_ptr<Host::DefaultHost> host =
        MakeQuietHost([](const std::string&) { return std::string(kDefinition); });
    return *host;
}

MemoryResidentData& Store() {
    static const std::unique_ptr<MemoryResidentData> store = [] {
        auto made = TheHost().CreateStore();
        Require(TheHost().FillAndResolve("main.ksdef", *made) == Host::LoadOutcome::Ok);
        for (std::int32_t record = 0; record < kRecords; ++record) {
            KSDLL_CreateRecord(*made, 0);
            KSDLL_CreateRecord(*made, kFormat);
            made->SetDbString(0, 1, record, std::wstring(1, static_cast<wchar_t>(L'a' + record)));
            made->SetDbString(kFormat, 5, record, std::wstring(1, static_cast<wchar_t>(L'c' - record)));
            made->SetDbValue(kFormat, 1, record, record - 1.0);
            made->SetDbValue(kFormat, 4, record, made->GetDbValue(0, 0, kRecords - 1 - record));
        }
        return made;
    }();
    return *store;
}

bool IsSubset(const std::vector<std::int32_t>& records) {
    return std::ranges::is_sorted(records) && std::ranges::adjacent_find(records) == records.end() &&
           std::ranges::all_of(records, [](std::int32_t record) { return record >= 0 && record < kRecords; });
}

void CheckCondition(MemoryResidentData& store, const std::string& text) {
    Problem problem;
    const std::optional<RecordCondition> condition = ParseCondition(store, kFormat, text, problem);
    Require(condition.has_value() == problem.what.empty());
    Require(!condition || ComparesField(store, kFormat, text));
    if (!condition) {
        return;
    }
    const auto found = FindRecords(store, kFormat, {*condition});
    Require(IsSubset(found));
    Require(FindRecords(store, kFormat, {*condition, *condition}) == found);
}

void CheckOrder(MemoryResidentData& store, const std::vector<std::string>& texts) {
    Problem problem;
    const std::optional<RecordOrder> order = RecordOrder::Parse(store, kFormat, texts, false, problem);
    Require(order.has_value() == problem.what.empty());
    if (order) {
        std::vector<std::int32_t> records{0, 1, 2};
        order->Arrange(records);
        std::ranges::sort(records);
        Require(records == std::vector<std::int32_t>{0, 1, 2});
    }
}

void CheckTarget(MemoryResidentData& store, const std::string& text) {
    Problem problem;
    const auto target = ParseTrackTarget(store, text, problem);
    Require((target != nullptr) == problem.what.empty());
    if (target != nullptr) {
        (void)target->Test(store, kFormat, 0);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    MemoryResidentData& store = Store();
    CheckCondition(store, text);
    const std::size_t half = text.find('\n');
    CheckOrder(store, half == std::string::npos ? std::vector{text}
                                                : std::vector{text.substr(0, half), text.substr(half + 1)});
    CheckTarget(store, text);
    return 0;
}
