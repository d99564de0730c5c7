#include <kestrona/classes.h>
#include <kestrona/expression_parsing.h>
#include <kestrona/expression_tree.h>
#include <kestrona/process.h>
#include <kestrona/store.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <initializer_list>
#include <memory>
#include <string>

// The parser of the expression language. The first byte chooses the kind of the expression; the rest is its text, a
// character for each byte, with the upper half spread over the whole range of characters.

namespace {

using namespace Kestrona;
using Data::MemoryResident::MemoryResidentData;

void Require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

void AddFields(MemoryResidentData& store, std::int32_t format, const wchar_t* name,
               std::initializer_list<const wchar_t*> names) {
    const auto count = static_cast<std::int32_t>(names.size());
    store.SetDbName(format, KSDLL_AddText(name));
    store.SetDbFields(format, count);
    store.CreateDbFieldInfo(format, count);
    std::int32_t field = 0;
    for (const wchar_t* const field_name : names) {
        store.SetColumnName(format, field, field_name);
        store.SetDbType(format, field, TypeBit::kReal);
        ++field;
    }
    store.SetDbKey(format, 0);
    for (field = 0; field < count; ++field) {
        store.CreateDbValues(format, field);
    }
    store.SetCurrentDbSize(format, 1);
}

// Two formats: the expression's own, whose fields 3 and 4 are matrices, and that of the script variables.
MemoryResidentData& Store() {
    static const std::unique_ptr<MemoryResidentData> kStore = [] {
        auto store = Data::MemoryResident::CreateMemoryResidentData();
        store->SetFormatCount(2);
        AddFields(*store, 0, L"T", {L"A", L"A B", L"B", L"M", L"N"});
        store->SetDbType(0, 3, TypeBit::kReal | TypeBit::kMatrix);
        store->SetDbType(0, 4, TypeBit::kReal | TypeBit::kMatrix);
        store->AddDbClass(0, 3, Classes::kAssociate);
        AddFields(*store, 1, L"KSEP Script Variables", {L"Name", L"Numeric Value", L"String Value"});
        return store;
    }();
    return *kStore;
}

std::wstring TextOf(const std::uint8_t* data, std::size_t size) {
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
        KSDLL_CreateFieldExpression(store, 0, field, TextOf(data + 1, size - 1), is_string,
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
