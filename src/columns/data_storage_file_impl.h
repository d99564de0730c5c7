#pragma once

#include "columns/column_file.h"
#include "columns/data_storage_impl.h"

// DataStorage<T> in saved files.
namespace Kestrona::Data::MemoryResident {

template <typename T>
void DataStorage<T>::WriteToFile(std::FILE* file) {
    if constexpr (std::is_arithmetic_v<T>) {
        WriteNumbers(file, values_);
    } else {
        WriteTexts(file, values_);
    }
}

template <typename T>
void DataStorage<T>::ReadFromFile(std::FILE* file) {
    if constexpr (std::is_arithmetic_v<T>) {
        ReplaceValues(ReadNumbers<T>(file, kFirstScratchRecord));
    } else {
        const std::int32_t count = ReadCount(file);
        T text;
        for (std::int32_t i = 0; i < count && ReadText(file, text); ++i) {
            SetValue(i, text);
        }
    }
}

// A loaded table is not a changed table: nothing is reported, except that a column lost its values where the file has
// none for it.
template <typename T>
void DataStorage<T>::ReplaceValues(std::vector<T> values) {
    InvalidateIndexInFront();
    ResetMinMax();
    const auto count = static_cast<std::uint32_t>(values.size());
    if (count > 0) {
        values_ = std::move(values);
    }
    this->Resize(count);
}

} // namespace Kestrona::Data::MemoryResident
