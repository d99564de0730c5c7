#include "expressions/text_access.h"

#include <kestrona/value_text.h>

namespace Kestrona::Expressions {

void DisplayText(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format, std::int32_t field,
                 std::int32_t record, double value, std::int32_t matrix_index, std::wstring* text) {
    // A field that shows nothing would leave the text of the one before.
    text->clear();
    KSDLL_ValueToTString(store, format, field, record, text, value, matrix_index);
}

} // namespace Kestrona::Expressions
