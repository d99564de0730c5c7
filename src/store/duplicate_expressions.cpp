#include "store/duplicate_expressions.h"

namespace Kestrona::Data::MemoryResident {

void CompileDuplicatedExpressions(IMemoryResidentData& /*store*/, std::int32_t /*format*/) {}

} // namespace Kestrona::Data::MemoryResident
