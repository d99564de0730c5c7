#include "columns/indexed_column_forward_impl.h"
#include "columns/indexed_column_impl.h"

#include <kestrona/indexed_column.h>

namespace Kestrona::Data::MemoryResident {

template class IndexedColumn<double>;
template class IndexedColumn<std::wstring>;
template class IndexedColumn<char>;
template class IndexedColumn<std::int32_t>;

} // namespace Kestrona::Data::MemoryResident
