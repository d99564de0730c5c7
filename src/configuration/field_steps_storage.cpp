// Matrices of texts, whose texts are kept as records of another format.
#include "configuration/field_steps.h"
#include "configuration/messages.h"
#include "configuration/report.h"

#include <kestrona/classes.h>

namespace Kestrona::Configuration {

using Data::MemoryResident::IMemoryResidentData;

namespace {

constexpr std::uint32_t kMatrixOfTexts = TypeBit::kMatrix | TypeBit::kReference;

bool KeepsTexts(IMemoryResidentData& store, TableColumn target) {
    return store.ClassDefined(target.format, target.field, Classes::kFreeFormat) &&
           (store.GetDbType(target.format, target.field) & TypeBit::kReference) != 0;
}

} // namespace

bool CheckStringsHaveStorage(FieldScope& scope) {
    if (scope.Type() == kMatrixOfTexts && scope.Is(Classes::kFreeFormat) && !scope.Is(Classes::kStringStorage)) {
        return scope.Refuse(Message(kMsgStringsNeedStorage));
    }
    return true;
}

bool ResolveStringStorage(FieldScope& scope) {
    Reference reference;
    if (!scope.Is(Classes::kStringStorage) ||
        !scope.ScanFormatField(L"STRING STORAGE", L"STRING STORAGE ( %[^(] ( %[^)]", reference)) {
        return true;
    }
    TableColumn target;
    if (!scope.Find(reference, scope.Context(kMsgInStringStorage), Datasets::Own, target)) {
        return false;
    }
    IMemoryResidentData& store = scope.Store();
    if (!KeepsTexts(store, target)) {
        return Fail(Platform::FormatText(Message(kMsgStorageTarget), store.GetDbName(target.format),
                                         store.GetColumnName(target.format, target.field)) +
                    L" " + Message(kMsgStorageTargetTail));
    }
    scope.SetSlots(DataSlot::kStorageFormat, DataSlot::kStorageField, target);
    if (store.ClassDefined(target.format, target.field, Classes::kStorageMark)) {
        scope.Add(Classes::kStorageMark);
    }
    return true;
}

} // namespace Kestrona::Configuration
