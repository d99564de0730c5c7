// How long it takes to resolve a definition, and how that grows with its length; "each" is the time of one field.
#include "measure.h"

#include <kestrona/classes.h>
#include <kestrona/definition_load.h>
#include <kestrona/execution_state.h>
#include <kestrona/process.h>
#include <kestrona/store.h>

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string>

namespace Kestrona::Bench {
namespace {

constexpr std::int32_t kFields = 100;

// What fields carry beside their references: about 130 characters.
const std::wstring kCommonWords = L" DIALOG FIELD NAME \"Planned quantity of the order\" TIP DISPLAY(4) FORMAT(8.2) "
                                  L"HELPID(1204) HELP TEXT(The quantity still to be made)";

struct FieldKind {
    const wchar_t* name;
    std::uint32_t type;
    const wchar_t* words; // '#' stands for the name of another format
    std::initializer_list<Class> classes;
};

const FieldKind kKinds[] = {
    {L"Key", TypeBit::kReal, L"UNIQUE", {Classes::kUnique, Classes::kInheritFromParent}},
    {L"Product", TypeBit::kReal, L"DATABASE(#(Key0))", {}},
    {L"Name", TypeBit::kReference, L"FREE FORMAT", {Classes::kFreeFormat}},
    {L"Sum", TypeBit::kReal, L"EVALUATE \"{$Key0} * 2 + {$Product1}\"", {Classes::kEvaluate}},
    {L"Colour", TypeBit::kReal, L"SUBSTITUTE(1->\"Red\") SUBSTITUTE(2->\"Blue\")", {Classes::kSubstitute}},
    {L"Steps", TypeBit::kMatrix, L"AUTO LIST(#(Key0))", {}},
    {L"Shown", TypeBit::kToggle, L"SWITCH ON(Sum3) | SWITCH OFF(Colour4)", {}},
    {L"Times", TypeBit::kMatrix, L"ASSOCIATE(Steps5)", {}},
    {L"Found", TypeBit::kReal, L"LOOKUP SOURCE(#(Key0))", {}},
    {L"Setups", TypeBit::kMatrix, L"AUTO DIMENSION(From,#(Key0),To,#(Key0)) MATRIX DEFAULT(Product1)", {}},
};

std::wstring FormatName(std::int32_t format) {
    return L"Table of kind " + std::to_wstring(format);
}

std::wstring Classification(const FieldKind& kind, std::int32_t other) {
    std::wstring text = kind.words;
    for (std::size_t at = text.find(L'#'); at != std::wstring::npos; at = text.find(L'#')) {
        text.replace(at, 1, FormatName(other));
    }
    return text + kCommonWords;
}

void FillFormat(MemoryResidentData& store, std::int32_t format, std::int32_t formats) {
    store.SetDbName(format, KSDLL_AddText(FormatName(format).c_str()));
    store.CreateDbFieldInfo(format, kFields);
    store.SetDbFields(format, kFields);
    store.SetDbKey(format, 0);
    for (std::int32_t field = 0; field < kFields; ++field) {
        const FieldKind& kind = kKinds[field % 10];
        store.SetColumnName(format, field, kind.name + std::to_wstring(field));
        store.SetDbType(format, field, kind.type);
        for (const Class c : kind.classes) {
            store.AddDbClass(format, field, c);
        }
        store.SetDbClassString(format, field, Classification(kind, (format * 7 + field) % formats));
    }
}

void ResolveDefinition(benchmark::State& state) {
    ExecutionState::Instance().set_IsRunningHeadless(true);
    const auto formats = static_cast<std::int32_t>(state.range(0));
    const auto make = [&] {
        auto store = Data::MemoryResident::CreateMemoryResidentData();
        store->SetFormatCount(formats);
        for (std::int32_t format = 0; format < formats; ++format) {
            FillFormat(*store, format, formats);
        }
        return store;
    };
    MeasureFresh(state, make, [&](const auto& store) {
        if (check_database_access(*store, state.range(1) != 0, nullptr) != 0) {
            state.SkipWithError("the definition was refused");
        }
    });
    CountEach(state, static_cast<double>(formats) * kFields);
}

BENCHMARK(ResolveDefinition)
    ->ArgNames({"formats", "arrays"})
    ->ArgsProduct({{10, 100, 1000}, {0, 1}})
    ->Unit(benchmark::kMillisecond);

} // namespace
} // namespace Kestrona::Bench
