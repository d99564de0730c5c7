#include "columns/data_storage_erase_impl.h"
#include "columns/data_storage_file_impl.h"
#include "columns/data_storage_impl.h"
#include "columns/data_storage_search_impl.h"

#include <kestrona/data_storage.h>

namespace Kestrona::Data::MemoryResident {

template class DataStorage<double>;
template class DataStorage<std::wstring>;
template class DataStorage<char>;
template class DataStorage<std::int32_t>;

} // namespace Kestrona::Data::MemoryResident
