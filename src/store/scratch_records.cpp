// Implements: the numbers of the scratch records that have a name.
#include <kestrona/types.h>

std::int32_t KSDLL_GetScratchRecord() {
    return Kestrona::kFirstScratchRecord;
}

std::int32_t KSDLL_GetInternalTempRecord() {
    return Kestrona::kFirstScratchRecord + 2;
}

std::int32_t KSDLL_GetUserTempRecord() {
    return Kestrona::kLastScratchRecord;
}
