#include "configuration/parsers/field_caches.h"

#include <memory>

namespace Kestrona::Configuration::Parsers {

void EnsureFieldCaches(Data::MemoryResident::field_info& field) {
    if (field.substituteCache == nullptr) {
        field.substituteCache = std::make_unique<SubstituteCache>();
        field.substitutxCache = std::make_unique<SubstituteCache>();
        field.numberFormatCache = std::make_unique<NumberFormatCache>();
    }
}

} // namespace Kestrona::Configuration::Parsers
