#include "expressions/text_access.h"

#include "platform/numbers.h"

namespace Kestrona::Expressions {

// The number itself, whatever the field displays it as.
void DisplayText(Data::MemoryResident::IMemoryResidentData& /*store*/, std::int32_t /*format*/, std::int32_t /*field*/,
                 std::int32_t /*record*/, double value, std::int32_t /*matrix_index*/, std::wstring* text) {
    *text = Platform::DoubleToText17(value);
}

} // namespace Kestrona::Expressions
