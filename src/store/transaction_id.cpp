// Implements: the ids of record state transactions.
#include "store/transaction_id.h"

#include "platform/random.h"

#include <boost/uuid/entropy_error.hpp>
#include <boost/uuid/uuid.hpp>
#include <boost/uuid/uuid_io.hpp>

#include <cerrno>

namespace Kestrona::Data::MemoryResident {

namespace {

constexpr const char* kNoRandomNumbers = "BCryptGenRandom";

} // namespace

std::string NewTransactionId() {
    boost::uuids::uuid id{};
    if (!Platform::RandomBytes(id.data)) {
        throw boost::uuids::entropy_error(errno, kNoRandomNumbers);
    }
    id.data[6] = static_cast<std::uint8_t>((id.data[6] & 0x0f) | 0x40); // version 4
    id.data[8] = static_cast<std::uint8_t>((id.data[8] & 0x3f) | 0x80); // the variant of RFC 4122
    return boost::uuids::to_string(id);
}

} // namespace Kestrona::Data::MemoryResident
