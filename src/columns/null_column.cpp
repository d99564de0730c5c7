#include <kestrona/concrete_columns.h>

namespace Kestrona::Data::MemoryResident {

void NullColumn::StartTransaction(std::string) {}

void NullColumn::EndTransaction(std::string) {}

void NullColumn::RevertTransaction(std::string) {}

void NullColumn::Insert(std::int32_t, const double&) {}

void NullColumn::Erase(std::int32_t, double) {}

double NullColumn::operator[](std::int32_t) const {
    return 0.0;
}

void NullColumn::SetValue(std::int32_t, const double&) {}

double NullColumn::GetValue(std::int32_t) const {
    return 0.0;
}

std::int32_t NullColumn::Find(const double&) const {
    return -1;
}

FindResult* NullColumn::FindAll(const double&, FindOperator) {
    return new FindResult();
}

FindResult* NullColumn::FindAll(const double&) {
    return new FindResult();
}

void NullColumn::WriteToFile(std::FILE*) {}

void NullColumn::ReadFromFile(std::FILE*) {}

void NullColumn::Clear(bool) {}

std::uint32_t NullColumn::GetCurrentSize() const {
    return 0;
}

double NullColumn::FindMaxValue(bool) {
    return 0.0;
}

double NullColumn::FindMaxValue() {
    return 0.0;
}

double NullColumn::FindMinValue(bool) {
    return 0.0;
}

double NullColumn::FindMinValue() {
    return 0.0;
}

void NullColumn::Resize(std::uint32_t) {}

double NullColumn::GetDefaultValue() const {
    return 0.0;
}

bool NullColumn::HasColumnChanged() {
    return false;
}

std::int32_t NullColumn::GetRecordState(std::int32_t) {
    return 0;
}

void NullColumn::ResetColoumnChanged() {}

bool NullColumn::IsNullColumn() {
    return true;
}

IColumn<double>* NullColumn::CreateIndexedColumn() {
    return new NullColumn;
}

} // namespace Kestrona::Data::MemoryResident
