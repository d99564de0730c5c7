// Implements: the choice of a field's columns and of their change tracking.
#include "store/column_factory.h"

#include "columns/matrix_identities.h"
#include "platform/numbers.h"

#include <kestrona/built_in_tables.h>
#include <kestrona/classes.h>
#include <kestrona/concrete_columns.h>
#include <kestrona/encrypted_string_column.h>
#include <kestrona/evaluate_columns.h>
#include <kestrona/record_search.h>
#include <kestrona/record_state.h>

namespace Kestrona::Data::MemoryResident {

namespace {

bool IsTracked(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    if (store.ClassDefined(format, field, Classes::kExcludeFromDb) ||
        store.ClassDefined(format, store.GetDbKey(format), Classes::kExcludeFromDb)) {
        return false;
    }
    return !store.ClassDefined(format, field, Classes::kDisplaySequence) ||
           FindFirstColumnWithClassification(store, format, Classes::kSequenceOwner) != -1;
}

// The low 8 bits of the default's integer.
char ToggleDefault(double value) {
    return static_cast<char>(static_cast<std::int8_t>(Platform::TruncateToInt32(value) & 0xff));
}

} // namespace

NewStrategy CreateRecordStateStrategy(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    formats_info* const info = store.GetFormatInfo(format);
    if (info == nullptr || !IsTracked(store, format, field)) {
        return NewStrategy(new NullRecordStateStrategy());
    }
    return NewStrategy(new RecordStateStrategy(info, format));
}

std::unique_ptr<IColumn<double>> CreateTypedColumn(IMemoryResidentData& store, std::int32_t format,
                                                   std::int32_t field) {
    const std::uint32_t type = store.GetDbType(format, field);
    const double default_value = store.GetDbDefaultValue(format, field);
    if ((type & TypeBit::kInteger) != 0) {
        return std::make_unique<IntegerColumn>(Platform::TruncateToInt32(default_value),
                                               CreateRecordStateStrategy(store, format, field));
    }
    if ((type & TypeBit::kToggle) != 0) {
        return std::make_unique<BoolColumn>(ToggleDefault(default_value),
                                            CreateRecordStateStrategy(store, format, field));
    }
    const bool is_text = (type & TypeBit::kReference) != 0 && store.ClassDefined(format, field, Classes::kFreeFormat);
    if (is_text || (type & (TypeBit::kFreeString | TypeBit::kMatrix)) != 0) {
        return std::make_unique<NullColumn>();
    }
    return std::make_unique<DoubleColumn>(CreateRecordStateStrategy(store, format, field), default_value);
}

std::unique_ptr<IColumn<double>> CreateValueColumn(IMemoryResidentData& store, std::int32_t format, std::int32_t field,
                                                   IColumn<double>* override_target) {
    if ((store.GetDbType(format, field) & TypeBit::kMatrix) != 0) {
        return std::make_unique<NullColumn>();
    }
    if (field == store.GetDbKey(format)) {
        return std::make_unique<DoubleColumn>(CreateRecordStateStrategy(store, format, field),
                                              store.GetDbDefaultValue(format, field));
    }
    if (store.ClassDefined(format, field, Classes::kEvaluate)) {
        return std::make_unique<EvaluateColumn>(format, field, store);
    }
    if (store.ClassDefined(format, field, Classes::kOverride)) {
        return std::make_unique<OverrideDoubleColumn>(CreateRecordStateStrategy(store, format, field), override_target,
                                                      store.GetDbDefaultValue(format, field));
    }
    return CreateTypedColumn(store, format, field);
}

std::unique_ptr<IColumn<std::wstring>> CreateTextColumn(IMemoryResidentData& store, std::int32_t format,
                                                        std::int32_t field) {
    if (store.ClassDefined(format, field, Classes::kEvaluate)) {
        return std::make_unique<StringEvaluateColumn>(format, field, store);
    }
    std::wstring default_text = KSDLL_GetDefaultFreeFormatStringValue(store, format, field);
    Encryption::EncryptionService* const encryption = Encryption::EncryptionService::Instance();
    if (store.ClassDefined(format, field, Classes::kEncrypted) && encryption->get_FullyEnabled()) {
        return std::make_unique<EncryptedStringColumn>(std::move(default_text),
                                                       CreateRecordStateStrategy(store, format, field), encryption);
    }
    return std::make_unique<StringColumn>(std::move(default_text), CreateRecordStateStrategy(store, format, field));
}

std::unique_ptr<IColumn<std::int32_t>> CreateMatrixIdentityColumn(IMemoryResidentData& store, std::int32_t format,
                                                                  std::int32_t field) {
    return std::make_unique<MatrixIdentityColumn>(CreateRecordStateStrategy(store, format, field));
}

std::unique_ptr<IColumn<std::int32_t>> CreateUpdateColumn() {
    return std::make_unique<ValueManagedDataStorage<std::int32_t>>(0, NewStrategy(new NullRecordStateStrategy()));
}

} // namespace Kestrona::Data::MemoryResident
