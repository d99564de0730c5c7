#include "fixtures/schema.h"
#include "fuzz.h"

#include <kestrona/expression_parsing.h>
#include <kestrona/expression_tree.h>
#include <kestrona/store.h>

#include <memory>

// The parser of the expression language. The first byte chooses the kind of the expression; the rest is its text, a
// character for each byte, with the upper half spread over the whole range of characters.

namespace {

using namespace Kestrona;
using namespace Kestrona::Fuzz;
using Data::MemoryResident::MemoryResidentData;

// Two formats: the expression's own, whose fields 3 and 4 are matrices, and that of the script variables.
MemoryResidentData& Store() {
    static const std::unique_ptr<MemoryResidentData> kStore = [] {
        auto store = Data::MemoryResident::CreateMemoryResidentData();
        using namespace Fixtures;
        Field list = Matrix(L"M", {Classes::kAssociate});
        Field loose = Matrix(L"N");
        for (Field* const field : {&list, &loose}) {
            field->type |= TypeBit::kReal;
        }
        AddTable(*store, L"T", {Number(L"A"), Number(L"A B"), Number(L"B"), list, loose}, 1);
        AddTable(*store, L"KSEP Script Variables", {Number(L"Name"), Number(L"Numeric Value"), Number(L"String Value")},
                 1);
        return store;
    }();
    return *kStore;
}

std::wstring WideTextOf(const std::uint8_t* data, std::size_t size) {
    std::wstring text;
    for (std::size_t i = 0; i < size; ++i) {
        const std::uint32_t byte = data[i];
        text += static_cast<wchar_t>(byte < 0x80 ? byte : (byte - 0x7f) * 0x21ff);
    }
    return text;
}

void CheckFailure(const ExpressionErrorInfo& info) {
    Require(!info.Success && !info.Message.empty());
    Require(info.Position >= -1 && info.Position <= static_cast<std::int64_t>(info.Expression.size()) + 1);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    MemoryResidentData& store = Store();
    const bool is_string = (data[0] & 1U) != 0;
    const std::int32_t field = (data[0] & 2U) != 0 ? 3 : -1;
    const std::unique_ptr<INativeExpression> expression(
        KSDLL_CreateFieldExpression(store, 0, field, WideTextOf(data + 1, size - 1), is_string,
                                    [](auto&, ExpressionErrorInfo* info) { CheckFailure(*info); }));
    if (expression != nullptr) {
        Require(expression->Depth() <= Expressions::kMaxTreeDepth);
        std::wstring text;
        const double value = expression->Evaluate(store, 0, -1, &text);
        const double again = expression->Evaluate(store, 0, -1, nullptr);
        Require(value == again || (value != value && again != again));
    }
    return 0;
}
