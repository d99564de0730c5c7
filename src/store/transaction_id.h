#pragma once

#include <string>

namespace Kestrona::Data::MemoryResident {

// The text of a random version 4 UUID: 36 characters, lower-case hexadecimal with hyphens. Throws
// boost::uuids::entropy_error when the system has no random numbers.
std::string NewTransactionId();

} // namespace Kestrona::Data::MemoryResident
