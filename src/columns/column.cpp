#include <kestrona/column.h>

namespace Kestrona::Data::MemoryResident {

template class IColumn<double>;
template class IColumn<std::wstring>;
template class IColumn<char>;
template class IColumn<std::int32_t>;

} // namespace Kestrona::Data::MemoryResident
