#include <kestrona/free_strings.h>

double KSDLL_CreateFreeString(Kestrona::Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                              std::int32_t field, std::int32_t record, const std::wstring& text) {
    constexpr double kHeldElsewhere = 0.0;
    store.SetDbString(format, field, record, text);
    return kHeldElsewhere;
}
